// A host that counts the library's requests to release memory, and refuses them when told to.
public class flushcounter extends ja {
    public int flushes;
    public boolean refuse;

    @Override
    public void h() {
        ++flushes;
        if (refuse) throw new IllegalStateException("nothing to give back");
    }
}
