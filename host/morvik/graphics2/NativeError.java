package morvik.graphics2;

/** A fault inside the native library; the message is the path of the crash dump it wrote. */
public class NativeError extends RuntimeException {
    public NativeError(String message) {
        super(message);
    }
}
