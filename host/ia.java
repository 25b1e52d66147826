// Host class of the native library; its peer's address lives in nativeid.
public class ia {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    /** Copies the glyphs, the palette and the tables into the toolkit's memory pool. */
    public native void EA(Object unused, ja toolkit, byte[][] glyphs, int[] palette, int[] widths, int[] heights, int[] lefts, int[] tops);
    public native void ma();

    /** Glyph bytes index the palette, or with mono are on or off in the colour. */
    public native void UA(int glyph, int x, int y, int colour, boolean mono);
    public native void GA(int glyph, int x, int y, int colour, boolean mono, wa mask, int maskx, int masky);
    /** Turned a quarter turn counter-clockwise, with its corner at (x, y). */
    public native void f(int glyph, int x, int y, int colour, boolean mono);
}
