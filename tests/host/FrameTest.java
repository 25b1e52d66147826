import static org.junit.jupiter.api.Assertions.*;

import java.io.File;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.HashSet;
import java.util.Set;
import java.util.concurrent.atomic.AtomicBoolean;
import java.util.concurrent.atomic.AtomicLong;
import java.util.concurrent.atomic.AtomicReference;
import morvik.graphics2.NativeError;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

// How a call enters and leaves the library: faults, the host's callbacks and what the host's
// thread keeps of it.
class FrameTest {
    static final String FAULT = "System exception occured";

    // Faults in the library's own code and in the C library it calls come back as the host's
    // error class with a dump; a fault while arrays are pinned, critically or not, releases them,
    // or the collector would wait forever; and the library keeps working after them.
    @Test
    void faultsreturntothehostreleasetheirpinsandthelibrarygoeson() {
        try (Scene s = new Scene(8, 8)) {
            int[] lights = {1, 2, 3, 4, 0xFF0000};
            CrashTest.assertdump(() -> s.toolkit.xa(null));
            CrashTest.assertdump(() -> s.toolkit.qa(null));
            CrashTest.assertdump(() -> s.toolkit.BA(0, 0, 2, 2, null, 0, 2));
            CrashTest.assertdump(() -> s.toolkit.E(1 << 30, 0, 4, 4));
            CrashTest.assertdump(() -> s.toolkit.AA(null));
            CrashTest.assertdump(() -> s.toolkit.wa(null));
            CrashTest.assertdump(() -> s.toolkit.Q(1, lights, null));
            CrashTest.assertdump(() -> s.toolkit.Q(1, null, new float[] {1f}));
            for (int i = 0; i < 3; ++i) System.gc();
            s.toolkit.Q(1, lights, new float[] {1f});
            s.toolkit.B(0, 0, 8, 8, 0xFF102030, 0);
            assertEquals(0xFF102030, s.pixel(7, 7));
        }
    }

    static float tiny = Float.MIN_NORMAL;

    // The library computes with subnormals flushed; the host's own floats stay Java's after normal
    // returns, failures and faults alike.
    @Test
    void hostfloatsstaysubnormalacrosscalls() {
        try (Scene s = new Scene(8, 8)) {
            s.toolkit.B(0, 0, 4, 4, 0x80FFFFFF, 1);
            assertNotEquals(0f, tiny / 4f);
            assertThrows(IllegalArgumentException.class, () -> s.toolkit.B(0, 0, 4, 4, 0, 7));
            assertNotEquals(0f, tiny / 4f);
            CrashTest.assertdump(() -> s.toolkit.xa(null));
            assertNotEquals(0f, tiny / 4f);
        }
    }

    // Seen from outside the JVM: a draw before any toolkit exists, then faults under load.
    @Test
    void faultsbeforeanytoolkitandunderloadleavethejvmuntouched(@TempDir Path folder) throws Exception {
        Jvm child = Jvm.run(FaultStorm.class, "-Djava.io.tmpdir=" + folder);
        assertEquals(FaultStorm.DUMPS, child.throwing().size());
        assertEquals("", child.unexpectedoutput());
        assertEquals(0, child.exit);
        assertEquals(0, Files.list(folder).count());
    }

    // A toolkit whose pool-flush callback takes the JVM's own null-pointer faults, in code hot
    // enough to be compiled, and calls back into the library, once with a fault of its own.
    static final class busyhost extends ja {
        static Object[] things = {new Object(), null};
        int calls, nulls, nestedfaults;

        static int touch(Object o) {
            return o.hashCode();
        }

        @Override
        public void h() {
            ++calls;
            for (int i = 0; i < 100_000; ++i) {
                try {
                    touch(things[(i & 63) == 0 ? 1 : 0]);
                } catch (NullPointerException e) {
                    ++nulls;
                }
            }
            int[] viewport = new int[4];
            xa(viewport);
            try {
                xa(null);
            } catch (NativeError e) {
                ++nestedfaults;
                new File(e.getMessage()).delete();
            }
        }
    }

