import static org.junit.jupiter.api.Assertions.*;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import org.junit.jupiter.api.Test;

// A ground through the JVM: its grid from rows of int arrays, short or missing, tiles from arrays
// some of which are null, a draw that has the host load its texture from the callback while the
// collector runs, lights with short or missing arrays, and a map through rows of marks, one of
// them null.
class GroundTest {
    static final class host extends ja {
        final List<Short> asked = new ArrayList<>();

        @Override
        public boolean SA(short id) {
            asked.add(id);
            int[] white = new int[128 * 128];
            Arrays.fill(white, -1);
            F(id, white, 0, 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false, false, false, 0, false, false, 0);
            System.gc();
            return true;
        }
    }

    static long drawn(Scene s) { return Arrays.stream(s.pixels()).filter(p -> p != 0).count(); }

    @Test
    void tilesdrawandmapthroughthejvm() {
        host h = new host();
        try (Scene s = new Scene(h, new Object(), 32, 32)) {
            ja t = s.toolkit;
            ba pool = new ba();
            pool.sa(0, 1 << 16);
            t.n(pool);
            // World x and z, 0 to 64, fill the screen at depth 0.5.
            t.GA(0f, 1f);
            t.AA(new float[] {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
            t.wa(new float[] {1f / 32, 0, 0, 0, 0, 0, 0, 0, 0, 1f / 32, 0, 0, -1, -1, 0.5f, 1});
            t.m(0xFFFFFF, 0.5f, 0.5f, 0, -1, 0);
            i g = new i();
            g.G(null, t, 2, 2, new int[][] {{0, 0, 0}, {0, 0}, null}, new int[][] {{0, 0, 0}}, 64, 0, 0);
            g.LA(1, 1, 40);
            // A square of two faces, textured on tile (0, 0), plain on (1, 1).
            int[] xs = {0, 64, 64, 0, 0, 64}, zs = {0, 64, 0, 0, 64, 64}, colours = {127, 127, 127, 127, 127, 127};
            g.ya(0, 0, xs, null, zs, null, colours, null, new int[] {300, 300, 300, 300, 300, 300}, null, 0, 0, 0, true);
            g.ya(1, 1, xs, null, zs, null, colours, null, new int[] {-1, -1, -1, -1, -1, -1}, null, 0, 0, 0, false);
            g.SA();
            // Lights with modes short of their squares or none, intensities for fewer, an unknown id.
            g.A(1, 32, -100, 32, 400, 0xFFFFFF, new int[] {2, 1});
            g.A(3, 0, 0, 0, 100, 0, null);
            g.t(new float[] {0.5f});
            g.t(null);
            g.d(7);
            a client = new a();
            client.ha(0, 0, 0, 0, 0);
            t.ba(3, 0);
            client.v(client.nativeid, g.nativeid, 0, 0);
            client.v(client.nativeid, g.nativeid, 5, -1);
            assertEquals(List.of((short) 300), h.asked);
            assertEquals(32 * 32, drawn(s));
            t.ba(3, 0);
            client.i(client.nativeid, g.nativeid, 0, 0, 8 << 8, 0, 0, 2, 2, new byte[][] {null, {1, 1}});
            assertEquals(8 * 8, drawn(s));
            // A tile's footprint comes in the mask given when it is large enough, else in a new one.
            aa made = (aa) g.w(0, 0, new aa());
            assertNotNull(made);
            assertSame(made, g.w(0, 0, made));
            assertNull(g.w(1, 0, made));
            g.UA(made, 10, 0, 10);
            g.NA(null, 10, 0, 10);
            made.ma(0);
            assertThrows(UnsatisfiedLinkError.class, () -> g.SSEGROUND_GETH(0, 0));
            g.ma();
            assertEquals(0, g.nativeid);
            g.ma();
            client.R(client.nativeid, 0);
            pool.ma(0);
        }
    }
}
