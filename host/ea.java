// Host class of the native library; its peer's address lives in nativeid.
public class ea {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    /** Copies the glyphs and their tables into the toolkit's memory pool. */
    public native void n(Object unused, ja toolkit, byte[][] glyphs, int[] widths, int[] heights, int[] lefts, int[] tops);
    public native void ma();

    /** Glyph bytes are coverage, blended with the colour; its alpha is not used. */
    public native void UA(int glyph, int x, int y, int colour, int unused);
    public native void P(int glyph, int x, int y, int colour, int unused, wa mask, int maskx, int masky);
    /** Turned a quarter turn counter-clockwise, with its corner at (x, y). */
    public native void f(int glyph, int x, int y, int colour, int unused);
}
