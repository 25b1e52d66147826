public class Demo { public static void main(String[] a) {} }
