import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// Fonts as the host makes, draws and frees them: the tables reach the glyphs in the order the
// host passes them, and each class's entries draw with its own pixels.
class FontTest {
    // One 2 by 2 glyph placed one column right and three rows down from the pen.
    static final byte[][] GLYPHS = {{(byte) 255, 0, 0, 7}};
    static final int[] WIDTHS = {2}, HEIGHTS = {2}, LEFTS = {1}, TOPS = {3};

    static final class Fonts implements AutoCloseable {
        final Scene scene = new Scene(12, 8);
        final ba pool = new ba();
        final ea coverage = new ea();
        final m mono = new m();
        final ia palette = new ia();

        Fonts() {
            pool.sa(0, 1 << 16);
            scene.toolkit.n(pool);
            coverage.n(null, scene.toolkit, GLYPHS, WIDTHS, HEIGHTS, LEFTS, TOPS);
            mono.n(null, scene.toolkit, GLYPHS, WIDTHS, HEIGHTS, LEFTS, TOPS);
            int[] colours = new int[256];
            colours[255] = 0xFF0000FF;
            colours[7] = 0x12345678;
            palette.EA(null, scene.toolkit, GLYPHS, colours, WIDTHS, HEIGHTS, LEFTS, TOPS);
        }

        @Override
        public void close() {
            coverage.ma();
            mono.ma();
            palette.ma();
            pool.ma(0);
            scene.close();
        }
    }

    @Test
    void eachclassdrawsitsglyphwherethetablesplaceit() {
        try (Fonts f = new Fonts()) {
            ja t = f.scene.toolkit;
            t.B(0, 0, 12, 8, 0xFFFFFFFF, 0);
            f.coverage.UA(0, 0, 0, 0xFF000000, 0);
            assertEquals(0, f.scene.pixel(1, 3));  // full coverage of black: (255 * 1) >> 8 of white
            assertEquals(0xFFFFFFFF, f.scene.pixel(2, 3));
            assertEquals(0x00F8F8F8, f.scene.pixel(2, 4));  // (255 * 249) >> 8
            f.mono.UA(65536, 4, 0, 0xFF00FF00, 0);  // the index wraps to glyph 0
            assertEquals(0xFF00FF00, f.scene.pixel(5, 3));
            assertEquals(0xFF00FF00, f.scene.pixel(6, 4));
            f.palette.UA(0, 7, 0, 0, false);
            assertEquals(0xFF0000FF, f.scene.pixel(8, 3));
            assertEquals(0x12345678, f.scene.pixel(9, 4));
            f.palette.UA(0, 7, 2, 0x0BADBEEF, true);
            assertEquals(0x0BADBEEF, f.scene.pixel(9, 6));
        }
    }

    @Test
    void masksandquarterturns() {
        try (Fonts f = new Fonts()) {
            ja t = f.scene.toolkit;
            wa mask = new wa();
            mask.l(null, f.pool, 12, 8, new int[] {0, 0, 0, 0, 1, 1, 1, 1}, new int[] {12, 12, 12, 12, 1, 1, 1, 1});
            t.B(0, 0, 12, 8, 0, 0);
            f.palette.GA(0, 0, 0, 0, false, mask, 0, 0);  // row 4 admits only column 1
            assertEquals(0xFF0000FF, f.scene.pixel(1, 3));
            assertEquals(0, f.scene.pixel(2, 4));
            f.mono.MA(0, 4, 0, 0xFF00FF00, 0, null, 0, 0);  // no mask: the plain draw
            assertEquals(0xFF00FF00, f.scene.pixel(6, 4));
            // Turned counter-clockwise with its corner at the pen: the glyph's last column on top.
            t.B(0, 0, 12, 8, 0, 0);
            f.mono.f(0, 3, 2, 0x00ABCDEF, 0);
            assertArrayEquals(new int[] {0, 0x00ABCDEF, 0x00ABCDEF, 0}, t.E(3, 2, 2, 2));
            f.coverage.f(0, 3, 2, 0xFFFFFFFF, 0);
            assertEquals(0x00FEFEFE, f.scene.pixel(3, 3));
            mask.ma(0);
        }
    }

    @Test
    void missingdatadrawsnothingandfreeingtwiceisharmless() {
        try (Fonts f = new Fonts()) {
            ea empty = new ea();
            empty.n(null, f.scene.toolkit, new byte[][] {null, {1}}, null, HEIGHTS, LEFTS, null);
            empty.UA(0, 0, 0, 0xFFFFFFFF, 0);
            empty.f(1, 0, 0, 0xFFFFFFFF, 0);
            ea none = new ea();
            none.n(null, f.scene.toolkit, null, null, null, null, null);
            none.P(0, 0, 0, 0xFFFFFFFF, 0, null, 0, 0);
            for (int p : f.scene.pixels()) assertEquals(0, p);
            empty.ma();
            assertEquals(0, empty.nativeid);
            empty.ma();
            empty.UA(0, 0, 0, 0xFFFFFFFF, 0);
            none.ma();
        }
    }

    @Test
    void afontneedsthetoolkitspool() {
        try (Scene s = new Scene(4, 4)) {
            assertThrows(NullPointerException.class, () -> new m().n(null, s.toolkit, GLYPHS, WIDTHS, HEIGHTS, LEFTS, TOPS));
        }
    }
}
