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
    static final int WIDTH = 960, HEIGHT = 720;

    final ja tk;
    final ba pool = new ba();

    final h torus = new h();

    Demo(ja tk) {
        this.tk = tk;
        pool.sa(0, 1 << 20);
        tk.n(pool);
        // The checkerboard is described before the build, which reads its descriptor.
        tk.V(3, 0, 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false, true, true, 0, false, false, 0);
        buildtorus();
    }

    // A torus of 24 by 12 quads lying in the xz plane, checkered by a cylinder mapping about y that
    // runs four times round, with four glows as billboards on faces of their own above it.
    void buildtorus() {
        int n = 24, m = 12, quads = n * m, glows = 4;
        int vertices = quads + 3 * glows, faces = 2 * quads + glows;
        int[] x = new int[vertices], y = new int[vertices], z = new int[vertices];
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < m; ++j) {
                double a = 2 * Math.PI * i / n, b = 2 * Math.PI * j / m, reach = 40 + 14 * Math.cos(b);
                x[i * m + j] = (int) Math.round(reach * Math.cos(a));
                y[i * m + j] = (int) Math.round(14 * Math.sin(b));
                z[i * m + j] = (int) Math.round(reach * Math.sin(a));
            }
        short[] fa = new short[faces], fb = new short[faces], fc = new short[faces], colours = new short[faces];
        short[] textures = new short[faces];
        byte[] types = new byte[faces], mappings = new byte[faces];
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < m; ++j) {
                int f = 2 * (i * m + j), p = i * m + j, q = (i + 1) % n * m + j;
                int pn = i * m + (j + 1) % m, qn = (i + 1) % n * m + (j + 1) % m;
                int[][] corners = {{p, pn, q}, {q, pn, qn}};
                for (int k = 0; k < 2; ++k) {
                    fa[f + k] = (short) corners[k][0];
                    fb[f + k] = (short) corners[k][1];
                    fc[f + k] = (short) corners[k][2];
                    colours[f + k] = (short) ((i * 64 / n) << 10 | 6 << 7 | 80);
                    textures[f + k] = 3;
                }
            }
        int[] billboards = new int[8 * glows];
        for (int g = 0; g < glows; ++g) {
            int f = 2 * quads + g, v = quads + 3 * g;
            double a = 2 * Math.PI * g / glows + 0.4;
            for (int k = 0; k < 3; ++k) {
                x[v + k] = (int) Math.round(40 * Math.cos(a)) + k;
                y[v + k] = -28 - k;
                z[v + k] = (int) Math.round(40 * Math.sin(a));
            }
            fa[f] = (short) v;
            fb[f] = (short) (v + 1);
            fc[f] = (short) (v + 2);
            colours[f] = (short) ((g * 16) << 10 | 7 << 7 | 100);
            textures[f] = -1;
            types[f] = 2;
            mappings[f] = (byte) 0xFF;
            int[] record = {f, 24, 24, 1, 0, 1, 0};
            System.arraycopy(record, 0, billboards, 7 * g, 7);
        }
        torus.U(null, pool, vertices, vertices, x, y, z, null, null, faces, fa, fb, fc, types, null, null, mappings,
                colours, textures, null, (byte) 0, null, 1, new byte[] {1}, new short[] {0}, new short[] {32767},
                new short[] {0}, new int[] {0}, new int[] {1920}, new int[] {4096}, new byte[] {0}, new byte[] {0},
                new int[] {0}, new int[] {0}, new int[] {0}, null, 0, 0, 0, 0x10, 100, 700, billboards);
    }

    // The torus turned by `frame` steps and tipped towards the camera, in a viewport of its own, lit
    // by the sun and an orange point light, fogged at its far side, its glows in the fog as well.
    void model(a client, int frame) {
        camera(245, 445, 190, 140, 170f);
        tk.m(0xFFFFF0, 0.9f, 0.3f, -0.4f, -0.7f, -0.6f);
        tk.IA(0.7f);
        tk.Q(1, new int[] {-70, -30, 100, 90, 0xFFA040}, new float[] {1f});
        tk.c(0xFF8090B0, 75, 0);
        double turn = frame * 0.05, tip = -0.6;
        float c = (float) Math.cos(turn), s = (float) Math.sin(turn);
        float ct = (float) Math.cos(tip), st = (float) Math.sin(tip);
        client.wa(client.nativeid, torus.nativeid, new float[] {c, -s * st, -s * ct, 0, 0, ct, -st, 0, s, c * st,
                  c * ct, 0, 0, 0, 120, 1}, null, 0);
        tk.c(0, 0, 0);
        tk.Q(0, new int[0], new float[0]);
        tk.k();
    }

    // A grey-to-colour gradient under rows of the three write modes, and shapes cut by the clip.
    void rectangles() {
        tk.ba(3, 0xFF000000);
        for (int x = 0; x < WIDTH; ++x) {
            int v = x * 255 / (WIDTH - 1);
            tk.B(x, 0, 1, HEIGHT, 0xFF000000 | v << 16 | (255 - v) << 8 | 0x40, 0);
        }
        int[] colours = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFFFF, 0xFF000000, 0xFFFFFF00};
        for (int i = 0; i < colours.length; ++i) {
            int x = 10 + i * 50;
            tk.B(x, 10, 40, 30, colours[i], 0);
            for (int a = 0; a < 8; ++a) tk.B(x + a * 5, 45, 5, 30, colours[i] & 0xFFFFFF | (a * 36) << 24, 1);
            tk.B(x, 80, 40, 30, colours[i] & 0x606060 | 0x80000000, 2);
        }
        tk.r(20, 120, 300, 200);
        tk.B(0, 110, 200, 60, 0xC0FFFFFF, 1);
        tk.o(0, 0, 280, 190);
        tk.B(150, 140, 400, 400, 0xFF202020, 0);
        tk.B(100, 160, 100, 100, 0x80FF8000, 2);
        tk.L();
    }

    // A round image with soft edges: alpha falls off towards the rim.
    static int[] ball(int size) {
        int[] p = new int[size * size];
        float c = (size - 1) / 2f;
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) {
                float d = (float) Math.hypot(x - c, y - c) / c;
                int a = d >= 1 ? 0 : (int) (255 * Math.min(1, (1 - d) * 3));
                int r = 255 - x * 255 / size, g = y * 255 / size, b = 160;
                p[y * size + x] = a << 24 | r << 16 | g << 8 | b;
            }
        return p;
    }

    static fa sprite(ja tk, int[] pixels, int size) {
        fa s = new fa();
        s.RA(tk, pixels, 0, size, size, size, false);
        return s;
    }

    // The fifteen tint and write pairs, tiled and scaled sprites, and a depth-tested scale.
    void sprites(fa ball) {
        int[] tintcolours = {0xFF80C0FF, 0, 0x40FF2000, 0xFF303030, 0xFF606060};
        for (int tint = 0; tint < 5; ++tint)
            for (int blend = 0; blend < 3; ++blend)
                ball.Y(ball.nativeid, 330 + tint * 36, 10 + blend * 36, tint, tintcolours[tint], blend);
        ball.U(ball.nativeid, 2, 2, 2, 2);
        ball.aa(ball.nativeid, 520, 10, 150, 100, 1, 0, 1);
        ball.U(ball.nativeid, 0, 0, 0, 0);
        ball.ha(ball.nativeid, 690, 10, 120, 60, 1, 0, 1);
        ball.ha(ball.nativeid, 820, 10, 24, 100, 0, 0xFFFFFF00, 1);
        ball.ha(ball.nativeid, 850, 10, 100, 24, 3, 0xFF400000, 2);
        ball.G(ball.nativeid, 690, 75, 0, 120, 40, 1, 0, 1);
    }

    // A mask shaped like a disc of the given radius.
    wa discmask(int radius) {
        int rows = 2 * radius;
        int[] offsets = new int[rows], widths = new int[rows];
        for (int r = 0; r < rows; ++r) {
            double y = r + 0.5 - radius;
            int half = (int) Math.sqrt(Math.max(0, radius * radius - y * y));
            offsets[r] = radius - half;
            widths[r] = 2 * half;
        }
        wa mask = new wa();
        mask.l(null, pool, rows, rows, offsets, widths);
        return mask;
    }

    // Lines in every direction and all modes, discs, a mask fill and lines through a mask.
    void shapes(wa mask) {
        int cx = 90, cy = 300;
        for (int i = 0; i < 48; ++i) {
            double a = i * Math.PI / 24;
            int mode = i % 3, colour = mode == 0 ? 0xFFFFFFFF : mode == 1 ? 0x80FFFF00 : 0x4000FFFF;
            tk.YA(cx, cy, cx + (int) (75 * Math.cos(a)), cy + (int) (75 * Math.sin(a)), colour, mode);
        }
        for (int i = 0; i < 8; ++i) {
            tk.XA(180, 230 + i * 4, 120, 0xFF000000 | i * 0x1F1F1F, 0);
            tk.G(180 + i * 4, 270, 60, 0xFFFF00FF, 1);
        }
        int[] radii = {2, 6, 12, 20, 30};
        for (int i = 0; i < radii.length; ++i) {
            tk.CA(340 + i * 60, 260, radii[i], 0xFFFF4040, 0);
            tk.CA(340 + i * 60, 320, radii[i], 0x8040FF40, 1);
            tk.CA(340 + i * 60 + 10, 320, radii[i], 0x404040FF, 2);
        }
        tk.DA(0xFF2040A0, mask, 640, 230);
        for (int i = 0; i < 20; ++i) tk.R(630, 230 + i * 8, 720, 300 - i * 3, 0xFFFFFFFF, 0, mask, 640, 230);
        tk.DA(0xFFA02040, mask, 740, 230);
    }

    // Glyphs of a small capital font, five by seven, '#' set and '.' clear.
    static final String LETTERS = "ADEFLNORSTWX";
    static final String[] SHAPES = {
        ".###.#...##...#######...##...##...#", "####.#...##...##...##...##...#####.", "######....#....####.#....#....#####",
        "######....#....####.#....#....#....", "#....#....#....#....#....#....#####", "#...###..##.#.##..###...##...##...#",
        ".###.#...##...##...##...##...#.###.", "####.#...##...#####.#.#..#..#.#...#", ".#####....#.....###.....#....#####.",
        "#####..#....#....#....#....#....#..", "#...##...##...##.#.##.#.##.#.#.#.#.", "#...##...#.#.#...#...#.#.#...##...#"};

    // The font's glyph bytes at twice the size: coverage 255 inside, softer at the corners.
    static byte[][] glyphs(int mode) {
        byte[][] g = new byte[LETTERS.length()][];
        for (int i = 0; i < g.length; ++i) {
            g[i] = new byte[10 * 14];
            for (int y = 0; y < 14; ++y)
                for (int x = 0; x < 10; ++x) {
                    boolean on = SHAPES[i].charAt((y / 2) * 5 + x / 2) == '#';
                    int value = !on ? 0 : mode == 0 ? ((x + y) % 2 == 0 ? 255 : 160) : mode == 1 ? 1 : 1 + y / 2;
                    g[i][y * 10 + x] = (byte) value;
                }
        }
        return g;
    }

    static int[] fill(int n, int value) {
        int[] a = new int[n];
        java.util.Arrays.fill(a, value);
        return a;
    }

    static int glyph(char c) {
        return LETTERS.indexOf(c);
    }

    // Text in the three font classes, plain, turned by a quarter and through a mask.
    void text(wa mask) {
        int n = LETTERS.length();
        int[] widths = fill(n, 10), heights = fill(n, 14), lefts = fill(n, 0), tops = fill(n, -14);
        ea coverage = new ea();
        coverage.n(null, tk, glyphs(0), widths, heights, lefts, tops);
        m mono = new m();
        mono.n(null, tk, glyphs(1), widths, heights, lefts, tops);
        ia palette = new ia();
        int[] colours = new int[9];
        for (int i = 1; i < 9; ++i) colours[i] = 0xFF000000 | (255 - i * 20) << 16 | i * 30 << 8 | 255;
        palette.EA(null, tk, glyphs(2), colours, widths, heights, lefts, tops);
        String line = "SOFTWARE RENDER";
        for (int i = 0; i < line.length(); ++i) {
            int g = glyph(line.charAt(i));
            if (g < 0) continue;
            int x = 20 + i * 12;
            coverage.UA(g, x, 420, 0xFFFFFFFF, 0);
            mono.UA(g, x, 440, 0xFFFFE000, 0);
            mono.UA(g, x, 460, 0x80FFFFFF, 0);
            palette.UA(g, x, 480, 0, false);
            palette.UA(g, x, 500, 0xFF00FF80, true);
            coverage.f(g, 220, 400 + i * 12, 0xFF00FFFF, 0);
            coverage.P(g, 250 + (i % 8) * 12, 425 + (i / 8) * 20, 0xFFFFFFFF, 0, mask, 250, 390);
        }
        coverage.ma();
        mono.ma();
        palette.ma();
    }

    // A ring of turned sprites, and one drawn through a mask.
    void turned(fa ball, wa mask) {
        int cx = 560, cy = 520, size = 32;
        for (int i = 0; i < 12; ++i) {
            double a = i * Math.PI / 6, s = 0.6 + 0.1 * i;
            float ux = (float) (Math.cos(a) * size * s), uy = (float) (Math.sin(a) * size * s);
            float x0 = (float) (cx + 110 * Math.cos(a)) - (ux - uy) / 2, y0 = (float) (cy + 110 * Math.sin(a)) - (uy + ux) / 2;
            ball.e(ball.nativeid, x0, y0, x0 + ux, y0 + uy, x0 - uy, y0 + ux, i % 5, 0x80FFFFFF, i % 3);
        }
        ball.e(ball.nativeid, cx + 40, cy - 30, cx - 10, cy + 30, cx - 40, cy - 60, 1, 0, 1);
        ball.FA(ball.nativeid, 780, 420, 940, 440, 760, 600, 0, mask.nativeid, 800, 450, false);
    }

    // A colour of the hue wheel, i of n, fully opaque.
    static int hue(int i, int n) {
        return 0xFF000000 | java.awt.Color.HSBtoRGB(i / (float) n, 0.8f, 1f) & 0xFFFFFF;
    }

    // Gouraud triangles round a white centre, and a star of thick lines of growing width.
    void trianglesandlines(a client) {
        int cx = 840, cy = 635, n = 12;
        for (int i = 0; i < n; ++i) {
            double a0 = i * 2 * Math.PI / n, a1 = (i + 1) * 2 * Math.PI / n;
            client.ra(client.nativeid, cx, cy, (float) (cx + 75 * Math.cos(a0)), (float) (cy + 75 * Math.sin(a0)),
                      (float) (cx + 75 * Math.cos(a1)), (float) (cy + 75 * Math.sin(a1)), 0xFFFFFFFF, hue(i, n),
                      hue(i + 1, n));
        }
        for (int i = 0; i < 10; ++i) {
            double a = i * Math.PI / 5 + 0.2;
            client.K(client.nativeid, 0, 890, 320, 890 + (int) (60 * Math.cos(a)), 320 + (int) (60 * Math.sin(a)),
                     hue(i, 10), 1 + i, 0);
        }
    }

    // The host's textures, given from within the library's callback the first time a draw needs
    // one: 1 a soft white glow (blended by its alpha), 2 a star (its empty texels skipped), 3 an
    // opaque checkerboard that repeats.
    static final class host extends ja {
        @Override
        public boolean SA(short id) {
            int[] p = new int[128 * 128];
            for (int y = 0; y < 128; ++y)
                for (int x = 0; x < 128; ++x) {
                    double dx = (x - 63.5) / 64, dy = (y - 63.5) / 64, r = Math.hypot(dx, dy);
                    int v;
                    if (id == 1) v = (int) (255 * Math.max(0, 1 - r) * Math.max(0, 1 - r)) << 24 | 0xFFFFFF;
                    else if (id == 2) v = r < 0.25 + 0.7 * Math.pow(Math.abs(Math.cos(2.5 * Math.atan2(dy, dx))), 8) ? 0xFFFFFFFF : 0;
                    else v = ((x >> 4) + (y >> 4)) % 2 == 0 ? 0xFFFFFFFF : 0xFF404040;
                    p[y * 128 + x] = v;
                }
            F(id, p, 0, id == 1 ? 2 : id == 2 ? 1 : 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false, id == 3, id == 3,
              0, false, false, 0);
            return true;
        }
    }

    // A camera at the origin looking down z in perspective, from 1 to `far`, through a viewport of
    // its own.
    void camera(int x, int y, int w, int h, float far) {
        tk.GA(0f, 1f);
        tk.A(x, y, w, h);
        float near = 1f, f = 1.6f, aspect = w / (float) h;
        tk.wa(new float[] {f / aspect, 0, 0, 0, 0, f, 0, 0, 0, 0, (far + near) / (far - near), 1, 0, 0,
                           -2 * far * near / (far - near), 0});
        tk.AA(new float[] {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    }

    // A helix of particles seen in perspective through a viewport of its own: blended discs, glows,
    // stars and a few checkered squares.
    void particles(a client) {
        camera(0, 590, 420, 125, 200f);
        int n = 120;
        int[] positions = new int[3 * n], colours = new int[n], sizes = new int[n];
        short[] textures = new short[n];
        for (int i = 0; i < n; ++i) {
            double a = i * 0.3;
            positions[3 * i] = (int) ((Math.cos(a) * 16 + (i - n / 2) * 1.3) * 4096);
            positions[3 * i + 1] = (int) ((Math.sin(a) * 11 + 9 * Math.sin(i * 0.05)) * 4096);
            positions[3 * i + 2] = (int) ((48 + Math.sin(a) * 14) * 4096);
            colours[i] = hue(i, n) & 0xFFFFFF | (i % 4 == 0 ? 0xA0000000 : 0xFF000000);
            sizes[i] = 2048 * (3 + i % 3);
            textures[i] = (short) (i % 15 == 7 ? 3 : i % 4 == 0 ? -1 : i % 4 == 1 ? 2 : 1);
        }
        client.b(client.nativeid, 0, positions, colours, sizes, textures, n);
        tk.k();
    }

    void testcard(int frame) {
        rectangles();
        fa ball = sprite(tk, ball(32), 32);
        wa mask = discmask(40), textmask = discmask(50);
        sprites(ball);
        shapes(mask);
        text(textmask);
        turned(ball, mask);
        a client = new a();
        client.ha(0, 0, 0, 0, 0);
        particles(client);
        trianglesandlines(client);
        model(client, frame);
        client.R(client.nativeid, 0);
        mask.ma(0);
        textmask.ma(0);
        ball.M(ball.nativeid);
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
        ja tk = new host();
        tk.q(tk, 4, 0);
        za canvas = new za();
        canvas.n(null, component, WIDTH, HEIGHT);
        tk.PA(canvas);
        Demo demo = new Demo(tk);
        demo.testcard(0);

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
            for (int turn = 1; !closed[0] && System.currentTimeMillis() < end; ++turn) {
                demo.testcard(turn);
                canvas.H(0, 0, WIDTH, HEIGHT);
                Thread.sleep(50);
            }
            frame.dispose();
        }
        tk.PA(null);
        canvas.ma(0);
        demo.torus.ma(null);
        demo.pool.ma(0);
        tk.ma(0);
    }
}
