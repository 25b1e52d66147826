import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// Selecting a canvas, clearing, rectangles in the three write modes, and the clip rectangle, as
// the host sees them through the pixel read.
class CanvasTest {
    static int blend(int d, int c) {
        int a = c >>> 24, out = a << 24;
        for (int shift = 0; shift < 24; shift += 8)
            out += (((d >>> shift & 0xFF) * (256 - a)) >> 8) + (((c >>> shift & 0xFF) * a) >> 8) << shift;
        return out;
    }

    static int add(int d, int c) {
        int out = ((d >>> 24) + (c >>> 24)) << 24;
        for (int shift = 0; shift < 24; shift += 8)
            out |= Math.min(255, (d >>> shift & 0xFF) + (c >>> shift & 0xFF)) << shift;
        return out;
    }

    @Test
    void selectingacanvaswipesitandsetsclipandviewport() {
        try (Scene s = new Scene(13, 5)) {
            s.toolkit.B(0, 0, 13, 5, 0xFFFFFFFF, 0);
            s.toolkit.PA(s.canvas);
            for (int p : s.pixels()) assertEquals(0, p);
            int[] clip = new int[4], viewport = new int[4];
            s.toolkit.qa(clip);
            s.toolkit.xa(viewport);
            assertArrayEquals(new int[] {0, 0, 13, 5}, clip);
            assertArrayEquals(new int[] {0, 0, 13, 5}, viewport);
        }
    }

    @Test
    void rectanglesinthethreemodes() {
        try (Scene s = new Scene(16, 4)) {
            int d = 0x7F806040;
            s.toolkit.B(0, 0, 16, 4, d, 0);
            s.toolkit.B(0, 0, 4, 4, 0x40FF2010, 1);
            s.toolkit.B(4, 0, 4, 4, 0xFF0A0B0C, 1);
            s.toolkit.B(8, 0, 4, 4, 0x90A0A0A0, 2);
            s.toolkit.B(12, 0, 4, 4, 0x00123456, 1);
            int[] row = s.toolkit.E(0, 2, 16, 1);
            assertEquals(blend(d, 0x40FF2010), row[0]);
            assertEquals(0xFF0A0B0C, row[5]);
            assertEquals(add(d, 0x90A0A0A0), row[9]);
            assertEquals(0xFFFFE0, row[9] & 0xFFFFFF);
            assertEquals(0x00806040, row[13]);
        }
    }

    @Test
    void rectanglesandclearsstayinsidetheclip() {
        try (Scene s = new Scene(10, 10)) {
            s.toolkit.r(-5, -5, 10000, 10000);
            int[] clip = new int[4];
            s.toolkit.qa(clip);
            assertArrayEquals(new int[] {0, 0, 10, 10}, clip);
            s.toolkit.r(2, 3, 7, 8);
            s.toolkit.o(0, 0, 6, 100);
            s.toolkit.qa(clip);
            assertArrayEquals(new int[] {2, 3, 6, 8}, clip);
            s.toolkit.B(-100, -100, 1000, 1000, 0xFF00FF00, 0);
            s.toolkit.ba(1, 0xFFFF0000);
            s.toolkit.L();
            s.toolkit.B(8, 8, 5, 5, 0xFF0000FF, 0);
            int[] p = s.pixels();
            for (int y = 0; y < 10; ++y)
                for (int x = 0; x < 10; ++x) {
                    int expected = x >= 2 && x < 6 && y >= 3 && y < 8 ? 0xFFFF0000 : x >= 8 && y >= 8 ? 0xFF0000FF : 0;
                    assertEquals(expected, p[y * 10 + x], x + "," + y);
                }
        }
    }

    @Test
    void aninvertedclipdrawsnothing() {
        try (Scene s = new Scene(10, 10)) {
            s.toolkit.r(6, 6, 4, 4);
            s.toolkit.B(0, 0, 10, 10, 0xFFFFFFFF, 0);
            s.toolkit.ba(1, 0xFFFFFFFF);
            for (int p : s.pixels()) assertEquals(0, p);
        }
    }

    @Test
    void anunknownmoderaisesafterclippingbutnotwithoutacolourbuffer() {
        try (Scene s = new Scene(10, 10)) {
            IllegalArgumentException e =
                    assertThrows(IllegalArgumentException.class, () -> s.toolkit.B(50, 50, 1, 1, 0xFFFFFFFF, 3));
            assertEquals("", e.getMessage());
            assertThrows(IllegalArgumentException.class, () -> s.toolkit.B(0, 0, 10, 10, 0xFFFFFFFF, -1));
            for (int p : s.pixels()) assertEquals(0, p);
        }
        ja bare = new ja();
        bare.q(null, 0, 0);
        bare.B(0, 0, 10, 10, 0, 3);
        Exception e = assertThrows(Exception.class, () -> bare.E(0, 0, 1, 1));
        assertEquals(Exception.class, e.getClass());
        assertEquals("No colour buffer", e.getMessage());
        bare.ma(0);
    }

    @Test
    void putandreadpixelsusethehostsrowstep() {
        try (Scene s = new Scene(6, 6)) {
            int[] source = new int[20];
            for (int i = 0; i < source.length; ++i) source[i] = 0x01000000 * i + i;
            s.toolkit.BA(1, 2, 3, 2, source, 2, 5);
            assertArrayEquals(new int[] {source[2], source[3], source[4], source[7], source[8], source[9]},
                    s.toolkit.E(1, 2, 3, 2));
            assertEquals(0, s.pixel(0, 2));
            assertEquals(0, s.pixel(4, 3));
        }
    }
}
