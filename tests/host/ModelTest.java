import static org.junit.jupiter.api.Assertions.*;

import java.util.List;
import org.junit.jupiter.api.Test;

// A model built from the host's arrays, the mask's refusals as the host sees them, and a draw that
// asks the host for a texture while it holds the model's result array.
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

    // Two windings of one triangle round pixel (16, 16), textured by id 100, which the host loads
    // from its callback in the middle of the draw: its black, transparent texels are drawn, and the
    // model is counted.
    @Test
    void texturesloadfromthecallbackinthemiddleofadraw() {
        RenderClientTest.host host = new RenderClientTest.host();
        try (Scene s = new Scene(host, new Object(), 32, 32)) {
            s.toolkit.GA(0f, 1f);
            s.toolkit.wa(new float[] {1f / 16, 0, 0, 0, 0, 1f / 16, 0, 0, 0, 0, 1f / 16, 0, 0, 0, 0, 1});
            s.toolkit.B(0, 0, 32, 32, -1, 0);
            s.toolkit.V(100, 0, 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false, false, false, 0, false, false, 0);
            ba pool = new ba();
            pool.sa(0, 1 << 16);
            h m = new h();
            m.U(null, pool, 3, 3, new int[] {-10, 10, 0}, new int[] {-10, -10, 10}, new int[3], null, null, 2,
                    new short[] {0, 0}, new short[] {1, 2}, new short[] {2, 1}, null, null, null, null,
                    new short[] {0x1234, 0x1234}, new short[] {100, 100}, null, (byte) 0, null, 0, null, null, null,
                    null, null, null, null, null, null, null, null, null, null, 0, 0, 0, 0, 128, 768, null);
            a client = new a();
            client.ha(0, 0, 0, 0, 0);
            int[] result = new int[6];
            client.wa(client.nativeid, m.nativeid, new float[] {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
                    result, 0);
            assertEquals(List.of((short) 100), host.asked);
            assertEquals(1, result[5]);
            assertEquals(1, s.toolkit.oa());
            assertEquals(0, s.pixel(16, 16));
            client.R(client.nativeid, 0);
            m.ma(null);
            pool.ma(0);
        }
    }
}
