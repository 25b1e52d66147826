// A 3D model in native memory. Its peer's address lives in nativeid.
public class h {
    static {
        System.loadLibrary("wexel");
    }

    public long nativeid;

    // Life and function mask
    public native void ba(Object unused);
    public native void ma(Object unused);
    public native int m();
    public native void KA(int newmask);

    // Construction from the host's decoded arrays
    public native void U(Object unused, ba pool, int vertexcount, int usedvertexcount, int[] x, int[] y, int[] z,
            int[] vertexgroupids, short[] vertexmasks, int facecount, short[] a, short[] b, short[] c, byte[] types,
            byte[] priorities, byte[] alphas, byte[] mappings, short[] colours, short[] textures, int[] facegroupids,
            byte renderorder, short[] facemasks, int mappingcount, byte[] maptype, short[] mapp, short[] mapm,
            short[] mapn, int[] mapscalex, int[] mapscaley, int[] mapscalez, byte[] maprotation, byte[] mapdirection,
            int[] mapshift0, int[] mapshift1, int[] mapshift2, int[] markers, int markertriangles, int markerpoints,
            int functionmask, int modelflags, int ambient, int contrast, int[] billboardints);

    // Bounds and flags
    public native int N();
    public native int n();
    public native int RA();
    public native int ya();
    public native int YA();
    public native int o();
    public native int AA();
    public native int ha();
    public native boolean i();
    public native boolean u();
    public native Object LA(float[] values);

    // Colours
    public native void p(int ambient);
    public native int c();
    public native void Q(int contrast);
    public native int Z();
    public native void ka();
    public native void X(short from, short to);
    public native void W(short from, short to);
    public native void PA(int hue, int saturation, int lightness, int amount);

    // Whole-model transforms: binary angles, 16384 to the circle; scales in 128ths
    public native void f(int angle);
    public native void S(int angle);
    public native void t(int angle);
    public native void VA(int angle);
    public native void EA(int angle);
    public native void K(int angle);
    public native void ia(int x, int y, int z);
    public native void oa(int x, int y, int z);
    public native void wa();

    // Animation steps: of the listed groups of the model at `model`, of masked members with an
    // optional frame, of the whole model; a matrix at an address on masked vertices (bound only by
    // its decorated name); the pivot's reset
    public native void J(long model, int type, int[] groups, int x, int y, int z, int order, boolean normals);
    public native void e(int type, int[] groups, int x, int y, int z, boolean normals, int select, int[] frame);
    public native void w(int type, int x, int y, int z);
    public native void aa(long matrix, int select, boolean inverse);
    public native boolean ea();

    // Shadow outline into the given mask or a new one; clone into dest with scratch's blocks
    public native Object ga(aa mask);
    // Fits the model standing at (x, y, z) to the ground, by mode; modes 4 and 5 need the second ground.
    public native void pa(int mode, int p, i ground, i ground2, int x, int y, int z);
    public native void BA(h dest, h scratch, int mask, boolean grow, boolean prelight);
}
