// A host that gives each texture asked for with F from within the callback, a plain colour from
// the id with a descriptor of distinct fields, and counts the requests; told to refuse, it throws.
public class texturehost extends ja {
    public int asked;
    public boolean refuse;

    @Override
    public boolean SA(short id) {
        ++asked;
        if (refuse) throw new IllegalStateException("no texture " + id);
        int[] pixels = new int[128 * 128];
        java.util.Arrays.fill(pixels, 0xFF000000 | id);
        F(id, pixels, 0x12345, 2, 0x104, 5, -6, true, 0x107, 8, 0x1FD, 200, true, false, true, false, true, 0x109,
                false, true, 42);
        return true;
    }
}
