// A render client: the scratch memory for model drawing, and the door through which particles,
// free triangles and thick lines are drawn. Its peer is passed back in as a long.
public class a {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    // Lifetime
    public native void ha(int a, int b, int c, int limittwo, int limitone);
    public native void R(long peer, int unused);
    public native void JA(int a, int b);
    public native void UA(int a, int b);

    // Particles: positions are three ints each with 12 fraction bits, sizes in 1/2048 of a world
    // unit, texture ids -1 for a plain disc.
    public native void b(long peer, int unused, int[] positions, int[] colours, int[] sizes, short[] textures,
                         int count);
    // A model under its 16-float matrix; `result`, if given, gets the model's screen extent.
    public native void wa(long peer, long model, float[] matrix, int[] result, int unused);
    // A Gouraud triangle with corners in pixels, and a line of the given width in pixels.
    public native void ra(long peer, float x0, float y0, float x1, float y1, float x2, float y2, int colour0,
                          int colour1, int colour2);
    public native void K(long peer, int unused, int x1, int y1, int x2, int y2, int colour, int width,
                         int unused2);
    // Shared light of two models, b at (x, y, z) from a; hit test of a screen point; marker positions.
    public native void P(long peer, long a, long b, int x, int y, int z, int unused);
    public native boolean ya(long peer, long model, int x, int y, float[] matrix, boolean boxonly);
    public native void J(long peer, long model, int[] out, float[] matrix);
}
