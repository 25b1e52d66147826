import static org.junit.jupiter.api.Assertions.*;

import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.regex.Pattern;
import morvik.graphics2.NativeError;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

// Crash dumps: a fault of the library on the thread of the first toolkit leaves a minidump in the
// host's temporary folder and raises the error class with its path. The folder is read once per
// process, so each case runs in a child JVM with a folder of its own.
class CrashTest {
    static final String ID = "[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}\\.dmp";
    static final String PLAIN = "java.lang.RuntimeException: " + FrameTest.FAULT, ERROR = "morvik.graphics2.NativeError: ";
    static final int THREADS = 3, MODULES = 4, MEMORY = 5, EXCEPTION = 6, SYSTEM = 7, MAPS = 0x47670009;

    // The streams of a dump by type, after a check of its header and directory.
    static Map<Integer, ByteBuffer> streams(Path dump) throws IOException {
        ByteBuffer b = ByteBuffer.wrap(Files.readAllBytes(dump)).order(ByteOrder.LITTLE_ENDIAN);
        if (b.getInt(0) != 0x504D444D || (b.getInt(4) & 0xFFFF) != 0xA793) throw new IllegalStateException("no minidump: " + dump);
        Map<Integer, ByteBuffer> streams = new HashMap<>();
        for (int i = 0, at = b.getInt(12); i < b.getInt(8); ++i, at += 12)
            streams.put(b.getInt(at), b.slice(b.getInt(at + 8), b.getInt(at + 4)).order(ByteOrder.LITTLE_ENDIAN));
        if (!streams.keySet().containsAll(List.of(THREADS, MODULES, MEMORY, EXCEPTION, SYSTEM, MAPS)))
            throw new IllegalStateException("streams missing: " + streams.keySet());
        return streams;
    }

    // What a call raised, as "class: message".
    static String raised(Runnable call) {
        try {
            call.run();
            return "nothing";
        } catch (RuntimeException e) {
            return e.getClass().getName() + ": " + e.getMessage();
        }
    }

    // A fault on the drawing thread in this JVM: the error class names a fresh dump in the
    // temporary folder, which is read back and removed.
    static void assertdump(Runnable fault) {
        NativeError e = assertThrows(NativeError.class, fault::run);
        Path dump = Path.of(e.getMessage());
        assertEquals(Path.of(System.getProperty("java.io.tmpdir")), dump.getParent());
        assertTrue(dump.getFileName().toString().matches(ID), e.getMessage());
        assertDoesNotThrow(() -> streams(dump));
        assertDoesNotThrow(() -> Files.delete(dump));
    }

    static String run(String... command) throws Exception {
        Process p = new ProcessBuilder(command).redirectErrorStream(true).start();
        String out = new String(p.getInputStream().readAllBytes());
        p.waitFor();
        return out;
    }

    @Test
    void afaultonthedrawingthreadleavesadumpthatlldbreads(@TempDir Path folder) throws Exception {
        Jvm child = Jvm.run(Cases.class, "-Djava.io.tmpdir=" + folder + "/");
        assertEquals(0, child.exit, child.err);
        List<Path> left = Files.list(folder).toList();
        assertEquals(1, left.size(), left.toString());
        Path dump = left.get(0);
        // The first and second dumps, then the second's path again when the folder was gone.
        List<String> lines = child.throwing();
        assertEquals(3, lines.size(), child.out);
        assertEquals("Throwing: " + folder + "//" + dump.getFileName(), lines.get(0));
        assertEquals(lines.get(1), lines.get(2));

        Map<Integer, ByteBuffer> streams = streams(dump);
        ByteBuffer exception = streams.get(EXCEPTION), threads = streams.get(THREADS);
        assertEquals(11, exception.getInt(8), "SIGSEGV");
        Set<Integer> ids = new HashSet<>();
        for (int i = 0; i < threads.getInt(0); ++i) ids.add(threads.getInt(4 + 48 * i));
        assertTrue(ids.size() > 5 && ids.contains(exception.getInt(0)), ids.toString());

        String lldb = run("lldb", "--batch", "-c", dump.toString(), "-o", "thread backtrace all", "-o", "image list");
        assertTrue(lldb.contains("stop reason = signal SIGSEGV"), lldb);
        assertTrue(Pattern.compile("\\* frame #0: 0x\\p{XDigit}+ libwexel\\.so`[^\\n]*Java_ja_xa").matcher(lldb).find(), lldb);
        Path library = Path.of(System.getProperty("java.library.path"), "libwexel.so").toRealPath();
        String buildid = run("readelf", "-n", library.toString()).replaceAll("(?s).*Build ID: (\\p{XDigit}+).*", "$1").trim();
        assertTrue(lldb.lines().anyMatch(l -> l.contains(library.toString()) && l.replace("-", "").toLowerCase().contains(buildid)),
                   buildid + "\n" + lldb);
    }