    @Test
    void thejvmsownfaultsduringacallbackstaythejvms() {
        busyhost host = new busyhost();
        host.q(null, 0, 0);
        ba pool = new ba();
        pool.sa(0, 4096);
        wa[] masks = new wa[40];
        int[] rows = new int[1000];
        try {
            for (int i = 0; i < masks.length && host.calls < 3; ++i) {
                masks[i] = new wa();
                masks[i].l(null, pool, 8, rows.length, rows, rows);
            }
            assertTrue(host.calls > 0, "the pool never asked the host to release memory");
            assertEquals(host.calls * (100_000 / 64 + 1), host.nulls);
            assertEquals(host.calls, host.nestedfaults);
            // The library still works after the nested fault unwound inside the outer call.
            int[] viewport = new int[4];
            host.xa(viewport);
        } finally {
            for (wa m : masks)
                if (m != null) m.ma(0);
            pool.ma(0);
            host.ma(0);
        }
    }

    static void check(boolean ok, String what) {
        if (!ok) {
            System.err.println(what);
            System.exit(1);
        }
    }

    // A draw before any toolkit; then 10,000 faults in a row on a thread without the crash handler
    // and 200 on the drawing thread, each with a dump that is checked and removed, while another
    // thread takes its own null-pointer and division faults in compiled code and keeps the
    // collector busy. Prints only the dumps' "Throwing: " lines when all is well.
    static final class FaultStorm {
        static final int DUMPS = 200;
        static volatile Object[] things = {new Object(), null};
        static volatile int[] divisors = {1, 0};
        static volatile byte[] garbage;

        public static void main(String[] args) throws Exception {
            String before = CrashTest.raised(() -> new ja().B(0, 0, 4, 4, 0xFFFFFFFF, 0));
            check(CrashTest.PLAIN.equals(before), "before any toolkit: " + before);
            ja toolkit = new ja();
            toolkit.q(null, 0, 0);
            za canvas = new za();
            canvas.n(null, null, 4, 4);
            toolkit.PA(canvas);
            AtomicBoolean stop = new AtomicBoolean();
            AtomicLong nulls = new AtomicLong(), divisions = new AtomicLong();
            AtomicReference<Throwable> odd = new AtomicReference<>();
            Thread other = new Thread(() -> {
                long i = 0;
                while (!stop.get()) {
                    ++i;
                    try {
                        things[(i & 1023) == 0 ? 1 : 0].hashCode();
                    } catch (NullPointerException e) {
                        nulls.incrementAndGet();
                    } catch (Throwable t) {
                        odd.set(t);
                    }
                    try {
                        garbage = new byte[(int) (i % 4096) + 16];
                        if (1000 / divisors[(i & 2047) == 0 ? 1 : 0] == 0) odd.set(new AssertionError());
                    } catch (ArithmeticException e) {
                        divisions.incrementAndGet();
                    } catch (Throwable t) {
                        odd.set(t);
                    }
                }
            });
            other.start();
            Thread plain = new Thread(() -> {
                for (int n = 0; n < 10000; ++n) {
                    String what = CrashTest.raised(fault(toolkit, n));
                    check(CrashTest.PLAIN.equals(what), "fault " + n + ": " + what);
                    if (n % 1000 == 0) System.gc();
                }
            });
            plain.start();
            plain.join();
            Set<String> dumps = new HashSet<>();
            for (int n = 0; n < DUMPS; ++n) {
                String what = CrashTest.raised(fault(toolkit, n));
                check(what.startsWith(CrashTest.ERROR) && dumps.add(what), "dump " + n + ": " + what);
                Path dump = Path.of(what.substring(CrashTest.ERROR.length()));
                CrashTest.streams(dump);
                Files.delete(dump);
            }
            stop.set(true);
            other.join();
            check(odd.get() == null, "other thread saw " + odd.get());
            check(nulls.get() > 0 && divisions.get() > 0, "other thread took no faults");
            toolkit.PA(null);
            canvas.ma(0);
            toolkit.ma(0);
        }

        static Runnable fault(ja toolkit, int n) {
            return n % 2 == 0 ? () -> toolkit.xa(null) : () -> toolkit.BA(0, 0, 1, 1, null, 0, 1);
        }
    }
}
