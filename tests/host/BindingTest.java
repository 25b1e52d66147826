import static org.junit.jupiter.api.Assertions.*;

import java.util.ArrayList;
import java.util.List;
import java.util.function.Supplier;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;

// Every export as the host binds it, by name with its argument list: each called with arguments
// that end inside the target and read back by a pixel or two, a field or the failure it raises;
// then every peer class destroyed twice. Presenting is PresentTest's; the pixel arithmetic is the
// unit tests'.
class BindingTest {
    static final int W = 16, H = 8;
    // Opaque colours, stored as they are; D blended over itself through a mask keeps 255 * 255 >> 8.
    static final int C = 0xFF123456, D = 0xFF00FF00, E = 0xFF0000FF, F = 0xFFFF0000, DMASKED = 0xFE00FE00;
    // One 2 by 2 glyph placed one column right and three rows down from the pen.
    static final byte[][] GLYPHS = {{(byte) 255, 0, 0, 7}};
    static final int[] WIDTHS = {2}, HEIGHTS = {2}, LEFTS = {1}, TOPS = {3};

    record Row(String name, Runnable call, Supplier<int[]> probe, int... expected) {}

    final Scene s = new Scene(W, H);
    final ja t = s.toolkit;
    final List<Row> rows = new ArrayList<>();

    // The w by h pixels at (x, y) after the call.
    void draws(String name, Runnable call, int x, int y, int w, int h, int... expected) {
        rows.add(new Row(name, call, () -> t.E(x, y, w, h), expected));
    }

    void reads(String name, Runnable call, Supplier<int[]> probe, int... expected) {
        rows.add(new Row(name, call, probe, expected));
    }

    void binds(String name, Runnable call) {
        rows.add(new Row(name, call, () -> new int[0]));
    }

    // A failure of this class, with this message unless it is null.
    void fails(String name, Runnable call, Class<? extends Throwable> type, String message) {
        rows.add(new Row(name, () -> {
            Throwable e = assertThrows(type, call::run);
            assertEquals(type, e.getClass());
            if (message != null) assertEquals(message, e.getMessage());
        }, () -> new int[0]));
    }

    int[] clip() {
        int[] c = new int[4];
        t.qa(c);
        return c;
    }

    int[] viewport() {
        int[] v = new int[4];
        t.xa(v);
        return v;
    }

    static int[] id(long nativeid) {
        return new int[] {(int) nativeid, (int) (nativeid >>> 32)};
    }

