import java.awt.Component;

// A presentable frame: colour and depth buffers shown on a host component.
public class za {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    /** Makes the canvas's buffers, w by h pixels, to be shown on component. */
    public native void n(Object unused, Component component, int w, int h);

    /** Frees the canvas; a second call does nothing. */
    public native void ma(int unused);

    /** New component and size; the content is lost. */
    public native void wa(Component component, int w, int h);

    /** Shows the rectangle (x, y, w, h) of the canvas at the component's origin. */
    public native void H(int x, int y, int w, int h);

    /** Shows the rectangle at (x + ox, y + oy) of the canvas at (x, y) of the component. */
    public native void CA(int x, int y, int w, int h, int ox, int oy);
}
