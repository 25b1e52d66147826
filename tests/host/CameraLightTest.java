import org.junit.jupiter.api.Test;

// The camera, light, fog and shade entries as the host sees them: bound by name with their
// argument lists, and a missing array is a fault that leaves nothing pinned.
class CameraLightTest {
    static final float[] IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    static final float[] PERSPECTIVE = {1.5f, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1.001f, 1, 0, 0, -1.001f, 0};

    @Test
    void everyentrytakesitsarguments() {
        try (Scene s = new Scene(8, 8)) {
            s.toolkit.GA(0f, 1f);
            s.toolkit.AA(IDENTITY);
            s.toolkit.wa(PERSPECTIVE);
            s.toolkit.m(0xFFFFEEDD, 0.5f, 1.0f, -1f, -2f, 0.5f);
            s.toolkit.IA(1.25f);
            s.toolkit.Q(6, new int[30], new float[6]);
            s.toolkit.Q(0, null, null);
            s.toolkit.J(9);
            s.toolkit.RA(true);
            s.toolkit.c(0x808080, 512, 0);
            s.toolkit.JA(100, 0x102030, 50, 0);
            s.toolkit.M(100, 0x405060, 50, 0);
            s.toolkit.O();
        }
    }

    @Test
    void amissingarrayisafaultthatreleasestheothers() {
        try (Scene s = new Scene(8, 8)) {
            int[] lights = {1, 2, 3, 4, 0xFF0000};
            CrashTest.assertdump(() -> s.toolkit.AA(null));
            CrashTest.assertdump(() -> s.toolkit.wa(null));
            CrashTest.assertdump(() -> s.toolkit.Q(1, lights, null));
            CrashTest.assertdump(() -> s.toolkit.Q(1, null, new float[] {1f}));
            for (int i = 0; i < 3; ++i) System.gc();
            s.toolkit.Q(1, lights, new float[] {1f});
            s.toolkit.AA(PERSPECTIVE);
        }
    }
}