    @Test
    void everyexportbindsanddoeswhatitsays() {
        final int bare = t.za();
        final ba pool = new ba();
        pool.sa(0, 1 << 16);
        t.n(pool);
        // Every row of the mask admits its column 1 alone.
        final wa mask = new wa();
        mask.l(null, pool, W, H, new int[] {1, 1, 1, 1, 1, 1, 1, 1}, new int[] {1, 1, 1, 1, 1, 1, 1, 1});
        final fa sprite = new fa(), blank = new fa(), paletted = new fa();
        sprite.RA(t, new int[] {C, D, 9, E, F}, 99, 3, 2, 2, false);
        final long sp = sprite.nativeid, bl;
        blank.UA(t, 2, 2);
        bl = blank.nativeid;
        paletted.EA(t, new int[] {0x112233, 0x445566}, new byte[] {0, 1}, null, 99, 2, 2, 1);
        final oa surface = new oa();
        surface.g(2, 2);
        final ea coverage = new ea();
        final m mono = new m();
        final ia palette = new ia();
        coverage.n(null, t, GLYPHS, WIDTHS, HEIGHTS, LEFTS, TOPS);
        mono.n(null, t, GLYPHS, WIDTHS, HEIGHTS, LEFTS, TOPS);
        int[] colours = new int[256];
        colours[255] = E;
        colours[7] = F;
        palette.EA(null, t, GLYPHS, colours, WIDTHS, HEIGHTS, LEFTS, TOPS);

        // The toolkit's drawing, target and state.
        draws("ja.ba", () -> t.ba(1, C), 0, 0, 1, 1, C);
        draws("ja.B", () -> t.B(1, 1, 2, 2, C, 0), 2, 2, 2, 1, C, 0);
        draws("ja.XA", () -> t.XA(1, 0, 3, C, 0), 3, 0, 2, 1, C, 0);
        draws("ja.G", () -> t.G(0, 1, 3, C, 0), 0, 3, 1, 2, C, 0);
        draws("ja.YA", () -> t.YA(0, 0, 3, 1, C, 0), 1, 0, 2, 1, C, 0);
        draws("ja.CA", () -> t.CA(8, 4, 1, C, 0), 9, 5, 2, 1, C, 0);
        draws("ja.R", () -> t.R(0, 0, 9, 0, C, 0, mask, 0, 0), 0, 0, 3, 1, 0, C, 0);
        draws("ja.DA", () -> t.DA(C, mask, 0, 0), 0, 4, 3, 1, 0, C, 0);
        draws("ja.BA", () -> t.BA(1, 2, 2, 2, new int[] {9, C, D, 9, E, F}, 1, 3), 1, 3, 3, 1, E, F, 0);
        draws("ja.VA", () -> { t.B(0, 0, 1, 1, C, 0); t.VA(1, 1); }, 1, 1, 1, 1, C);
        draws("ja.d", () -> {
            t.d(bl, surface.nativeid);
            t.B(0, 0, 2, 2, C, 0);
            t.PA(s.canvas);
            blank.Y(bl, 4, 0, 1, 0, 0);
        }, 5, 1, 1, 1, C);
        draws("ja.L", () -> { t.r(2, 2, 3, 3); t.L(); t.B(0, 0, W, H, C, 0); }, 0, 0, 1, 1, C);
        reads("ja.r", () -> t.r(-5, 2, 100, 6), this::clip, 0, 2, W, 6);
        reads("ja.o", () -> { t.r(1, 1, 9, 7); t.o(0, 3, 4, 100); }, this::clip, 1, 3, 4, 7);
        reads("ja.A", () -> t.A(1, 2, 3, 4), this::viewport, 1, 2, 3, 4);
        reads("ja.k", () -> { t.A(1, 2, 3, 4); t.k(); }, this::viewport, 0, 0, W, H);
        reads("ja.j, ja.oa", () -> {}, () -> new int[] {t.j(), t.oa()}, 0, 0);
        reads("ja.za", () -> {}, () -> {
            int before = t.za();
            wa counted = new wa();
            counted.l(null, pool, 1, 3, new int[3], new int[3]);
            int grown = t.za() - before;
            counted.ma(0);
            return new int[] {grown, t.za() - before};
        }, 24, 0);
        float[] identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        // The setters whose state only drawing to come reads, and the entries that do nothing.
        binds("ja.GA, AA, wa", () -> {
            t.GA(0.25f, 0.75f);
            t.AA(identity);
            t.wa(new float[] {1.5f, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1.001f, 1, 0, 0, -1.001f, 0});
        });
        binds("ja.m, IA, Q, J, RA, c, JA, M, O", () -> {
            t.m(0xFFFFEEDD, 0.5f, 1.0f, -1f, -2f, 0.5f);
            t.IA(1.25f);
            t.Q(6, new int[30], new float[6]);
            t.J(9);
            t.RA(true);
            t.c(0x808080, 512, 0);
            t.JA(100, 0x102030, 50, 0);
            t.M(100, 0x405060, 50, 0);
            t.O();
        });
        binds("ja.Y; ja.V, F fault without a texture source", () -> {
            t.Y(1000);
            CrashTest.assertdump(() -> t.V(5, 0, 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false, false, false, 0,
                    false, false, 0));
            CrashTest.assertdump(() -> t.F(5, new int[128 * 128], 0, 0, 0, 0, 0, false, 0, 0, 0, 0, false, false, false,
                    false, false, 0, false, false, 0));
        });
        binds("ja.da, b, N, ba.u", () -> {
            t.da();
            t.b(1, 2, 3, 4, 5);
            t.N(1, 2, 3, 4, 5, 6, 7, 8, 9);
            pool.u();
        });
        reads("za.wa", () -> { s.canvas.wa(null, 5, 3); t.PA(s.canvas); }, () -> {
            int[] v = viewport();
            s.canvas.wa(null, W, H);
            return v;
        }, 0, 0, 5, 3);

        // Sprites: made from the host's pixels (rows 3 apart, the offset ignored), a palette or
        // nothing; copies and draws of every kind.
        draws("fa.RA, fa.Y", () -> sprite.Y(sp, 1, 1, 1, 0, 0), 1, 1, 3, 2, C, D, 0, E, F, 0);
        draws("fa.EA", () -> paletted.Y(paletted.nativeid, 0, 0, 1, 0, 0), 0, 0, 2, 1, 0, 0xFF445566);
        reads("fa.U, F, da, GA, WA, ba", () -> sprite.U(sp, 1, 2, -3, 4), () -> {
            int[] pads = new int[4];
            sprite.F(sp, pads);
            int[] sizes = {pads[0], pads[1], pads[2], pads[3], sprite.da(sp), sprite.GA(sp), sprite.WA(sp),
                           sprite.ba(sp)};
            sprite.U(sp, 0, 0, 0, 0);
            return sizes;
        }, 1, 2, -3, 4, 2, 2, 0, 8);
        draws("fa.na", () -> {
            blank.na(bl, 0, 0, 2, 1, new int[] {9, C, D}, 1, 2);
            blank.Y(bl, 0, 0, 1, 0, 0);
        }, 0, 0, 2, 1, C, D);
        draws("fa.ea", () -> {
            t.B(3, 3, 1, 1, C, 0);
            blank.ea(bl, 1, 1, 1, 1, 3, 3);
            t.B(3, 3, 1, 1, 0, 0);
            blank.Y(bl, 4, 4, 1, 0, 0);
        }, 5, 5, 1, 1, C);
        draws("fa.j", () -> {
            blank.na(bl, 0, 0, 1, 1, new int[] {0x00123456}, 0, 1);
            t.B(0, 0, 1, 1, 7, 0);
            blank.j(bl, 0, 0, 3);
            blank.Y(bl, 4, 0, 1, 0, 0);
        }, 4, 0, 1, 1, C);
        draws("fa.aa", () -> sprite.aa(sp, 0, 0, 5, 1, 1, 0, 0), 3, 0, 3, 1, D, C, 0);
        draws("fa.ha", () -> sprite.ha(sp, 0, 0, 4, 2, 1, 0, 0), 1, 0, 2, 1, C, D);
        draws("fa.G", () -> sprite.G(sp, 0, 0, 0, 4, 2, 1, 0, 0), 3, 1, 2, 1, F, 0);
        draws("fa.o", () -> sprite.o(sp, 0, 0, mask.nativeid, 0, 0), 0, 0, 3, 1, 0, DMASKED, 0);
        draws("fa.e", () -> sprite.e(sp, 2, 0, 2, 2, 0, 0, 1, 0, 0), 0, 0, 2, 1, E, C);
        draws("fa.FA", () -> sprite.FA(sp, 0, 0, 2, 0, 0, 2, 0, mask.nativeid, 0, 0, true), 0, 0, 3, 1, 0, D, 0);
        draws("o.AA, o.BA", () -> {
            t.B(0, 0, 1, 1, C, 0);
            new o().AA(t.nativeid, bl, surface.nativeid, 0, 0, 1, 1, 1, 1, true, true);
            t.B(0, 0, 1, 1, 0, 0);
            new o().BA(t.nativeid, bl, surface.nativeid, 6, 6, 1, 1, 1, 1, true, true);
        }, 6, 6, 1, 1, C);

        // Fonts: each class's three entries, the palette font's mono form, and a font made of
        // nothing.
        draws("ea.UA", () -> coverage.UA(0, 0, 0, 0xFFFFFFFF, 0), 1, 3, 2, 1, 0x00FEFEFE, 0);
        draws("ea.P", () -> coverage.P(0, 1, 0, 0xFFFFFFFF, 0, mask, 1, 3), 2, 3, 1, 1, 0x00FEFEFE);
        draws("ea.f", () -> coverage.f(0, 3, 2, 0xFFFFFFFF, 0), 3, 2, 2, 1, 0, 0x00060606);
        draws("m.UA", () -> mono.UA(65536, 4, 0, D, 0), 5, 3, 2, 2, D, 0, 0, D);
        draws("m.MA", () -> mono.MA(0, 4, 0, D, 0, null, 0, 0), 6, 4, 1, 1, D);
        draws("m.f", () -> mono.f(0, 3, 2, 0x00ABCDEF, 0), 3, 2, 2, 2, 0, 0x00ABCDEF, 0x00ABCDEF, 0);
        draws("ia.UA", () -> palette.UA(0, 7, 0, C, true), 8, 3, 2, 2, C, 0, 0, C);
        draws("ia.GA", () -> palette.GA(0, 0, 0, 0, false, mask, 0, 0), 1, 3, 2, 2, E, 0, 0, 0);
        draws("ia.f", () -> palette.f(0, 3, 2, 0, false), 3, 2, 2, 2, 0, F, E, 0);
        draws("ea.n of nothing", () -> {
            ea none = new ea();
            none.n(null, t, new byte[][] {null, {1}}, null, HEIGHTS, LEFTS, null);
            none.UA(1, 0, 0, C, 0);
            none.f(1, 0, 0, C, 0);
            none.ma();
            none.n(null, t, null, null, null, null, null);
            none.P(0, 0, 0, C, 0, null, 0, 0);
            none.ma();
        }, 0, 0, 1, 1, 0);

        // Failures the host sees.
        fails("ja.B with no such mode", () -> t.B(0, 0, 1, 1, C, 3), IllegalArgumentException.class, "");
        fails("ja.DA without a mask", () -> t.DA(C, null, 0, 0), NullPointerException.class, "");
        fails("fa.K by its plain name", () -> sprite.K(t, null, 0, 0, 1, 1, false), UnsatisfiedLinkError.class, null);
        fails("ja.E without a colour buffer", () -> { t.d(0, surface.nativeid); t.E(0, 0, 1, 1); }, Exception.class,
                "No colour buffer");
        fails("fa.ea without one", () -> { t.d(0, 0); blank.ea(bl, 0, 0, 1, 1, 0, 0); }, Exception.class,
                "No colour buffer");
        fails("fa.j without one", () -> { t.d(0, 0); blank.j(bl, 0, 0, 3); }, Exception.class, "No colour buffer");
        binds("ja.BA without one writes nothing", () -> { t.d(0, 0); t.BA(0, 0, 1, 1, new int[] {C}, 0, 1); });

        // Every peer destroyed twice, fonts drawn after, the pool released twice and destroyed.
        reads("ea.ma, m.ma, ia.ma twice", () -> {
            for (int twice = 0; twice < 2; ++twice) {
                coverage.ma();
                mono.ma();
                palette.ma();
            }
            coverage.P(0, 0, 0, C, 0, mask, 0, 0);
            mono.UA(0, 0, 0, C, 0);
            palette.f(0, 0, 0, C, true);
        }, () -> new int[] {(int) (coverage.nativeid | mono.nativeid | palette.nativeid), t.E(1, 3, 1, 1)[0]}, 0, 0);
        reads("wa.ma twice", () -> { mask.ma(0); mask.ma(0); }, () -> id(mask.nativeid), 0, 0);
        reads("fa.M twice", () -> { sprite.M(sp); sprite.M(sprite.nativeid); }, () -> id(sprite.nativeid), 0, 0);
        reads("oa.za twice", () -> { surface.za(surface.nativeid, 0); surface.za(0, 0); }, () -> id(surface.nativeid),
                0, 0);
        binds("aa.ma twice", () -> { aa shadow = new aa(); shadow.ma(0); shadow.ma(0); });
        reads("ba.ha twice, ba.ma twice", () -> {
            blank.M(bl);
            paletted.M(paletted.nativeid);
            pool.ha();
            pool.ha();
            pool.ma(0);
            pool.ma(0);
            ba other = new ba();
            other.sa(0, 4096);
            other.ma(0);
            other.ma(0);
        }, () -> new int[] {(int) pool.nativeid, t.za() - bare}, 0, 0);
        reads("za.ma twice, ja.ma twice", () -> {
            za canvas = new za();
            canvas.n(null, null, 4, 4);
            canvas.ma(0);
            canvas.ma(0);
            ja toolkit = new ja();
            toolkit.q(null, 0, 0);
            toolkit.ma(0);
            toolkit.ma(0);
            assertEquals(0, canvas.nativeid | toolkit.nativeid);
            t.q(null, 0, 0);
            t.PA(s.canvas);
        }, () -> t.E(0, 0, 1, 1), 0);
        // A new toolkit is the current one, whatever object a call names; without a pool it keeps no
        // fonts.
        draws("ja.q", () -> {
            ja second = new ja();
            second.q(null, 0, 0);
            assertThrows(NullPointerException.class,
                    () -> new m().n(null, second, GLYPHS, WIDTHS, HEIGHTS, LEFTS, TOPS));
            second.PA(s.canvas);
            t.B(0, 0, 1, 1, C, 0);
            assertEquals(C, second.E(0, 0, 1, 1)[0]);
            second.PA(null);
            second.ma(0);
            t.q(null, 0, 0);
            t.PA(s.canvas);
        }, 0, 0, 1, 1, 0);

        List<Executable> checks = new ArrayList<>();
        for (Row r : rows)
            checks.add(() -> { t.PA(s.canvas); r.call.run(); assertArrayEquals(r.expected, r.probe.get(), r.name); });
        try {
            assertAll(checks);
        } finally {
            s.close();
        }
    }
}
