// The render context. Every native method works on the toolkit made last, whatever object it is
// called on. A host that serves textures, memory flushes or shadow masks overrides the callbacks.
public class ja {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    // Lifetime
    public native void q(Object source, int count, int unused);
    public native void ma(int unused);
    public native void n(ba pool);
    public native void da();
    public native int j();
    public native int oa();
    public native int za();
    public native void b(int a, int b, int c, int d, int e);
    public native void N(int a, int b, int c, int d, int e, int f, int g, int h, int i);

    // Target, clear and rectangle
    public native void PA(za canvas);
    public native void ba(int flags, int colour);
    public native void B(int x, int y, int w, int h, int colour, int mode);

    // Lines and discs, under the clip rectangle with a blend mode
    public native void XA(int x, int y, int length, int colour, int mode);
    public native void G(int x, int y, int length, int colour, int mode);
    public native void YA(int x1, int y1, int x2, int y2, int colour, int mode);
    public native void CA(int x, int y, int radius, int colour, int mode);
    public native void R(int x1, int y1, int x2, int y2, int colour, int mode, wa mask, int maskx, int masky);
    public native void DA(int colour, wa mask, int x, int y);

    // Off-screen target: a sprite's pixels and a surface's depths, either may be 0
    public native void d(long sprite, long surface);
    public native void VA(int dx, int dy);

    // Pixels
    public native int[] E(int x, int y, int w, int h);
    public native void BA(int x, int y, int w, int h, int[] pixels, int offset, int scan);

    // Clip rectangle
    public native void L();
    public native void r(int left, int top, int right, int bottom);
    public native void o(int left, int top, int right, int bottom);
    public native void qa(int[] out);

    // Viewport
    public native void k();
    public native void A(int x, int y, int w, int h);
    public native void GA(float near, float far);
    public native void xa(int[] out);

    // Camera: 16 floats, four rows of four, acting on row vectors
    public native void AA(float[] viewmatrix);
    public native void wa(float[] projectionmatrix);

    // Light and fog
    public native void m(int colour, float ambient, float diffuse, float x, float y, float z);
    public native void IA(float lightfactor);
    public native void Q(int count, int[] lights, float[] intensities);
    public native void J(int shadowcell);
    public native void RA(boolean fogenabled);
    public native void c(int colour, int distance, int unused);
    public native void JA(int start, int colour, int range, int unused);
    public native void M(int start, int colour, int range, int unused);
    public native void O();

    // Textures: the descriptor of an id, a texture's pixels (128 rows of 128) with its descriptor,
    // the animation clock in milliseconds
    public native void V(int index, int averagecolour, int value, int type, int bytetwo, int colour, boolean flagone,
            int blend, int bright, int speedu, int speedv, boolean hidden, boolean flagthree, boolean flagfour,
            boolean flagfive, boolean flagsix, int bytefive, boolean flagseven, boolean flageight, int tail);
    public native void F(int id, int[] pixels, int averagecolour, int value, int type, int bytetwo, int colour,
            boolean flagone, int blend, int bright, int speedu, int speedv, boolean hidden, boolean flagthree,
            boolean flagfour, boolean flagfive, boolean flagsix, int bytefive, boolean flagseven, boolean flageight,
            int tail);
    public native void Y(int tick);

    /** Called when drawing needs a texture that is not loaded: give it with F, then answer true. */
    public boolean SA(short id) {
        return false;
    }

    /** Called when a memory pool is full: release what can be released. */
    public void h() {
    }

    /** Makes the host object of a new shadow mask. */
    public Object WA() {
        return new aa();
    }
}
