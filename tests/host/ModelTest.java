import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// A model built from the host's arrays, and the mask's refusals as the host sees them.
class ModelTest {
    @Test
    void builtfromhostarraysandrefusedoutsideitsmask() {
        try (Scene s = new Scene(8, 8)) {
            ba pool = new ba();
            pool.sa(0, 1 << 16);
            // A square of two faces, one half transparent, and a loose point far away.
            h m = new h();
            m.U(null, pool, 5, 4, new int[] {-10, 10, 10, -10, 900}, new int[] {0, 0, 20, 20, 900},
                    new int[] {3, -4, 5, 6, 900}, null, null, 2, new short[] {0, 0}, new short[] {1, 2},
                    new short[] {2, 3}, null, null, new byte[] {0, 100}, null, new short[] {0x1234, 0x4321}, null,
                    null, (byte) 0, null, 0, null, null, null, null, null, null, null, null, null, null, null, null,
                    null, 0, 0, 0x4000, 0, 128, 768, null);
            // The loose point is outside the bounds; the radii round up.
            int[] bounds = {m.RA(), m.ya(), m.YA(), m.o(), m.AA(), m.ha(), m.N(), m.n()};
            assertArrayEquals(new int[] {-10, 10, 0, 20, -4, 6, 12, 24}, bounds);
            assertTrue(m.i());

            IllegalArgumentException wider = assertThrows(IllegalArgumentException.class, () -> m.KA(0x4001));
            assertEquals("Can't re-enable previously disabled functions", wider.getMessage());
            assertEquals(0x4000, m.m());
            IllegalStateException tint = assertThrows(IllegalStateException.class, () -> m.PA(1, 2, 3, 4));
            assertEquals("Can't tint if functionmask does not contain FM_TINT", tint.getMessage());
            assertEquals("", assertThrows(IllegalStateException.class, () -> m.W((short) 1, (short) 2)).getMessage());
            m.X((short) 0x1234, (short) 0x1000);
            m.ma(null);
            m.ba(null);
            assertEquals(0, m.m());
            m.ma(null);
            pool.ma(0);
        }
    }
}
