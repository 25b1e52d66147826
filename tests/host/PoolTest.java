import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// The pool's life as the host drives it through the shared library.
class PoolTest {
    @Test
    void destroyandreleasearesafetorepeat() {
        try (Scene s = new Scene(4, 4)) {
            int before = s.toolkit.za();
            ba pool = new ba();
            pool.sa(0, 1 << 20);
            assertNotEquals(0, pool.nativeid);
            s.toolkit.n(pool);
            pool.u();
            pool.ha();
            assertEquals(0, pool.nativeid);
            pool.ha();
            pool.ma(0);
            assertEquals(before, s.toolkit.za());

            ba other = new ba();
            other.sa(0, 4096);
            other.ma(0);
            assertEquals(0, other.nativeid);
            other.ma(0);
        }
    }
}
