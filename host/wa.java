// Host class of the native library; its peer's address lives in nativeid.
public class wa {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    /** Copies the rows' first x and widths into the pool. */
    public native void l(Object unused, ba pool, int width, int height, int[] offsets, int[] widths);

    public native void ma(int unused);
}
