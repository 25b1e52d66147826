import static org.junit.jupiter.api.Assertions.*;
import static org.junit.jupiter.api.Assumptions.assumeFalse;

import java.awt.Canvas;
import java.awt.Color;
import java.awt.Frame;
import java.awt.GraphicsEnvironment;
import java.awt.Point;
import java.awt.Robot;
import org.junit.jupiter.api.Test;

// Frames shown on a real component of a real X server, read back from the screen.
class PresentTest {
    static int rgb(Color c) {
        return c.getRGB() & 0xFFFFFF;
    }

    // Each triple is x, y and the colour expected at that place of the component.
    static void assertscreen(Robot robot, Point at, int... expected) {
        for (int i = 0; i < expected.length; i += 3)
            assertEquals(expected[i + 2], rgb(robot.getPixelColor(at.x + expected[i], at.y + expected[i + 1])),
                    "at " + expected[i] + "," + expected[i + 1]);
    }

    @Test
    void shownpixelsarriveexactlywheretheybelong() throws Exception {
        assumeFalse(GraphicsEnvironment.isHeadless(), "no display");
        Frame frame = new Frame("wexel");
        Canvas component = new Canvas();
        component.setSize(64, 48);
        frame.add(component);
        frame.pack();
        frame.setLocation(40, 40);
        frame.setVisible(true);
        Robot robot = new Robot();
        robot.waitForIdle();
        robot.delay(300);
        ja toolkit = new ja();
        toolkit.q(null, 0, 0);
        za canvas = new za();
        canvas.n(null, component, 64, 48);
        try {
            toolkit.PA(canvas);
            toolkit.B(0, 0, 64, 48, 0xFF000000, 0);
            toolkit.B(10, 5, 8, 6, 0xFFFF8040, 0);
            toolkit.B(30, 20, 4, 4, 0x00123456, 0);
            toolkit.B(0, 40, 64, 8, 0xFF01FE7F, 0);
            Point at = component.getLocationOnScreen();
            for (int attempt = 0; attempt < 20; ++attempt) {
                canvas.H(0, 0, 64, 48);
                robot.waitForIdle();
                if (rgb(robot.getPixelColor(at.x + 63, at.y + 47)) == 0x01FE7F) break;
                robot.delay(100);
            }
            assertscreen(robot, at, 10, 5, 0xFF8040, 17, 10, 0xFF8040, 18, 10, 0x000000, 31, 21, 0x123456, 0, 40,
                    0x01FE7F);

            // A part of the canvas shown at the component's origin, then one shown in place
            // with an offset into the canvas.
            canvas.H(10, 5, 8, 6);
            robot.waitForIdle();
            toolkit.B(0, 0, 64, 48, 0xFF0000FF, 0);
            toolkit.B(40, 30, 2, 2, 0xFFFFFF00, 0);
            canvas.CA(5, 5, 2, 2, 35, 25);
            robot.waitForIdle();
            robot.delay(200);
            assertscreen(robot, at, 0, 0, 0xFF8040, 7, 5, 0xFF8040, 5, 5, 0xFFFF00, 6, 6, 0xFFFF00, 8, 8, 0x000000);
        } finally {
            toolkit.PA(null);
            canvas.ma(0);
            toolkit.ma(0);
            frame.dispose();
        }
    }

    @Test
    void aheadlesshostlosesframesquietly() throws Exception {
        Jvm child = Jvm.run(Headless.class, "-Djava.awt.headless=true");
        assertEquals("", child.unexpectedoutput());
        assertEquals(0, child.exit);
    }

    static final class Headless {
        public static void main(String[] args) {
            ja toolkit = new ja();
            toolkit.q(null, 0, 0);
            za canvas = new za();
            canvas.n(null, new Canvas(), 16, 16);
            toolkit.PA(canvas);
            toolkit.B(0, 0, 16, 16, 0xFFFFFFFF, 0);
            canvas.H(0, 0, 16, 16);
            canvas.CA(0, 0, 16, 16, 0, 0);
            toolkit.PA(null);
            canvas.ma(0);
            toolkit.ma(0);
        }
    }
}
