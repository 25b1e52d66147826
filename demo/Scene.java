import java.awt.Component;
import java.util.Random;

// A small world drawn through the host classes only, as a game would: a hilly ground of layered
// textured tiles under fog, lit and textured models that sway and bob, one of them translucent,
// particles, and 2D on top (sprites, a turned sprite, text in the three font classes, a minimap).
// Everything is made here from fixed seeds, so a step of the fly-through draws the same pixels on
// every run: the demo, the golden frames, the soak and the benchmark all draw this one scene.
// Only StrictMath is used, so the world is the same on every machine.
public final class Scene implements AutoCloseable {
    // The stages whose time the frame reports.
    public static final String[] STAGES = {"ground", "models", "particles", "2D", "present"};
    static final int TILES = 8, TILE = 128, WORLD = TILES * TILE;
    // Ids from 1 to STAR are the scene's own; those above are spares, more than the texture store
    // keeps at once, for a host that churns through textures.
    static final int TEXTURES = 512;
    static final int GRASS = 1, ROCK = 2, SAND = 3, BARK = 4, GLOW = 5, STAR = 6;

    public final ja tk;
    public final za canvas = new za();
    public final int width, height;
    public final ba pool = new ba();
    public final long[] nanos = new long[STAGES.length];
    final Component component;
    final int[][] heights = new int[TILES + 1][TILES + 1];
    i ground;
    final h[] models;
    final long[] seeds;
    final int[][] placements;  // x, z, yaw (binary angle) of each model
    final aa[] footprints;     // each model's footprint on the shadow map, and where it stands
    final int[][] footat;
    final h clone = new h(), scratch = new h();
    final a client = new a();
    final fa ball;
    final wa mask;
    final ea coverage = new ea();
    final m mono = new m();
    final ia palette = new ia();

    // The host's textures, given from within the library's callback the first time a draw needs
    // one: seeded noise on the ground colours, bark stripes, a soft glow blended by its alpha and
    // a star whose empty texels are skipped.
    public static class host extends ja {
        @Override
        public boolean SA(short id) {
            F(id, texture(id), 0, id == GLOW ? 2 : id == STAR ? 1 : 0, 0, 0, 0, false, 0, 0, 0, 0, false, false,
              false, true, true, 0, false, false, 0);
            return true;
        }
    }

    static int[] texture(int id) {
        int[] p = new int[128 * 128];
        Random noise = new Random(id);
        int[] base = {0, 0x4E8A2C, 0x7A746A, 0xC8B078, 0x6A4428, 0x808080};
        for (int y = 0; y < 128; ++y)
            for (int x = 0; x < 128; ++x) {
                double dx = (x - 63.5) / 64, dy = (y - 63.5) / 64, r = StrictMath.hypot(dx, dy);
                int v;
                if (id == GLOW) v = (int) (255 * StrictMath.max(0, 1 - r) * StrictMath.max(0, 1 - r)) << 24 | 0xFFE8C0;
                else if (id == STAR)
                    v = r < 0.25 + 0.7 * StrictMath.pow(StrictMath.abs(StrictMath.cos(2.5 * StrictMath.atan2(dy, dx))), 8)
                        ? 0xFFFFFFFF : 0;
                else {
                    int grain = noise.nextInt(48) - 24 + (id == BARK ? (x % 16 < 3 ? -40 : 0) : 0)
                                + (id == ROCK && ((x >> 4) + (y >> 5)) % 3 == 0 ? -30 : 0);
                    int colour = base[StrictMath.min(id, base.length - 1)];
                    v = 0xFF000000 | shift(colour >> 16, grain) << 16 | shift(colour >> 8 & 255, grain) << 8
                        | shift(colour & 255, grain);
                }
                p[y * 128 + x] = v;
            }
        return p;
    }

    static int shift(int channel, int by) {
        return StrictMath.max(0, StrictMath.min(255, channel + by));
    }

