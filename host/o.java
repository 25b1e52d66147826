// Holder of the rectangle copies between a sprite, a surface and the target; it has no peer.
public class o {
    static {
        System.loadLibrary("wexel");
    }

    /** Copies a block of the target at (sx, sy) to (dx, dy) of the sprite and surface. */
    public native void AA(long toolkit, long sprite, long surface, int sx, int sy, int w, int h, int dx, int dy,
                          boolean colour, boolean depth);

    /** Puts the block at (dx, dy) of the sprite and surface back at (sx, sy) of the target. */
    public native void BA(long toolkit, long sprite, long surface, int sx, int sy, int w, int h, int dx, int dy,
                          boolean colour, boolean depth);
}
