// Holder of the rectangle copies between a sprite, a surface and the target; it has no peer.
public class o {
    static {
        System.loadLibrary("wexel");
    }
}
