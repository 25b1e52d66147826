// Host class of the native library; its peer's address lives in nativeid.
public class oa {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    /** Makes a w by h depth surface; its content is undefined until drawn. */
    public native void g(int w, int h);

    /** Frees the surface given by its nativeid. */
    public native void za(long surface, int unused);
}
