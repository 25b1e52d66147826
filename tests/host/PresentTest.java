import static org.junit.jupiter.api.Assertions.*;
import static org.junit.jupiter.api.Assumptions.assumeFalse;

import java.awt.Canvas;
import java.awt.Frame;
import java.awt.GraphicsEnvironment;
import java.awt.Point;
import java.awt.Robot;
import java.awt.event.WindowAdapter;
import java.awt.event.WindowEvent;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.Test;

// Frames shown on a real component of a real X server, read back from the screen.
class PresentTest {
    // A loaded machine may take seconds to map a window and pass pixels on; nothing here sleeps a
    // fixed time, every check polls up to this deadline.
    static final long DEADLINE_MS = 60_000;

    Robot robot;
    Canvas component;

    // Presents and reads the screen until every (x, y, rgb) triple of the component holds,
    // presenting again and asking where the component is each time: a window only just mapped
    // may not show the first presents, nor be where it ends up.
    void expectscreen(Runnable present, int... triples) {
        long end = System.currentTimeMillis() + DEADLINE_MS;
        String wrong;
        do {
            present.run();
            robot.waitForIdle();
            Point at = component.getLocationOnScreen();
            wrong = "";
            for (int i = 0; i < triples.length; i += 3) {
                int seen = robot.getPixelColor(at.x + triples[i], at.y + triples[i + 1]).getRGB() & 0xFFFFFF;
                if (seen != triples[i + 2])
                    wrong += String.format(" at %d,%d %06x for %06x", triples[i], triples[i + 1], seen, triples[i + 2]);
            }
            if (wrong.isEmpty()) return;
            wrong += " with the component at " + at + (component.isShowing() ? "" : ", not showing");
            robot.delay(50);
        } while (System.currentTimeMillis() < end);
        fail("the screen shows" + wrong);
    }

    static long residentbytes() throws Exception {
        for (String line : Files.readAllLines(Path.of("/proc/self/status")))
            if (line.startsWith("VmRSS:")) return Long.parseLong(line.replaceAll("[^0-9]", "")) * 1024;
        throw new AssertionError("no VmRSS");
    }

    @Test
    void shownpixelsarriveexactlywheretheybelong() throws Exception {
        assumeFalse(GraphicsEnvironment.isHeadless(), "no display");
        Frame frame = new Frame("wexel");
        component = new Canvas();
        component.setSize(64, 48);
        frame.add(component);
        // Undecorated at the screen's origin: a loaded server has been seen to report a stale place
        // for a window it moved, and then the screen was read where the frame was not.
        frame.setUndecorated(true);
        frame.pack();
        frame.setLocation(0, 0);
        CountDownLatch opened = new CountDownLatch(1);
        frame.addWindowListener(new WindowAdapter() {
            @Override
            public void windowOpened(WindowEvent e) {
                opened.countDown();
            }
        });
        frame.setVisible(true);
        robot = new Robot();
        assertTrue(opened.await(DEADLINE_MS, TimeUnit.MILLISECONDS), "the window never opened");
        long end = System.currentTimeMillis() + DEADLINE_MS;
        while (!component.isShowing() && System.currentTimeMillis() < end) robot.delay(20);
        robot.waitForIdle();
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
            Runnable whole = () -> canvas.H(0, 0, 64, 48);
            expectscreen(whole, 10, 5, 0xFF8040, 17, 10, 0xFF8040, 18, 10, 0x000000, 31, 21, 0x123456, 0, 40, 0x01FE7F,
                    63, 47, 0x01FE7F);
            // A part of the canvas shown at the component's origin, and nothing beyond it.
            expectscreen(() -> {
                whole.run();
                canvas.H(10, 5, 8, 6);
            }, 0, 0, 0xFF8040, 7, 5, 0xFF8040, 8, 0, 0x000000, 0, 6, 0x000000);
            // A part shown in place with an offset into the canvas.
            toolkit.B(0, 0, 64, 48, 0xFF0000FF, 0);
            toolkit.B(40, 30, 2, 2, 0xFFFFFF00, 0);
            expectscreen(() -> {
                whole.run();
                canvas.CA(5, 5, 2, 2, 35, 25);
            }, 5, 5, 0xFFFF00, 6, 6, 0xFFFF00, 7, 7, 0x0000FF, 4, 5, 0x0000FF);

            // Empty rectangles and rectangles wholly off the canvas show nothing.
            toolkit.B(0, 0, 64, 48, 0xFFFF0000, 0);
            expectscreen(() -> {
                canvas.H(0, 0, 0, 48);
                canvas.H(0, 0, 64, -1);
                canvas.H(64, 0, 8, 8);
                canvas.CA(0, 0, 30, 30, -40, -40);
                canvas.CA(10, 10, 20, 20, 60, 0);
            }, 0, 0, 0x0000FF, 5, 5, 0xFFFF00, 63, 47, 0x0000FF, 20, 20, 0x0000FF);

            // Every present gives back what it took from the AWT: forty thousand presents that each
            // kept their drawing-surface records would hold some five megabytes.
            for (int i = 0; i < 5000; ++i) canvas.H(0, 0, 0, 0);
            long before = residentbytes();
            for (int i = 0; i < 40_000; ++i) canvas.H(0, 0, 0, 0);
            long kept = residentbytes() - before;
            assertTrue(kept < 2 << 20, "presents keep " + kept + " bytes");
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
