import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// Sprites through the JVM: construction, pads and copies, the draws, and the failures the host sees.
class SpriteTest {
    static fa fromPixels(ja toolkit, int[] pixels, int width, int height, boolean key) {
        fa f = new fa();
        f.RA(toolkit, pixels, 99, width, width, height, key);
        return f;
    }

    @Test
    void constructorssizesandpads() {
        try (Scene s = new Scene(4, 4)) {
            fa f = fromPixels(s.toolkit, new int[] {0, 0x7F123456, 1, 2, 3, 4}, 3, 2, true);
            assertNotEquals(0, f.nativeid);
            f.U(f.nativeid, 1, 2, -3, 4);
            long id = f.nativeid;
            assertArrayEquals(new int[] {3, 2, 1, 8}, new int[] {f.da(id), f.GA(id), f.WA(id), f.ba(id)});
            int[] pads = new int[4];
            f.F(f.nativeid, pads);
            assertArrayEquals(new int[] {1, 2, -3, 4}, pads);
            f.U(f.nativeid, 0, 0, 0, 0);
            f.Y(f.nativeid, 0, 0, 1, 0, 0);
            assertArrayEquals(new int[] {0, 0xFF123456, 0xFF000001, 0}, s.toolkit.E(0, 0, 4, 1));

            fa p = new fa();
            p.EA(s.toolkit, new int[] {0x112233, 0x445566}, new byte[] {0, 1, (byte) 1}, null, 7, 3, 3, 1);
            p.Y(p.nativeid, 0, 1, 1, 0, 0);
            assertArrayEquals(new int[] {0, 0xFF445566, 0xFF445566}, s.toolkit.E(0, 1, 3, 1));
            f.M(f.nativeid);
            assertEquals(0, f.nativeid);
            p.M(p.nativeid);
            p.M(0);
        }
    }

    @Test
    void copiesfromthehostandthecolourbuffer() {
        try (Scene s = new Scene(4, 2)) {
            fa f = new fa();
            f.UA(s.toolkit, 2, 2);
            f.na(f.nativeid, 0, 0, 2, 2, new int[] {9, 0x10, 0x20, 9, 0x30, 0x40}, 1, 3);
            s.toolkit.B(0, 0, 4, 2, 0x80ABCDEF, 0);
            s.toolkit.B(1, 1, 1, 1, 0, 0);
            f.j(f.nativeid, 0, 0, 3);
            f.Y(f.nativeid, 2, 0, 1, 0, 0);
            assertArrayEquals(new int[] {0xFF000010, 0xFF000020, 0xFF000030, 0x00000040}, s.toolkit.E(2, 0, 2, 2));
            f.ea(f.nativeid, 0, 0, 2, 1, 1, 1);
            f.Y(f.nativeid, 0, 0, 1, 0, 0);
            assertEquals(0, s.pixel(0, 0));
            assertEquals(0xFF000030, s.pixel(1, 0));
            f.M(f.nativeid);
        }
    }

    @Test
    void withoutacolourbufferthecopiesfailandthedrawsdonothing() {
        ja toolkit = new ja();
        toolkit.q(null, 0, 0);
        fa f = new fa();
        f.UA(toolkit, 2, 2);
        Exception e = assertThrows(Exception.class, () -> f.ea(f.nativeid, 0, 0, 1, 1, 0, 0));
        assertEquals("No colour buffer", e.getMessage());
        assertThrows(Exception.class, () -> f.j(f.nativeid, 0, 0, 3));
        f.Y(f.nativeid, 0, 0, 1, 0, 0);
        f.ha(f.nativeid, 0, 0, 5, 5, 1, 0, 1);
        f.G(f.nativeid, 0, 0, 1, 5, 5, 1, 0, 1);
        f.M(f.nativeid);
        toolkit.ma(0);
    }

    @Test
    void thedecoratedconstructorisnotboundbyname() {
        try (Scene s = new Scene(2, 2)) {
            fa f = new fa();
            assertThrows(UnsatisfiedLinkError.class, () -> f.K(s.toolkit, null, 0, 0, 1, 1, false));
        }
    }

    @Test
    void tiledscaledatdepthandmasked() {
        try (Scene s = new Scene(6, 3)) {
            fa f = fromPixels(s.toolkit, new int[] {0xFF0000AA, 0xFF0000BB}, 2, 1, false);
            f.U(f.nativeid, 0, 0, 1, 0);
            f.aa(f.nativeid, 0, 0, 6, 1, 1, 0, 0);
            int a = 0xFF0000AA, b = 0xFF0000BB;
            assertArrayEquals(new int[] {a, b, 0, a, b, 0}, s.toolkit.E(0, 0, 6, 1));
            f.U(f.nativeid, 0, 0, 0, 0);
            f.G(f.nativeid, 0, 1, 0, 4, 1, 1, 0, 0);
            assertArrayEquals(new int[] {0xFF0000AA, 0xFF0000AA, 0xFF0000BB, 0xFF0000BB}, s.toolkit.E(0, 1, 4, 1));
            f.ha(f.nativeid, 0, 2, 6, 1, 0, 0x80808080, 0);
            assertEquals(0x7F000055, s.pixel(0, 2));

            ba pool = new ba();
            pool.sa(0, 1 << 16);
            wa mask = new wa();
            mask.l(null, pool, 6, 1, new int[] {1}, new int[] {1});
            s.toolkit.B(0, 0, 6, 1, 0, 0);
            f.o(f.nativeid, 0, 0, mask.nativeid, 0, 0);
            assertArrayEquals(new int[] {0, 0xFE0000BA, 0}, s.toolkit.E(0, 0, 3, 1));
            mask.ma(0);
            pool.ma(0);
            f.M(f.nativeid);
        }
    }
}
