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

    // A frame of the soak on the canvas: now and then a model destroyed and made again, sparks on
    // spare textures so that the store evicts and reloads, one model under a changing count of lights.
    public void churn(int frame) {
        Scene s = scene;
        int k = frame / 50 % s.models.length, n = 4;
        if (frame % 50 == 25) {
            s.models[k].ma(null);
            s.models[k] = s.lathe(s.seeds[k], k == s.models.length - 1);
        }
        draw(frame % STEPS, 0);
        short[] textures = new short[n];
        for (int i = 0; i < n; ++i) textures[i] = (short) (Scene.STAR + 1 + (frame * n + i) % 300);
        s.client.b(s.client.nativeid, 0, new int[] {512 << 12, -200 << 12, 512 << 12, 400 << 12, -220 << 12, 500 << 12,
                   600 << 12, -180 << 12, 520 << 12, 450 << 12, -240 << 12, 560 << 12}, new int[] {-1, -1, -1, -1},
                   new int[] {40960, 40960, 40960, 40960}, textures, n);
        s.tk.Q(frame % 3, new int[] {300, -120, 300, 400, 0xFFA040, 700, -100, 640, 300, 0x40A0FF}, new float[] {1f, 1f});
        s.models[k].BA(s.clone, s.scratch, 0x1, false, false);
        s.client.wa(s.client.nativeid, s.clone.nativeid, s.placement(k, frame % STEPS), null, 0);
        s.tk.Q(0, new int[0], new float[0]);
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
        if (!new File(path).exists()) return null;
        BufferedImage image = ImageIO.read(new File(path));
        return image.getRGB(0, 0, image.getWidth(), image.getHeight(), null, 0, image.getWidth());
    }

    public static void write(String path, int[] pixels) throws Exception {
        BufferedImage image = new BufferedImage(WIDTH, HEIGHT, BufferedImage.TYPE_INT_ARGB);
        image.setRGB(0, 0, WIDTH, HEIGHT, pixels, 0, WIDTH);
        new File(path).getParentFile().mkdirs();
        ImageIO.write(image, "png", new File(path));
    }
}
