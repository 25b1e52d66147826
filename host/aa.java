// Host class of the native library; its peer's address lives in nativeid.
public class aa {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    public native void ma(int unused);
}
