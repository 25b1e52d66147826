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
            assertEquals(0xFF8040, rgb(robot.getPixelColor(at.x + 10, at.y + 5)));
            assertEquals(0xFF8040, rgb(robot.getPixelColor(at.x + 17, at.y + 10)));
            assertEquals(0x000000, rgb(robot.getPixelColor(at.x + 18, at.y + 10)));
            assertEquals(0x123456, rgb(robot.getPixelColor(at.x + 31, at.y + 21)));
            assertEquals(0x01FE7F, rgb(robot.getPixelColor(at.x + 0, at.y + 40)));

            // A part of the canvas shown at the component's origin, then one shown in place
            // with an offset into the canvas.
            canvas.H(10, 5, 8, 6);
            robot.waitForIdle();
            toolkit.B(0, 0, 64, 48, 0xFF0000FF, 0);
            toolkit.B(40, 30, 2, 2, 0xFFFFFF00, 0);
            canvas.CA(5, 5, 2, 2, 35, 25);
            robot.waitForIdle();
            robot.delay(200);
            assertEquals(0xFF8040, rgb(robot.getPixelColor(at.x + 0, at.y + 0)));
            assertEquals(0xFF8040, rgb(robot.getPixelColor(at.x + 7, at.y + 5)));
            assertEquals(0xFFFF00, rgb(robot.getPixelColor(at.x + 5, at.y + 5)));
            assertEquals(0xFFFF00, rgb(robot.getPixelColor(at.x + 6, at.y + 6)));
            assertEquals(0x000000, rgb(robot.getPixelColor(at.x + 8, at.y + 8)));
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
