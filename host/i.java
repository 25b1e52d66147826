// The ground: a grid of heights under square tiles that the host uploads one at a time.
public class i {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    public native void G(Object unused, ja toolkit, int sizex, int sizez, int[][] heights, int[][] normalheights,
                         int tilesize, int scale, int flags);
    public native void ma();
    // A shade byte at a grid point, raised only; SA drops the shades after the last upload.
    public native void LA(int a, int b, int value);
    public native void SA();
    // Point lights: one mode a tile of the light's square, rows of z; intensities by place among
    // the lights in use, oldest first; removal by id.
    public native void A(int id, int x, int y, int z, int radius, int colour, int[] modes);
    public native void t(float[] intensities);
    public native void d(int id);
    // A tile as parallel arrays, three entries a face; ys, depths, mapcolours and scales may be null.
    public native void ya(int x, int z, int[] xs, int[] ys, int[] zs, int[] depths, int[] colours, int[] mapcolours,
                          int[] textures, int[] scales, int tilecolour, int usedepths, int unused, boolean caster);
    // A tile's footprint in the mask given or a new one; null for a tile not uploaded.
    public native Object w(int x, int z, aa mask);
    // A footprint standing at (x, y, z) added to the shadow map, and taken off it.
    public native void UA(aa mask, int x, int y, int z);
    public native void NA(aa mask, int x, int y, int z);
    // Exported under a decorated name only: binding it by this name fails.
    public native int SSEGROUND_GETH(int a, int b);
}
