import static org.junit.jupiter.api.Assertions.*;

import java.util.ArrayList;
import java.util.List;
import org.junit.jupiter.api.Test;

// Particles through the JVM: the host loads their textures from inside its callback while the call
// holds the particles' arrays (under -Xcheck:jni every JNI call made there is checked), or declines,
// or fails.
class RenderClientTest {
    static final class host extends ja {
        final List<Short> asked = new ArrayList<>();
        RuntimeException failure;

        // Black textures from id 100 on, given while the collector runs, as a busy host's may.
        @Override
        public boolean SA(short id) {
            asked.add(id);
            if (failure != null) throw failure;
            if (id < 100) return false;
            F(id, new int[128 * 128], 0, 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false, false, false, 0, false, false, 0);
            System.gc();
            return true;
        }
    }

    // World point (x, 0, 0) lands on pixel (x + 16, 16), and 4096 is a size of two pixels.
    @Test
    void texturesloadfromthecallbackorareskipped() {
        host h = new host();
        try (Scene s = new Scene(h, new Object(), 32, 32)) {
            s.toolkit.GA(0f, 1f);
            s.toolkit.wa(new float[] {1f / 16, 0, 0, 0, 0, 1f / 16, 0, 0, 0, 0, 1f / 16, 0, 0, 0, 0, 1});
            s.toolkit.B(0, 0, 32, 32, -1, 0);
            a client = new a();
            client.ha(0, 0, 0, 0, 0);
            int[] at = {-8 << 12, 0, 0, 0, 0, 0, 8 << 12, 0, 0}, colours = {-1, -1, 0xFFFF0000}, sizes = {4096, 4096, 4096};
            client.b(client.nativeid, 0, at, colours, sizes, new short[] {300, 50, -1}, 3);
            assertEquals(List.of((short) 300, (short) 50), h.asked);
            assertArrayEquals(new int[] {-1, 0, -1, -1, 0xFFFF0000},
                              new int[] {s.pixel(6, 16), s.pixel(9, 16), s.pixel(10, 16), s.pixel(16, 16), s.pixel(24, 16)});
            h.failure = new IllegalStateException();
            assertSame(h.failure, assertThrows(IllegalStateException.class,
                () -> client.b(client.nativeid, 0, at, colours, sizes, new short[] {300, 400, -1}, 3)));
            assertEquals(3, h.asked.size());
            CrashTest.assertdump(() -> client.b(client.nativeid, 0, null, colours, sizes, new short[3], 3));
            client.R(client.nativeid, 0);
            assertEquals(0, client.nativeid);
        }
    }
}
