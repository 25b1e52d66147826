import java.awt.Canvas;
import java.awt.Frame;
import java.awt.GraphicsEnvironment;
import java.awt.event.WindowAdapter;
import java.awt.event.WindowEvent;
import java.awt.image.BufferedImage;
import java.io.File;
import javax.imageio.ImageIO;

// Renders the scene into a PNG file and a fly-through into numbered PNGs beside it; where a display
// exists it also flies through live in a window for a fixed time. Prints frames per second and the
// time of each stage.
// usage: Demo OUTPUT.png [SECONDS]
public class Demo {
    static final int WIDTH = 960, HEIGHT = 720, STEPS = 24;

    static void write(int[] pixels, File file) throws Exception {
        BufferedImage image = new BufferedImage(WIDTH, HEIGHT, BufferedImage.TYPE_INT_RGB);
        image.setRGB(0, 0, WIDTH, HEIGHT, pixels, 0, WIDTH);
        if (file.getParentFile() != null) file.getParentFile().mkdirs();
        ImageIO.write(image, "png", file);
    }

    static void report(Scene scene, int frames, long nanos) {
        System.out.printf("%d frames of %dx%d, %.1f frames per second%n", frames, scene.width, scene.height,
                          frames * 1e9 / nanos);
        for (int s = 0; s < Scene.STAGES.length; ++s)
            System.out.printf("  %-10s %7.2f ms a frame%n", Scene.STAGES[s], scene.nanos[s] / 1e6 / frames);
    }

    public static void main(String[] args) throws Exception {
        File output = new File(args.length > 0 ? args[0] : "out/demo.png");
        int seconds = args.length > 1 ? Integer.parseInt(args[1]) : 10;
        boolean window = System.getenv("DISPLAY") != null && !GraphicsEnvironment.isHeadless();
        Frame frame = null;
        Canvas component = null;
        if (window) {
            frame = new Frame("wexel scene");
            component = new Canvas();
            component.setSize(WIDTH, HEIGHT);
            frame.add(component);
            frame.pack();
            frame.setVisible(true);
        }
        try (Scene scene = new Scene(new Scene.host(), component, WIDTH, HEIGHT)) {
            scene.draw(0, STEPS);
            write(scene.pixels(), output);
            System.out.println("wrote " + output);
            java.util.Arrays.fill(scene.nanos, 0);
            long start = System.nanoTime();
            File folder = new File(output.getParentFile(), "flythrough");
            for (int step = 0; step < STEPS; ++step) {
                scene.draw(step, STEPS);
                scene.present();
                long paused = System.nanoTime();
                write(scene.pixels(), new File(folder, String.format("%03d.png", step)));
                start += System.nanoTime() - paused;
            }
            System.out.println("wrote " + STEPS + " frames of the fly-through to " + folder);
            report(scene, STEPS, System.nanoTime() - start);
            if (window) live(scene, frame, seconds);
        }
        if (frame != null) frame.dispose();
    }

    // The fly-through shown in the window, round and round, until closed or the time is up.
    static void live(Scene scene, Frame frame, int seconds) {
        final boolean[] closed = {false};
        frame.addWindowListener(new WindowAdapter() {
            @Override
            public void windowClosing(WindowEvent e) {
                closed[0] = true;
            }
        });
        java.util.Arrays.fill(scene.nanos, 0);
        long start = System.nanoTime(), end = start + seconds * 1_000_000_000L, second = start;
        int frames = 0, shown = 0, laps = 240;
        while (!closed[0] && System.nanoTime() < end) {
            scene.draw(frames % laps, laps);
            scene.present();
            ++frames;
            if (System.nanoTime() - second >= 1_000_000_000L) {
                frame.setTitle(String.format("wexel scene: %d frames per second", frames - shown));
                shown = frames;
                second = System.nanoTime();
            }
        }
        if (frames > 0) report(scene, frames, System.nanoTime() - start);
    }
}
