import java.awt.Canvas;
import java.awt.Frame;
import java.awt.GraphicsEnvironment;
import java.awt.event.WindowAdapter;
import java.awt.event.WindowEvent;
import java.awt.image.BufferedImage;
import java.io.File;
import javax.imageio.ImageIO;

// Renders the test card into a PNG file and, where a display exists, shows it in a window.
// usage: Demo OUTPUT.png [SECONDS]
public class Demo {
    static final int WIDTH = 640, HEIGHT = 480;

    // A grey-to-colour gradient under rows of the three write modes, and shapes cut by the clip.
    static void testcard(ja tk) {
        tk.ba(3, 0xFF000000);
        for (int x = 0; x < WIDTH; ++x) {
            int v = x * 255 / (WIDTH - 1);
            tk.B(x, 0, 1, HEIGHT, 0xFF000000 | v << 16 | (255 - v) << 8 | 0x40, 0);
        }
        int[] colours = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF, 0xFF000000, 0xFFFFFF00};
        for (int i = 0; i < colours.length; ++i) {
            int x = 20 + i * 100;
            tk.B(x, 20, 80, 60, colours[i], 0);
            for (int a = 0; a < 8; ++a) tk.B(x + a * 10, 100, 10, 60, colours[i] & 0xFFFFFF | (a * 36) << 24, 1);
            tk.B(x, 180, 80, 60, colours[i] & 0x606060 | 0x80000000, 2);
        }
        tk.r(40, 270, 600, 460);
        tk.B(20, 260, 200, 80, 0xC0FFFFFF, 1);
        tk.o(0, 0, 560, 440);
        tk.B(400, 300, 400, 400, 0xFF202020, 0);
        tk.B(250, 350, 200, 200, 0x80FF8000, 2);
        tk.L();
        for (int i = 0; i < 16; ++i) tk.B(30 + i * 36, 380, 30, 30, 0xFF000000 | i * 0x101010, 0);
    }

    public static void main(String[] args) throws Exception {
        String output = args.length > 0 ? args[0] : "out/demo.png";
        int seconds = args.length > 1 ? Integer.parseInt(args[1]) : 5;
        boolean window = System.getenv("DISPLAY") != null && !GraphicsEnvironment.isHeadless();
        Frame frame = null;
        Canvas component = null;
        if (window) {
            frame = new Frame("wexel test card");
            component = new Canvas();
            component.setSize(WIDTH, HEIGHT);
            frame.add(component);
            frame.pack();
            frame.setVisible(true);
        }
        ja tk = new ja();
        tk.q(null, 0, 0);
        za canvas = new za();
        canvas.n(null, component, WIDTH, HEIGHT);
        tk.PA(canvas);
        testcard(tk);

        BufferedImage image = new BufferedImage(WIDTH, HEIGHT, BufferedImage.TYPE_INT_RGB);
        image.setRGB(0, 0, WIDTH, HEIGHT, tk.E(0, 0, WIDTH, HEIGHT), 0, WIDTH);
        File file = new File(output);
        if (file.getParentFile() != null) file.getParentFile().mkdirs();
        ImageIO.write(image, "png", file);
        System.out.println("wrote " + file);

        if (window) {
            final boolean[] closed = {false};
            frame.addWindowListener(new WindowAdapter() {
                @Override
                public void windowClosing(WindowEvent e) {
                    closed[0] = true;
                }
            });
            long end = System.currentTimeMillis() + seconds * 1000L;
            while (!closed[0] && System.currentTimeMillis() < end) {
                canvas.H(0, 0, WIDTH, HEIGHT);
                Thread.sleep(50);
            }
            frame.dispose();
        }
        tk.PA(null);
        canvas.ma(0);
        tk.ma(0);
    }
}
