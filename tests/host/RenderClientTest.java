import static org.junit.jupiter.api.Assertions.*;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import org.junit.jupiter.api.Test;

// Particles through the JVM: the host loads textures from inside its callback while the call holds
// the particles' arrays (the JNI checks of the host_checkjni run see every call it makes there), it
// may decline or fail, and the render client comes and goes with its peer.
class RenderClientTest {
    // Serves black textures from within the callback, collecting garbage meanwhile as a busy host
    // may; declines ids below 100; throws `failure` when one is set.
    static final class host extends ja {
        final List<Short> asked = new ArrayList<>();
        RuntimeException failure;

        @Override
        public boolean SA(short id) {
            asked.add(id);
            if (failure != null) throw failure;
            if (id < 100) return false;
            int[] pixels = new int[128 * 128];
            Arrays.fill(pixels, 0xFF000000);
            F(id, pixels, 0, 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false, false, false, 0, false, false, 0);
            System.gc();
            return true;
        }
    }

    static final int WHITE = 0xFFFFFFFF;

    // A 32 by 32 white canvas whose camera puts world point (x, y, 0) at pixel (x + 16, y + 16)
    // and makes a particle size of 2048 one pixel.
    static Scene scene(host h) {
        Scene s = new Scene(h, new Object(), 32, 32);
        s.toolkit.GA(0f, 1f);
        float f = 1f / 16;
        s.toolkit.wa(new float[] {f, 0, 0, 0, 0, f, 0, 0, 0, 0, f, 0, 0, 0, 0, 1});
        s.toolkit.B(0, 0, 32, 32, WHITE, 0);
        return s;
    }

    // Particles at world (x, 0, 0) of size 4 with these textures, -1 being a red disc.
    static void draw(a client, int[] xs, short[] textures) {
        int n = xs.length;
        int[] positions = new int[3 * n], colours = new int[n], sizes = new int[n];
        for (int i = 0; i < n; ++i) {
            positions[3 * i] = xs[i] << 12;
            colours[i] = textures[i] == -1 ? 0xFFFF0000 : WHITE;
            sizes[i] = 4 * 2048;
        }
        client.b(client.nativeid, 0, positions, colours, sizes, textures, n);
    }

    static a client() {
        a client = new a();
        client.ha(0, 0, 0, 0, 0);
        assertNotEquals(0, client.nativeid);
        return client;
    }

    static void destroy(a client) {
        client.R(client.nativeid, 0);
        assertEquals(0, client.nativeid);
    }

    @Test
    void texturesloadfromwithinthecallbackandstayloaded() {
        host h = new host();
        try (Scene s = scene(h)) {
            a client = client();
            draw(client, new int[] {-8, 0, 8}, new short[] {300, -1, 301});
            assertEquals(List.of((short) 300, (short) 301), h.asked);
            for (int x : new int[] {6, 10, 22, 26}) assertEquals(0, s.pixel(x, 16) & 0xFFFFFF, "at " + x);
            assertEquals(0xFFFF0000, s.pixel(16, 16));
            assertEquals(WHITE, s.pixel(5, 16));
            draw(client, new int[] {-8}, new short[] {300});
            assertEquals(2, h.asked.size());
            destroy(client);
        }
    }

    @Test
    void adeclinedtextureskipsonlyitsparticle() {
        host h = new host();
        try (Scene s = scene(h)) {
            a client = client();
            draw(client, new int[] {-8, 8}, new short[] {50, -1});
            assertEquals(List.of((short) 50), h.asked);
            assertEquals(WHITE, s.pixel(8, 16));
            assertEquals(0xFFFF0000, s.pixel(24, 16));
            destroy(client);
        }
    }

    // The host's own failure in its callback ends the draw and reaches it unchanged; a fault in the
    // draw comes back as the library's; either way the arrays are given back and drawing goes on.
    @Test
    void failuresendthedrawandthelibrarygoeson() {
        host h = new host();
        try (Scene s = scene(h)) {
            a client = client();
            h.failure = new IllegalStateException("no textures");
            RuntimeException e = assertThrows(RuntimeException.class, () -> draw(client, new int[] {0}, new short[] {400}));
            assertSame(h.failure, e);
            h.failure = null;
            FrameTest.assertfault(() -> client.b(client.nativeid, 0, null, new int[1], new int[1], new short[1], 1));
            System.gc();
            draw(client, new int[] {0}, new short[] {400});
            assertEquals(0, s.pixel(16, 16) & 0xFFFFFF);
            destroy(client);
        }
    }
}
