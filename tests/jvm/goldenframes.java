import java.awt.image.BufferedImage;
import java.io.File;
import javax.imageio.ImageIO;

// The scene drawn into each kind of target for the golden test, which reads the buffers from the
// native side: 0 the canvas, colour and depth; 1 a sprite, colour only; 2 a surface, depth only,
// then copied into a second surface; 3 a sprite and a surface together.
public class goldenframes {
    public static final int WIDTH = 192, HEIGHT = 144, STEPS = 24;
    public final Scene scene = new Scene(new Scene.host(), null, WIDTH, HEIGHT);
    public final fa sprite = new fa();
    public final oa surface = new oa(), copy = new oa();

    public goldenframes() {
        sprite.UA(scene.tk, WIDTH, HEIGHT);
        surface.g(WIDTH, HEIGHT);
        copy.g(WIDTH, HEIGHT);
    }

    public void draw(int step, int kind) {
        ja t = scene.tk;
        if (kind == 0) t.PA(scene.canvas);
        else t.d(kind == 2 ? 0 : sprite.nativeid, kind == 1 ? 0 : surface.nativeid);
        scene.draw(step, STEPS);
        if (kind == 2) new o().AA(t.nativeid, 0, copy.nativeid, 0, 0, WIDTH, HEIGHT, 0, 0, false, true);
    }

    public void close() {
        scene.tk.PA(scene.canvas);
        sprite.M(sprite.nativeid);
        surface.za(surface.nativeid, 0);
        copy.za(copy.nativeid, 0);
        scene.close();
    }

    // 32 bits a pixel kept exactly, so depths go through the same files as colours.
    public static int[] read(String path) throws Exception {
        File file = new File(path);
        if (!file.exists()) return null;
        BufferedImage image = ImageIO.read(file);
        return image.getRGB(0, 0, image.getWidth(), image.getHeight(), null, 0, image.getWidth());
    }

    public static void write(String path, int[] pixels) throws Exception {
        BufferedImage image = new BufferedImage(WIDTH, HEIGHT, BufferedImage.TYPE_INT_ARGB);
        image.setRGB(0, 0, WIDTH, HEIGHT, pixels, 0, WIDTH);
        File file = new File(path);
        file.getParentFile().mkdirs();
        ImageIO.write(image, "png", file);
    }
}