    @Test
    void anemptyfolderpropertymeanstmpandamissingfolderleavesnofile(@TempDir Path folder) throws Exception {
        Jvm empty = Jvm.run(OneFault.class, "-Djava.io.tmpdir=", "-Dexpected=" + Pattern.quote(ERROR + "/tmp/") + ID);
        assertEquals(0, empty.exit, empty.err);
        assertTrue(empty.throwing().size() == 1 && empty.throwing().get(0).matches("Throwing: /tmp/" + ID), empty.out);
        Jvm missing = Jvm.run(OneFault.class, "-Djava.io.tmpdir=" + folder.resolve("gone"), "-Dexpected=" + Pattern.quote(ERROR));
        assertEquals(0, missing.exit, missing.err);
        assertEquals(List.of("Throwing: "), missing.throwing());
        assertEquals(0, Files.list(folder).count());
    }

    static void check(boolean ok, String what) {
        FrameTest.check(ok, what);
    }

    // The cases of one process, in order: two toolkits, one, another thread, a folder that is gone,
    // drawing afterwards, and after the last toolkit. Keeps the first dump. (Before any toolkit:
    // FrameTest.FaultStorm.)
    static final class Cases {
        public static void main(String[] args) throws Exception {
            String folder = System.getProperty("java.io.tmpdir");
            String dumped = Pattern.quote(ERROR + folder + "/") + ID;
            ja first = new ja();
            first.q(null, 0, 0);
            Scene s = new Scene(4, 4);
            String kept = raised(() -> s.toolkit.xa(null));
            check(kept.matches(dumped), kept);
            first.ma(0);
            String second = raised(() -> s.toolkit.BA(0, 0, 1, 1, null, 0, 1));
            check(second.matches(dumped) && !second.equals(kept), second);
            Files.delete(Path.of(second.substring(ERROR.length())));
            String[] other = new String[1];
            Thread thread = new Thread(() -> other[0] = raised(() -> s.toolkit.xa(null)));
            thread.start();
            thread.join();
            check(PLAIN.equals(other[0]), "another thread: " + other[0]);
            Path dir = Path.of(folder), away = dir.resolveSibling(dir.getFileName() + "-away");
            Files.move(dir, away);
            check(raised(() -> s.toolkit.xa(null)).equals(second), "the message of a failed dump");
            Files.move(away, dir);
            s.toolkit.B(0, 0, 4, 4, 0xFF405060, 0);
            check(s.pixel(3, 3) == 0xFF405060, "drawing after the faults");
            s.close();
            check(raised(() -> s.toolkit.xa(null)).equals(PLAIN), "after the last toolkit");
        }
    }

    // One fault with a toolkit, which must raise what the property "expected" matches; removes
    // the dump it names.
    static final class OneFault {
        public static void main(String[] args) throws Exception {
            ja toolkit = new ja();
            toolkit.q(null, 0, 0);
            String what = raised(() -> toolkit.xa(null));
            check(what.matches(System.getProperty("expected")), what);
            if (what.endsWith(".dmp")) Files.delete(Path.of(what.substring(ERROR.length())));
            toolkit.ma(0);
        }
    }
}
