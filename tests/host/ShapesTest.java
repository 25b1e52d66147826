import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// Lines, discs and span masks, off-screen targets, scrolling and block copies, through the JVM.
class ShapesTest {
    static String picture(Scene s) {
        StringBuilder b = new StringBuilder();
        int[] p = s.pixels();
        for (int y = 0; y < s.height; ++y) {
            for (int x = 0; x < s.width; ++x) b.append(p[y * s.width + x] != 0 ? '#' : '.');
            b.append('\n');
        }
        return b.toString();
    }

    @Test
    void linesrowscolumnsanddiscs() {
        try (Scene s = new Scene(8, 6)) {
            s.toolkit.YA(0, 0, 3, 1, 0xFFFFFFFF, 0);
            s.toolkit.XA(5, 0, 3, 0xFFFFFFFF, 0);
            s.toolkit.G(7, 2, 10, 0xFFFFFFFF, 0);
            s.toolkit.CA(2, 4, 1, 0xFFFFFFFF, 0);
            assertEquals("##...###\n" + "..##....\n" + ".......#\n" + ".###...#\n" + ".###...#\n" + ".###...#\n",
                         picture(s));
        }
    }

    @Test
    void aninvalidmoderaisesonlyforwhatliesintheclip() {
        try (Scene s = new Scene(8, 8)) {
            s.toolkit.r(2, 2, 6, 6);
            assertThrows(IllegalArgumentException.class, () -> s.toolkit.YA(0, 0, 1, 7, 0, 3));
            assertThrows(IllegalArgumentException.class, () -> s.toolkit.CA(-50, -50, 2, 0, 3));
            s.toolkit.XA(0, 1, 8, 0, 3);
            s.toolkit.G(7, 0, 8, 0, 3);
            s.toolkit.YA(0, 7, 7, 7, 0, 3);
        }
    }

    @Test
    void masksfillandstencillines() {
        try (Scene s = new Scene(6, 4)) {
            ba pool = new ba();
            pool.sa(0, 1 << 16);
            wa mask = new wa();
            mask.l(null, pool, 6, 3, new int[] {1, 0, 2}, new int[] {2, 6, 1});
            s.toolkit.DA(0xFF00FF00, mask, 0, 1);
            assertEquals("......\n" + ".##...\n" + "######\n" + "..#...\n", picture(s));
            s.toolkit.B(0, 0, 6, 4, 0, 0);
            s.toolkit.R(0, 0, 5, 3, 0xFFFFFFFF, 0, mask, 0, 1);
            s.toolkit.R(0, 3, 5, 3, 0xFFFFFFFF, 0, mask, 0, 1);
            assertEquals("......\n" + ".##...\n" + "...##.\n" + "..#...\n", picture(s));
            assertThrows(NullPointerException.class, () -> s.toolkit.DA(0, null, 0, 0));
            mask.ma(0);
            assertEquals(0, mask.nativeid);
            pool.ma(0);
        }
    }

    @Test
    void asurfacealoneisatargetwithoutcolour() {
        try (Scene s = new Scene(4, 4)) {
            oa surface = new oa();
            surface.g(5, 3);
            s.toolkit.d(0, surface.nativeid);
            int[] clip = new int[4];
            s.toolkit.qa(clip);
            assertArrayEquals(new int[] {0, 0, 5, 3}, clip);
            s.toolkit.CA(2, 2, 3, -1, 0);
            s.toolkit.VA(1, 0);
            Exception e = assertThrows(Exception.class, () -> s.toolkit.E(0, 0, 1, 1));
            assertEquals("No colour buffer", e.getMessage());
            s.toolkit.d(0, 0);
            surface.za(surface.nativeid, 0);
            assertEquals(0, surface.nativeid);
            s.toolkit.PA(s.canvas);
        }
    }

    @Test
    void scrollingandcopiesofdepth() {
        try (Scene s = new Scene(4, 3)) {
            s.toolkit.XA(0, 0, 4, 0xFF112233, 0);
            s.toolkit.VA(1, 1);
            int[] p = s.pixels();
            assertEquals(0, p[4]);
            assertEquals(0xFF112233, p[5]);
            assertEquals(0xFF112233, p[0]);
            oa surface = new oa();
            surface.g(4, 3);
            o copies = new o();
            copies.AA(s.toolkit.nativeid, 0, surface.nativeid, 0, 0, 4, 3, 0, 0, false, true);
            copies.BA(s.toolkit.nativeid, 0, surface.nativeid, 0, 0, 4, 3, 0, 0, false, true);
            surface.za(surface.nativeid, 0);
            new aa().ma(0);
        }
    }
}
