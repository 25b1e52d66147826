import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// Sprites onto parallelograms through the JVM: both entries bind and draw where their corners say.
class TurnedSpriteTest {
    @Test
    void aquarterturnandamaskedflip() {
        try (Scene s = new Scene(4, 4)) {
            fa f = new fa();
            f.RA(s.toolkit, new int[] {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004}, 0, 2, 2, 2, false);
            // The top edge runs down the right side.
            f.e(f.nativeid, 2, 0, 2, 2, 0, 0, 1, 0, 0);
            assertArrayEquals(new int[] {0xFF000003, 0xFF000001, 0xFF000004, 0xFF000002}, new int[] {
                    s.pixel(0, 0), s.pixel(1, 0), s.pixel(0, 1), s.pixel(1, 1)});
            f.e(f.nativeid, 2, 0, 2, 2, 0, 0, 5, 0, 0);  // no such tint: nothing drawn
            f.e(f.nativeid, 2, 2, 4, 2, 2, 4, 1, 0, 9);  // no such blend
            assertEquals(0, s.pixel(2, 2));

            ba pool = new ba();
            pool.sa(0, 1 << 16);
            wa mask = new wa();
            mask.l(null, pool, 4, 2, new int[] {1, 0}, new int[] {1, 4});
            // Flipped across, through the mask at (2, 2): its first row admits only column 3.
            f.FA(f.nativeid, 4, 2, 2, 2, 4, 4, 0, mask.nativeid, 2, 2, true);
            assertArrayEquals(new int[] {0, 0xFF000001, 0xFF000004, 0xFF000003}, s.toolkit.E(2, 2, 2, 2));
            mask.ma(0);
            pool.ma(0);
            f.M(f.nativeid);
        }
    }
}
