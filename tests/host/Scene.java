// A toolkit drawing into a fresh canvas of the given size, torn down in order.
final class Scene implements AutoCloseable {
    final ja toolkit = new ja();
    final za canvas = new za();
    final int width, height;

    Scene(int width, int height) {
        this.width = width;
        this.height = height;
        toolkit.q(null, 0, 0);
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
