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

// How a call enters and leaves the library: peers, failures, faults and what the host's thread
// keeps of it.
class FrameTest {
    static final String FAULT = "System exception occured";

    @Test
    void nullobjectwhereapeerisreadraisesnullpointerexceptionwithemptymessage() {
        try (Scene s = new Scene(8, 8)) {
            NullPointerException e = assertThrows(NullPointerException.class, () -> s.toolkit.n(null));
            assertEquals("", e.getMessage());
        }
    }

    @Test
    void destroyingtwiceisharmless() {
        ja toolkit = new ja();
        toolkit.q(null, 0, 0);
        za canvas = new za();
        canvas.n(null, null, 4, 4);
        canvas.ma(0);
        assertEquals(0, canvas.nativeid);
        canvas.ma(0);
        toolkit.ma(0);
        toolkit.ma(0);
        assertEquals(0, toolkit.nativeid);
    }

    // Faults in the library's own code and in the C library it calls come back as the host's
    // error class with a dump, and the library keeps working after them.
    @Test
    void faultsreturntothehostandthelibrarygoeson() {
        try (Scene s = new Scene(8, 8)) {
            CrashTest.assertdump(() -> s.toolkit.xa(null));
            CrashTest.assertdump(() -> s.toolkit.qa(null));
            CrashTest.assertdump(() -> s.toolkit.BA(0, 0, 2, 2, null, 0, 2));
            s.toolkit.B(0, 0, 8, 8, 0xFF102030, 0);
            assertEquals(0xFF102030, s.pixel(7, 7));
        }
    }

    // A fault while a critical pin is held must release it, or the collector waits forever.
    @Test
    void faultreleasesheldpins() {
        try (Scene s = new Scene(8, 8)) {
            CrashTest.assertdump(() -> s.toolkit.E(1 << 30, 0, 4, 4));
            for (int i = 0; i < 3; ++i) System.gc();
            int[] viewport = new int[4];
            s.toolkit.xa(viewport);
            assertArrayEquals(new int[] {0, 0, 8, 8}, viewport);
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

    @Test
    void faultsunderloadleavethejvmuntouched(@TempDir Path folder) throws Exception {
        Jvm child = Jvm.run(FaultStorm.class, "-Djava.io.tmpdir=" + folder);
        assertEquals(FaultStorm.DUMPS, child.throwing().size());
        assertEquals("", child.unexpectedoutput());
        assertEquals(0, child.exit);
        assertEquals(0, Files.list(folder).count());
    }

    @Test
    void adrawbeforeanytoolkitisafault() throws Exception {
        Jvm child = Jvm.run(BeforeToolkit.class);
        assertEquals("", child.unexpectedoutput());
        assertEquals(0, child.exit);
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

    // 10,000 faults in a row on a thread without the crash handler, then 200 on the drawing thread,
    // each with a dump that is checked and removed, while another thread takes its own null-pointer
    // and division faults in compiled code and keeps the collector busy. Prints only the dumps'
    // "Throwing: " lines when all is well.
    static final class FaultStorm {
        static final int DUMPS = 200;
        static volatile Object[] things = {new Object(), null};
        static volatile int[] divisors = {1, 0};
        static volatile byte[] garbage;

        public static void main(String[] args) throws Exception {
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

    static final class BeforeToolkit {
        public static void main(String[] args) {
            try {
                new ja().B(0, 0, 4, 4, 0xFFFFFFFF, 0);
                check(false, "no fault");
            } catch (RuntimeException e) {
                check(e.getClass() == RuntimeException.class && FAULT.equals(e.getMessage()), e.toString());
            }
        }
    }
}
