import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// Moving models as the host binds them: each entry reached by its name but the decorated matrix entry,
// shadow masks from the host's factory or given back as its own object, the host's exceptions.
class MotionTest {
    int masks;

    @Test
    void movingmodelsasthehostseesthem() {
        ja host = new ja() {
            @Override public Object WA() { ++masks; return new aa(); }
        };
        try (Scene s = new Scene(host, null, 8, 8)) {
            ba pool = new ba();
            pool.sa(0, 1 << 16);
            h m = new h(), dest = new h(), scratch = new h();
            m.U(null, pool, 4, 4, new int[] {-10, 10, 10, -10}, new int[] {0, 0, 20, 20}, new int[] {3, -4, 5, 6},
                    null, null, 2, new short[] {0, 0}, new short[] {1, 2}, new short[] {2, 3}, null, null, null, null,
                    new short[] {0x1234, 0x4321}, null, null, (byte) 0, null, 0, null, null, null, null, null, null,
                    null, null, null, null, null, null, null, 0, 0, 0xFFFFF, 0, 128, 768, null);
            m.ia(5, 0, 0); m.oa(64, 128, 128); m.f(8192); m.S(0); m.t(0); m.VA(0); m.EA(0); m.K(0); m.wa();
            m.w(1, 3, 0, 0); m.e(0, new int[] {0}, 1, 2, 3, false, 1, null); m.J(m.nativeid, 2, new int[0], 0, 0, 0, 0, false);
            assertFalse(m.ea());
            assertThrows(UnsatisfiedLinkError.class, () -> m.aa(0, 0, false));

            Object mask = m.ga(null);
            assertTrue(mask instanceof aa && ((aa) mask).nativeid != 0);
            assertSame(mask, m.ga((aa) mask));
            assertEquals(1, masks);
            ((aa) mask).ma(0);

            dest.ba(null);
            scratch.ba(null);
            m.BA(dest, scratch, 0x20, false, true);
            assertThrows(IllegalArgumentException.class, () -> dest.BA(scratch, m, 0x21, false, false));
            assertThrows(NullPointerException.class, () -> m.BA(null, scratch, 0, false, false));

            a w = new a();
            w.ha(0, 0, 0, 0, 0);
            float[] identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
            w.J(w.nativeid, m.nativeid, new int[0], identity);
            assertFalse(w.ya(w.nativeid, dest.nativeid, 100, 100, identity, true));
            w.P(w.nativeid, m.nativeid, m.nativeid, 0, 0, 0, 0);
            assertThrows(NullPointerException.class, () -> w.P(0, m.nativeid, m.nativeid, 0, 0, 0, 0));
            assertThrows(NullPointerException.class, () -> w.P(w.nativeid, m.nativeid, 0, 0, 0, 0, 0));
            assertEquals("Can't sharelight if functionmask does not contain FM_SHARELIGHT", assertThrows(
                    IllegalStateException.class, () -> w.P(w.nativeid, m.nativeid, dest.nativeid, 0, 0, 0, 0)).getMessage());
            w.R(w.nativeid, 0);
            for (h each : new h[] {dest, scratch, m}) each.ma(null);
            pool.ma(0);
        }
    }
}
