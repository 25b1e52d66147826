// Host class of the native library; its peer's address lives in nativeid.
public class oa {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;
}
