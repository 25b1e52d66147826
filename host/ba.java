// Host class of the native library; its peer's address lives in nativeid.
public class ba {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    public native void sa(int unused, int capacity);
    public native void ma(int unused);
    public native void ha();
    public native void u();
}