    // A toolkit of the host's class drawing into a canvas of the given size, shown on component
    // when there is one.
    public Scene(ja tk, Component component, int width, int height) {
        this.tk = tk;
        this.component = component;
        this.width = width;
        this.height = height;
        tk.q(tk, TEXTURES, 0);
        canvas.n(null, component, width, height);
        tk.PA(canvas);
        pool.sa(0, 1 << 22);
        tk.n(pool);
        // Models read their textures' descriptors as they are built.
        int[] average = {0, 16 << 10 | 4 << 7 | 50, 1 << 7 | 60, 8 << 10 | 3 << 7 | 80, 5 << 10 | 3 << 7 | 40, 0, 0};
        for (int t = 1; t < TEXTURES; ++t)
            tk.V(t, t < average.length ? average[t] : 0, t == GLOW ? 2 : t == STAR ? 1 : 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false, true, true,
                 0, false, false, 0);
        buildground();
        Random seeds = new Random(15);
        models = new h[6];
        this.seeds = new long[models.length];
        placements = new int[models.length][];
        footprints = new aa[models.length];
        footat = new int[models.length][];
        for (int k = 0; k < models.length; ++k) {
            this.seeds[k] = seeds.nextLong();
            models[k] = lathe(this.seeds[k], k == models.length - 1);
            int x = 160 + seeds.nextInt(WORLD - 320), z = 160 + seeds.nextInt(WORLD - 320);
            placements[k] = new int[] {x, z, seeds.nextInt(16384)};
        }
        clone.ba(null);
        scratch.ba(null);
        client.ha(0, 0, 0, 0, 0);
        ball = new fa();
        ball.RA(tk, ball(32), 0, 32, 32, 32, false);
        mask = discmask(24);
        fonts();
    }

    // Heights of the grid, negative being up: two crossing waves over a bowl.
    void buildground() {
        for (int a = 0; a <= TILES; ++a)
            for (int b = 0; b <= TILES; ++b)
                heights[a][b] = (int) (-60 * StrictMath.sin(a * 0.8) * StrictMath.cos(b * 0.6) - 4 * (a - 4) * (b - 4));
        ground = new i();
        // Shadow cells of 8 units, 16 to a tile; the map's flag.
        tk.J(8);
        ground.G(null, tk, TILES, TILES, heights, heights, TILE, 0, 0x10);
        for (int a = 2; a < TILES; a += 3) ground.LA(a, a, 40);
        for (int x = 0; x < TILES; ++x)
            for (int z = 0; z < TILES; ++z) uploadtile(x, z);
        ground.SA();
    }

    // A tile of four quads, eight faces; its kind by position: one texture, three textures blended
    // across each face, one texture at half scale, or plain colour.
    void uploadtile(int x, int z) {
        int n = 24, kind = (x * 3 + z * 5) % 4;
        int[] xs = new int[n], zs = new int[n], colours = new int[n], textures = new int[n], scales = new int[n];
        int[][] corners = {{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 1}, {0, 1}};
        int[] layered = {GRASS, ROCK, SAND};
        for (int q = 0; q < 4; ++q)
            for (int c = 0; c < 6; ++c) {
                int e = q * 6 + c;
                xs[e] = ((q & 1) + corners[c][0]) * TILE / 2;
                zs[e] = ((q >> 1) + corners[c][1]) * TILE / 2;
                colours[e] = (kind == 3 ? 40 : 16) << 10 | 4 << 7 | (70 + 8 * ((x + z + q) % 3));
                textures[e] = kind == 3 ? -1 : kind == 1 ? layered[c % 3] : kind == 2 ? ROCK : GRASS;
                scales[e] = kind == 2 ? TILE / 2 : TILE;
            }
        ground.ya(x, z, xs, null, zs, null, colours, colours, textures, scales, 0, 0, 0, true);
    }

