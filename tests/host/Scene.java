// A toolkit drawing into a fresh canvas of the given size, torn down in order.
final class Scene implements AutoCloseable {
    final ja toolkit;
    final za canvas = new za();
    final int width, height;

    Scene(int width, int height) {
        this(new ja(), null, width, height);
    }

    // With the host's own toolkit class, and textures when a source is given.
    Scene(ja toolkit, Object source, int width, int height) {
        this.toolkit = toolkit;
        this.width = width;
        this.height = height;
        toolkit.q(source, 1000, 0);
        canvas.n(null, null, width, height);
        toolkit.PA(canvas);
    }

    int[] pixels() {
        return toolkit.E(0, 0, width, height);
    }

    int pixel(int x, int y) {
        return toolkit.E(x, y, 1, 1)[0];
    }

    @Override
    public void close() {
        toolkit.PA(null);
        canvas.ma(0);
        toolkit.ma(0);
    }
}
