import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

// The camera and clip entries as the host sees them: bound by name, taking the host's arrays,
// and failing without harm on a missing one.
class ViewTest {
    static final float[] IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    static final float[] PERSPECTIVE = {1.5f, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1.001f, 1, 0, 0, -1.001f, 0};

    @Test
    void matricesaretakenandanullmatrixisafault() {
        try (Scene s = new Scene(8, 8)) {
            s.toolkit.GA(0f, 1f);
            s.toolkit.AA(IDENTITY);
            s.toolkit.wa(PERSPECTIVE);
            FrameTest.assertfault(() -> s.toolkit.AA(null));
            FrameTest.assertfault(() -> s.toolkit.wa(null));
            for (int i = 0; i < 3; ++i) System.gc();
            s.toolkit.AA(PERSPECTIVE);
        }
    }

    // Narrowing never widens, and may leave the rectangle inverted.
    @Test
    void narrowingclipcannotwiden() {
        try (Scene s = new Scene(10, 10)) {
            int[] clip = new int[4];
            s.toolkit.r(2, 3, 7, 8);
            s.toolkit.o(-100, -100, 1000, 1000);
            s.toolkit.qa(clip);
            assertArrayEquals(new int[] {2, 3, 7, 8}, clip);
            s.toolkit.o(6, 0, 4, 100);
            s.toolkit.qa(clip);
            assertArrayEquals(new int[] {6, 3, 4, 8}, clip);
            s.toolkit.B(0, 0, 10, 10, 0xFFFFFFFF, 0);
            for (int p : s.pixels()) assertEquals(0, p);
        }
    }
}