    // A surface of revolution about y from a seeded profile, its faces banded in colour and bark
    // textured by a cylinder mapping, with a glow as a billboard above it. The translucent one lets
    // what is behind it show through every face.
    h lathe(long seed, boolean translucent) {
        Random r = new Random(seed);
        int n = 12, rings = 6, glows = 1;
        double[] radius = new double[rings];
        for (int j = 0; j < rings; ++j) radius[j] = 20 + r.nextInt(40);
        int tall = 100 + r.nextInt(80), hue = r.nextInt(64);
        int vertices = n * rings + 3 * glows, quads = n * (rings - 1), faces = 2 * quads + glows;
        int[] x = new int[vertices], y = new int[vertices], z = new int[vertices];
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < rings; ++j) {
                double a = 2 * StrictMath.PI * i / n;
                x[i * rings + j] = (int) StrictMath.round(radius[j] * StrictMath.cos(a));
                y[i * rings + j] = -j * tall / (rings - 1);
                z[i * rings + j] = (int) StrictMath.round(radius[j] * StrictMath.sin(a));
            }
        short[] fa = new short[faces], fb = new short[faces], fc = new short[faces], colours = new short[faces];
        short[] textures = new short[faces];
        byte[] types = new byte[faces], mappings = new byte[faces], alphas = translucent ? new byte[faces] : null;
        for (int i = 0; i < n; ++i)
            for (int j = 0; j + 1 < rings; ++j) {
                int f = 2 * (i * (rings - 1) + j), p = i * rings + j, q = (i + 1) % n * rings + j;
                int[][] corners = {{p, q, p + 1}, {q, q + 1, p + 1}};
                for (int k = 0; k < 2; ++k) {
                    fa[f + k] = (short) corners[k][0];
                    fb[f + k] = (short) corners[k][1];
                    fc[f + k] = (short) corners[k][2];
                    colours[f + k] = (short) ((hue + j * 3) % 64 << 10 | 5 << 7 | 70);
                    textures[f + k] = (short) (translucent || j % 2 == 1 ? -1 : BARK);
                    if (translucent) alphas[f + k] = (byte) 110;
                }
            }
        int f = 2 * quads, v = n * rings;
        for (int k = 0; k < 3; ++k) {
            x[v + k] = k;
            y[v + k] = -tall - 14 - k;
        }
        fa[f] = (short) v;
        fb[f] = (short) (v + 1);
        fc[f] = (short) (v + 2);
        colours[f] = (short) (hue << 10 | 7 << 7 | 100);
        textures[f] = -1;
        types[f] = 2;
        mappings[f] = (byte) 0xFF;
        if (translucent) alphas[f] = 0;
        int[] billboards = {f, 40, 40, GLOW, 0, 1, 0, 0};
        h model = new h();
        model.U(null, pool, vertices, vertices, x, y, z, null, null, faces, fa, fb, fc, types, null, alphas, mappings,
                colours, textures, null, (byte) 0, null, 1, new byte[] {1}, new short[] {0}, new short[] {32767},
                new short[] {0}, new int[] {0}, new int[] {1920}, new int[] {4096}, new byte[] {0}, new byte[] {0},
                new int[] {0}, new int[] {0}, new int[] {0}, null, 0, 0, 0xFFFFF, 0x10, 100, 700, billboards);
        return model;
    }

    // The ground's height under a world point, as the ground interpolates it.
    int heightat(int x, int z) {
        int ia = x / TILE, ib = z / TILE, fx = x % TILE, fz = z % TILE;
        int p = (heights[ia][ib] * (TILE - fx) + heights[ia + 1][ib] * fx) / TILE;
        int q = (heights[ia][ib + 1] * (TILE - fx) + heights[ia + 1][ib + 1] * fx) / TILE;
        return (p * (TILE - fz) + q * fz) / TILE;
    }

    // The camera at step `step` of a fly-through of `steps`: once round the world, rising and
    // falling, always looking at its middle. Returns the view matrix, rows acting on row vectors.
    static float[] view(int step, int steps) {
        double t = 2 * StrictMath.PI * step / steps, reach = 760 + 120 * StrictMath.sin(2 * t);
        double px = WORLD / 2 + reach * StrictMath.sin(t), pz = WORLD / 2 - reach * StrictMath.cos(t);
        double py = -300 - 80 * StrictMath.cos(3 * t);
        double fx = WORLD / 2 - px, fy = 40 - py, fz = WORLD / 2 - pz, fl = StrictMath.sqrt(fx * fx + fy * fy + fz * fz);
        fx /= fl;
        fy /= fl;
        fz /= fl;
        // Right is level; down completes the frame: x right, y down, z forward.
        double rx = fz, rz = -fx, rl = StrictMath.hypot(rx, rz);
        rx /= rl;
        rz /= rl;
        double dx = fy * rz, dy = fz * rx - fx * rz, dz = -fy * rx;
        return new float[] {(float) rx, (float) dx, (float) fx, 0, 0, (float) dy, (float) fy, 0, (float) rz, (float) dz,
                            (float) fz, 0, (float) -(px * rx + pz * rz), (float) -(px * dx + py * dy + pz * dz),
                            (float) -(px * fx + py * fy + pz * fz), 1};
    }

    static final float NEAR = 16f, FAR = 2400f;

    void camera(float[] view, int w, int h) {
        tk.GA(0f, 1f);
        tk.k();
        float f = 1.4f, aspect = w / (float) h;
        tk.wa(new float[] {f / aspect, 0, 0, 0, 0, f, 0, 0, 0, 0, (FAR + NEAR) / (FAR - NEAR), 1, 0, 0,
                           -2 * FAR * NEAR / (FAR - NEAR), 0});
        tk.AA(view);
    }

    // Eye depth of a world point under the view.
    static float depth(float[] view, float x, float y, float z) {
        return x * view[2] + y * view[6] + z * view[10] + view[14];
    }

    // Step `step` of a fly-through of `steps` into the current target, timed by stage. The target
    // decides what is drawn: colour, depth or both.
    public void draw(int step, int steps) {
        long start = System.nanoTime();
        float[] view = view(step, steps);
        tk.ba(3, 0xFF8FA8C8);
        camera(view, width, height);
        tk.m(0xFFF4E0, 0.9f, 0.35f, -0.5f, 0.8f, -0.3f);
        tk.IA(0.75f);
        tk.c(0xFF8FA8C8, 900, 0);
        groundlights(step);
        footprints(step);
        for (int x = 0; x < TILES; ++x)
            for (int z = 0; z < TILES; ++z) {
                // The ground is not clipped: the host draws only tiles wholly in front.
                boolean front = true;
                for (int c = 0; c < 4; ++c) {
                    int a = x + (c & 1), b = z + (c >> 1);
                    front &= depth(view, a * TILE, heights[a][b], b * TILE) > 2 * NEAR;
                }
                if (front) client.v(client.nativeid, ground.nativeid, x, z);
            }
        long ground = System.nanoTime();
        tk.Q(2, new int[] {300, -120, 300, 400, 0xFFA040, 700, -100, 640, 300, 0x40A0FF}, new float[] {1f, 1f});
        for (int k = 0; k < models.length; ++k) drawmodel(k, step);
        tk.Q(0, new int[0], new float[0]);
        long models = System.nanoTime();
        particles(step);
        long particles = System.nanoTime();
        overlay(step);
        long overlay = System.nanoTime();
        nanos[0] += ground - start;
        nanos[1] += models - ground;
        nanos[2] += particles - models;
        nanos[3] += overlay - particles;
    }

    // Two coloured lights circling the world's middle, taken off and put back where they are now
    // each step: the ground works out a light's reach only when the light is added.
    void groundlights(int step) {
        int[] whole = new int[25];
        java.util.Arrays.fill(whole, 1);
        for (int k = 0; k < 2; ++k) {
            double a = step * 0.15 + k * StrictMath.PI;
            int x = (int) (WORLD / 2 + 260 * StrictMath.cos(a)), z = (int) (WORLD / 2 + 260 * StrictMath.sin(a));
            ground.d(k + 1);
            ground.A(k + 1, x, (int) heightat(x, z) - 80, z, 2 * TILE, k == 0 ? 0xFF8020 : 0x2060FF, whole);
        }
        ground.t(new float[] {1f, 0.8f});
    }

    // Model k cloned from its source and posed for a step: swayed about its base, bobbed and
    // turned, so a step poses it the same whatever came before; then fitted to the ground, each
    // vertex following the height under it (the first model, which walks, tilting to the slope
    // instead).
    void pose(int k, int[] at, int step) {
        models[k].BA(clone, scratch, 0x40007, false, false);
        clone.w(0, 0, 0, 0);
        clone.w(2, 0, 0, (int) (400 * StrictMath.sin(step * 0.2 + k)));
        clone.w(1, 0, (int) (6 * StrictMath.sin(step * 0.3 + 2 * k)), 0);
        clone.f(at[3]);
        if (k == 0) clone.pa(3, 20 | 20 << 8 | 24 << 16 | 24 << 24, ground, null, at[0], at[1], at[2]);
        else clone.pa(1, 0, ground, null, at[0], at[1], at[2]);
        clone.ka();
    }

    // Every model's footprint taken off the ground's shadow map where it stood and put back where
    // it stands now, before the ground is drawn.
    void footprints(int step) {
        for (int k = 0; k < models.length; ++k) {
            int[] at = standing(k, step);
            if (footprints[k] != null) ground.NA(footprints[k], footat[k][0], footat[k][1], footat[k][2]);
            pose(k, at, step);
            footprints[k] = (aa) clone.ga(footprints[k]);
            footat[k] = at;
            if (footprints[k] != null) ground.UA(footprints[k], at[0], at[1], at[2]);
        }
    }

    void drawmodel(int k, int step) {
        pose(k, standing(k, step), step);
        client.wa(client.nativeid, clone.nativeid, placement(k, step), null, 0);
    }

    // Where model k stands at a step: x, the ground's height there, z, and its turn about y in
    // binary angle; the first model walks a circle round the world's middle.
    int[] standing(int k, int step) {
        int[] p = placements[k];
        if (k != 0) return new int[] {p[0], heightat(p[0], p[1]), p[1], p[2]};
        double a = step * 0.08;
        int x = WORLD / 2 + (int) (300 * StrictMath.cos(a)), z = WORLD / 2 + (int) (300 * StrictMath.sin(a));
        return new int[] {x, heightat(x, z), z, (int) (-a * 16384 / (2 * StrictMath.PI)) & 0x3FFF};
    }

    // The model's matrix: moved to where it stands, its turn being the clone's own.
    public float[] placement(int k, int step) {
        int[] at = standing(k, step);
        return new float[] {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, at[0], at[1], at[2], 1};
    }

    // Sparks rising from the world's middle in a slow spiral: glows, stars and plain discs.
    void particles(int step) {
        int n = 96;
        int[] positions = new int[3 * n], colours = new int[n], sizes = new int[n];
        short[] textures = new short[n];
        for (int i = 0; i < n; ++i) {
            double a = i * 0.4 + step * 0.05, rise = (i * 7 + step * 3) % 260;
            positions[3 * i] = (int) ((WORLD / 2 + StrictMath.cos(a) * (30 + rise * 0.3)) * 4096);
            positions[3 * i + 1] = (int) ((heightat(WORLD / 2, WORLD / 2) - rise) * 4096);
            positions[3 * i + 2] = (int) ((WORLD / 2 + StrictMath.sin(a) * (30 + rise * 0.3)) * 4096);
            colours[i] = (i % 3 == 0 ? 0xA0FFC040 : 0xFFFFE0A0) ^ (i * 0x0F0700 & 0x3F3F00);
            sizes[i] = 2048 * (6 + i % 5);
            textures[i] = (short) (i % 3 == 0 ? -1 : i % 3 == 1 ? GLOW : STAR);
        }
        client.b(client.nativeid, 0, positions, colours, sizes, textures, n);
    }

    // 2D over the world: a minimap of the ground, sprites in the three blends, a turned sprite,
    // text in the three font classes, one line through a mask.
    void overlay(int step) {
        tk.k();
        tk.L();
        int cell = StrictMath.max(2, width / 80), side = cell * TILES;
        byte[][] visible = new byte[TILES][TILES];
        for (byte[] row : visible) java.util.Arrays.fill(row, (byte) 1);
        tk.B(width - side - 12, 8, side + 8, side + 8, 0x80000000, 1);
        client.i(client.nativeid, ground.nativeid, width - side - 8, 12, cell << 8, 0, 0, TILES, TILES, visible);
        for (int blend = 1; blend < 3; ++blend) ball.Y(ball.nativeid, 12 + blend * 40, height - 44, 0, 0, blend);
        ball.ha(ball.nativeid, 132, height - 60, 48, 48, 1, 0x80FF8040, 1);
        double a = step * 0.15;
        float ux = (float) (StrictMath.cos(a) * 40), uy = (float) (StrictMath.sin(a) * 40), cx = 230, cy = height - 36;
        ball.e(ball.nativeid, cx - (ux - uy) / 2, cy - (uy + ux) / 2, cx + (ux + uy) / 2, cy + (uy - ux) / 2,
               cx - (ux + uy) / 2, cy + (ux - uy) / 2, 1, 0x80FFFFFF, 1);
        String line = "SOFTWARE RENDER";
        for (int i = 0; i < line.length(); ++i) {
            int g = LETTERS.indexOf(line.charAt(i));
            if (g < 0) continue;
            coverage.UA(g, 12 + i * 12, 24, 0xFFFFFFFF, 0);
            mono.UA(g, 12 + i * 12, 44, 0xC0FFE000, 0);
            palette.UA(g, 12 + i * 12, 64, 0, false);
            coverage.P(g, 200 + i * 12, 24, 0xFF80FFFF, 0, mask, 230, 4);
        }
        tk.R(200, 40, 290, 8, 0xFFFF4040, 0, mask, 230, 4);
    }

    // Shows the frame on the component, timed as the last stage.
    public void present() {
        long start = System.nanoTime();
        if (component != null) canvas.H(0, 0, width, height);
        nanos[4] += System.nanoTime() - start;
    }

    // A round image with soft edges: alpha falls off towards the rim.
    static int[] ball(int size) {
        int[] p = new int[size * size];
        float c = (size - 1) / 2f;
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) {
                float d = (float) StrictMath.hypot(x - c, y - c) / c;
                int a = d >= 1 ? 0 : (int) (255 * StrictMath.min(1, (1 - d) * 3));
                p[y * size + x] = a << 24 | (255 - x * 255 / size) << 16 | y * 255 / size << 8 | 160;
            }
        return p;
    }

    // A mask shaped like a disc of the given radius.
    wa discmask(int radius) {
        int rows = 2 * radius;
        int[] offsets = new int[rows], widths = new int[rows];
        for (int r = 0; r < rows; ++r) {
            double y = r + 0.5 - radius;
            int half = (int) StrictMath.sqrt(StrictMath.max(0, radius * radius - y * y));
            offsets[r] = radius - half;
            widths[r] = 2 * half;
        }
        wa disc = new wa();
        disc.l(null, pool, rows, rows, offsets, widths);
        return disc;
    }

    // Glyphs of a small capital font, five by seven, '#' set and '.' clear.
    static final String LETTERS = "ADEFLNORSTWX";
    static final String[] SHAPES = {
        ".###.#...##...#######...##...##...#", "####.#...##...##...##...##...#####.", "######....#....####.#....#....#####",
        "######....#....####.#....#....#....", "#....#....#....#....#....#....#####", "#...###..##.#.##..###...##...##...#",
        ".###.#...##...##...##...##...#.###.", "####.#...##...#####.#.#..#..#.#...#", ".#####....#.....###.....#....#####.",
        "#####..#....#....#....#....#....#..", "#...##...##...##.#.##.#.##.#.#.#.#.", "#...##...#.#.#...#...#.#.#...##...#"};

    // The font's glyph bytes at twice the size, for each class: coverage (softer at alternate
    // texels), one bit, or a palette index by row.
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

    void fonts() {
        int n = LETTERS.length();
        int[] widths = new int[n], heights = new int[n], lefts = new int[n], tops = new int[n];
        java.util.Arrays.fill(widths, 10);
        java.util.Arrays.fill(heights, 14);
        java.util.Arrays.fill(tops, -14);
        coverage.n(null, tk, glyphs(0), widths, heights, lefts, tops);
        mono.n(null, tk, glyphs(1), widths, heights, lefts, tops);
        int[] colours = new int[9];
        for (int c = 1; c < 9; ++c) colours[c] = 0xFF000000 | (255 - c * 20) << 16 | c * 30 << 8 | 255;
        palette.EA(null, tk, glyphs(2), colours, widths, heights, lefts, tops);
    }

    public int[] pixels() {
        return tk.E(0, 0, width, height);
    }

    @Override
    public void close() {
        coverage.ma();
        mono.ma();
        palette.ma();
        mask.ma(0);
        ball.M(ball.nativeid);
        client.R(client.nativeid, 0);
        for (h model : models) model.ma(null);
        for (aa footprint : footprints)
            if (footprint != null) footprint.ma(0);
        clone.ma(null);
        scratch.ma(null);
        ground.ma();
        tk.PA(null);
        canvas.ma(0);
        pool.ma(0);
        tk.ma(0);
    }
}
