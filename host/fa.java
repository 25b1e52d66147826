// A 32-bit image in native memory. Its peer's address lives in nativeid; methods that work on an
// existing sprite take that address as their first argument.
public class fa {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    // Construction and destruction
    public native void UA(ja toolkit, int width, int height);
    public native void RA(ja toolkit, int[] pixels, int offset, int scan, int width, int height, boolean key);
    /** Exported under a decorated name only: binding it by its plain name fails. */
    public native void K(ja toolkit, Object unused, int x, int y, int width, int height, boolean key);
    public native void EA(ja toolkit, int[] palette, byte[] indices, byte[] alpha, int offset, int scan, int width,
            int height);
    public native void M(long sprite);

    // Size and pads
    public native int da(long sprite);
    public native int GA(long sprite);
    public native int WA(long sprite);
    public native int ba(long sprite);
    public native void U(long sprite, int left, int top, int right, int bottom);
    public native void F(long sprite, int[] out);

    // Pixels
    public native void na(long sprite, int x, int y, int w, int h, int[] pixels, int offset, int scan);
    public native void ea(long sprite, int x, int y, int w, int h, int bufx, int bufy);
    public native void j(long sprite, int bufx, int bufy, int channel);

    // Drawing
    public native void Y(long sprite, int x, int y, int tint, int colour, int blend);
    public native void aa(long sprite, int x, int y, int w, int h, int tint, int colour, int blend);
    public native void ha(long sprite, int x, int y, int w, int h, int tint, int colour, int blend);
    public native void G(long sprite, int x, int y, int z, int w, int h, int tint, int colour, int blend);
    public native void o(long sprite, int x, int y, long mask, int maskx, int masky);

    // Drawing onto a parallelogram: where the top-left, top-right and bottom-left corners go
    public native void e(long sprite, float x0, float y0, float x1, float y1, float x2, float y2, int tint, int colour,
            int blend);
    public native void FA(long sprite, float x0, float y0, float x1, float y1, float x2, float y2, int unused, long mask,
            int maskx, int masky, boolean opaque);
}
