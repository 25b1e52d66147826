import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.InputStream;
import java.lang.management.ManagementFactory;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.TimeUnit;

// Runs a main class in a JVM of its own, with this JVM's class path, library path and options,
// for behaviour that must be seen from outside: what the JVM prints, and the state before any
// toolkit exists.
final class Jvm {
    final int exit;
    final String out, err;

    private Jvm(int exit, String out, String err) {
        this.exit = exit;
        this.out = out;
        this.err = err;
    }

    static Jvm run(Class<?> main, String... jvmoptions) throws IOException, InterruptedException {
        List<String> command = new ArrayList<>();
        command.add(ProcessHandle.current().info().command().orElse("java"));
        for (String option : ManagementFactory.getRuntimeMXBean().getInputArguments())
            if (!option.startsWith("-agentlib") && !option.startsWith("-javaagent")) command.add(option);
        command.addAll(List.of(jvmoptions));
        command.add("-cp");
        command.add(System.getProperty("wexel.classpath", System.getProperty("java.class.path")));
        command.add(main.getName());
        Process p = new ProcessBuilder(command).start();
        p.getOutputStream().close();
        ByteArrayOutputStream out = new ByteArrayOutputStream(), err = new ByteArrayOutputStream();
        Thread o = drain(p.getInputStream(), out), e = drain(p.getErrorStream(), err);
        if (!p.waitFor(300, TimeUnit.SECONDS)) {
            p.destroyForcibly();
            throw new AssertionError("child JVM did not finish: " + main.getName());
        }
        o.join();
        e.join();
        return new Jvm(p.exitValue(), out.toString(), err.toString());
    }

    private static Thread drain(InputStream in, ByteArrayOutputStream to) {
        Thread t = new Thread(() -> {
            try {
                in.transferTo(to);
            } catch (IOException ignored) {
            }
        });
        t.start();
        return t;
    }

    // The lines that the error class writes before it is raised. The JVM's notices are written in
    // pieces, and such a line may come in the middle of one of theirs.
    List<String> throwing() {
        return out.lines().filter(l -> l.contains("Throwing: ")).map(l -> l.substring(l.indexOf("Throwing: "))).toList();
    }

    // What the child printed, less the lines of throwing() and the JVM's notices that the library
    // installed its fault handlers: a block from "Warning: SIG... handler modified!" to "Consider
    // using jsig library.".
    String unexpectedoutput() {
        StringBuilder b = new StringBuilder();
        boolean notice = false;
        for (String line : (out + "\n" + err).split("\n")) {
            if (line.matches("Warning: SIG[A-Z]+ handler modified!")) notice = true;
            if (!notice && !line.isEmpty() && !line.startsWith("Throwing: ")) b.append(line).append('\n');
            if (line.equals("Consider using jsig library.")) notice = false;
        }
        return b.toString();
    }
}
