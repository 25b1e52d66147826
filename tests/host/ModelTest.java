import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// A model built from the host's arrays, and the mask's refusals as the host sees them.
class ModelTest {
    // A square of two faces, one half transparent, and a loose point far away.
    static h square(ba pool, int mask) {
        h m = new h();
        int[] x = {-10, 10, 10, -10, 900}, y = {0, 0, 20, 20, 900}, z = {3, -4, 5, 6, 900};
        short[] a = {0, 0}, b = {1, 2}, c = {2, 3}, colours = {0x1234, 0x4321};
        byte[] alphas = {0, 100};
        m.U(null, pool, 5, 4, x, y, z, null, null, 2, a, b, c, null, null, alphas, null, colours, null, null, (byte) 0,
                null, 0, null, null, null, null, null, null, null, null, null, null, null, null, null, 0, 0, mask, 0,
                128, 768, null);
        return m;
    }

    @Test
    void builtfromhostarraysitanswersitsboundsandflags() {
        try (Scene s = new Scene(8, 8)) {
            ba pool = new ba();
            pool.sa(0, 1 << 16);
            h m = square(pool, 0xFFFFF);
            assertNotEquals(0, m.nativeid);
            // The loose point is outside the bounds; radii round up.
            int[] bounds = {m.RA(), m.ya(), m.YA(), m.o(), m.AA(), m.ha(), m.N(), m.n()};
            assertArrayEquals(new int[] {-10, 10, 0, 20, -4, 6, 12, 24}, bounds);
            assertTrue(m.i());
            assertFalse(m.u());
            assertNull(m.LA(new float[6]));
            assertEquals(128, m.c());
            m.Q(512);
            assertEquals(512, m.Z());
            m.ma(null);
            assertEquals(0, m.nativeid);
            pool.ma(0);
        }
    }

    @Test
    void maskrefusalsreachthehostwiththeirwords() {
        try (Scene s = new Scene(8, 8)) {
            ba pool = new ba();
            pool.sa(0, 1 << 16);
            h m = square(pool, 0x4000);
            IllegalArgumentException wider = assertThrows(IllegalArgumentException.class, () -> m.KA(0x4001));
            assertEquals("Can't re-enable previously disabled functions", wider.getMessage());
            assertEquals(0x4000, m.m());
            IllegalStateException tint = assertThrows(IllegalStateException.class, () -> m.PA(1, 2, 3, 4));
            assertEquals("Can't tint if functionmask does not contain FM_TINT", tint.getMessage());
            m.X((short) 0x1234, (short) 0x1000);
            m.KA(0);
            assertEquals("", assertThrows(IllegalStateException.class, () -> m.X((short) 1, (short) 2)).getMessage());
            h blank = new h();
            blank.ba(null);
            assertEquals(0, blank.m());
            blank.ma(null);
            m.ma(null);
            pool.ma(0);
        }
    }
}
