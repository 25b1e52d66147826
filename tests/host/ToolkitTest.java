import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// The current toolkit and its viewport.
class ToolkitTest {
    @Test
    void viewportfollowsthetargetandthesetters() {
        try (Scene s = new Scene(64, 48)) {
            int[] v = new int[4];
            s.toolkit.A(3, 4, 20, 10);
            s.toolkit.GA(0.25f, 0.75f);
            s.toolkit.xa(v);
            assertArrayEquals(new int[] {3, 4, 20, 10}, v);
            s.toolkit.k();
            s.toolkit.xa(v);
            assertArrayEquals(new int[] {0, 0, 64, 48}, v);
        }
    }

    // Every ja call works on the toolkit made last, whatever object it is called on.
    @Test
    void asecondtoolkitreplacesthefirst() {
        try (Scene s = new Scene(4, 4)) {
            ja second = new ja();
            second.q(null, 0, 0);
            assertThrows(Exception.class, () -> s.toolkit.E(0, 0, 1, 1));
            second.PA(s.canvas);
            s.toolkit.B(0, 0, 1, 1, 0xFF123456, 0);
            assertEquals(0xFF123456, second.E(0, 0, 1, 1)[0]);
            second.PA(null);
            second.ma(0);
            s.toolkit.q(null, 0, 0);
            s.toolkit.PA(s.canvas);
        }
    }

    @Test
    void smallentries() {
        try (Scene s = new Scene(4, 4)) {
            assertEquals(0, s.toolkit.j());
            assertEquals(0, s.toolkit.oa());
            s.toolkit.da();
            s.toolkit.b(1, 2, 3, 4, 5);
            s.toolkit.N(1, 2, 3, 4, 5, 6, 7, 8, 9);
        }
    }
}
