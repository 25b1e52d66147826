// The pool as the host sees it: made and destroyed through ba, asking the toolkit's host object
// for memory through h when full, and taking copies of host arrays; a shadow mask in a pool.
#include <gtest/gtest.h>

#include <cstring>

#include "jvm.h"
#include "toolkit/shadowmask.h"
#include "toolkit/toolkit.h"
#include "util/arraypin.h"
#include "util/memory/copytomemory.h"
#include "util/memory/memorypool.h"
#include "util/peer.h"

namespace {

constexpr int kb = 1024;

// A host call that must not fail.
template <class... A>
void call(jobject object, const char* method, const char* signature, A... args) {
    callvoid(object, method, signature, args...);
    EXPECT_EQ(takepending().classname, "") << method;
}

// A toolkit whose host object counts the flushes, made current for the pools of a test.
class flushinghost : public testing::Test {
protected:
    void SetUp() override {
        host = newobject("flushcounter");
        call(host, "q", "(Ljava/lang/Object;II)V", nullptr, 0, 0);
        ASSERT_NE(currenttoolkit, nullptr);
    }
    void TearDown() override { call(host, "ma", "(I)V", 0); }

    jobject host;
};

TEST_F(flushinghost, poolmadebythehostaskstheconstructingtoolkitshost) {
    jobject ba = newobject("ba");
    call(ba, "sa", "(II)V", 0, 512 * kb);
    auto* pool = reinterpret_cast<memorypool*>(longfield(ba, "nativeid"));
    ASSERT_NE(pool, nullptr);
    EXPECT_EQ(pool->toolkit, currenttoolkit);
    EXPECT_EQ(pool->capacity, 512u * kb);

    allocatedmemory<int> a, b;
    pool->allocate(a, 120 * kb);
    EXPECT_EQ(intfield(host, "flushes"), 0);
    // 480 KB are used and nothing is released: the host is asked once, then the arena grows.
    pool->allocate(b, 10 * kb);
    EXPECT_EQ(intfield(host, "flushes"), 1);
    EXPECT_GT(pool->capacity, 512u * kb);

    call(ba, "ma", "(I)V", 0);
    EXPECT_EQ(longfield(ba, "nativeid"), 0);
    EXPECT_EQ(a.get(), nullptr);
}

// A host that throws from h ends the call that needed memory; its exception is what the host
// sees, and the arena has not grown.
TEST_F(flushinghost, ahostthatthrowsfromhendsthecall) {
    memorypool pool(320 * kb, currenttoolkit);
    allocatedmemory<uint8_t> a, b;
    pool.allocate(a, 300 * kb);
    setbooleanfield(host, "refuse", true);
    runexport(jvmenv, [&] { pool.allocate(b, 30 * kb); });
    pending p = takepending();
    EXPECT_EQ(p.classname, "java.lang.IllegalStateException");
    EXPECT_EQ(p.message, "nothing to give back");
    EXPECT_EQ(intfield(host, "flushes"), 1);
    EXPECT_TRUE(b.empty());
    EXPECT_EQ(pool.capacity, 320u * kb);
}

// Without a toolkit there is nobody to ask, and the arena simply grows.
TEST(memorypool, withouttoolkitgrowswithoutasking) {
    memorypool pool(64 * kb, nullptr);
    allocatedmemory<uint8_t> a, b;
    pool.allocate(a, 60 * kb);
    pool.allocate(b, 10 * kb);
    EXPECT_GT(pool.capacity, 64u * kb);
}

// Release gives back the arena but leaves the record to whoever still points at it; the
// count of allocated bytes the host reads follows.
TEST(memorypool, hostreleasesthearenaandkeepstherecord) {
    jobject ja = newobject("ja");
    int before = callint(ja, "za");
    jobject ba = newobject("ba");
    call(ba, "sa", "(II)V", 0, 64 * kb);
    auto* pool = reinterpret_cast<memorypool*>(longfield(ba, "nativeid"));
    allocatedmemory<short> a;
    pool->allocate(a, 1000);
    EXPECT_EQ(callint(ja, "za"), before + 2000);
    call(ba, "ha", "()V");
    EXPECT_EQ(longfield(ba, "nativeid"), 0);
    EXPECT_EQ(callint(ja, "za"), before);
    EXPECT_EQ(pool->base, nullptr);
    EXPECT_EQ(a.get(), nullptr);
    delete pool;
}

// A shadow mask's cells come cleared from its pool, whatever lay there; the host's destroy frees
// the mask and clears the peer.
TEST(shadowmask, startsclearedandthehostsdestroyclearsthepeer) {
    memorypool pool(4096, nullptr);
    {
        allocatedmemory<uint8_t> stale;
        pool.allocate(stale, 3000);
        memset(stale.get(), 0xFF, 3000);
    }
    pool.compact();
    auto* mask = new shadowmask(pool, 50, 40);
    EXPECT_EQ(mask->pool, &pool);
    EXPECT_EQ(mask->cells.length(), 2000);
    for (int i = 0; i < 2000; ++i) ASSERT_EQ(mask->cells[i], 0) << i;
    EXPECT_EQ(mask->x | mask->y | mask->usedwidth | mask->usedheight, 0);
    jobject host = newobject("aa");
    setpeer(jvmenv, hostclass::aa, host, mask);
    call(host, "ma", "(I)V", 0);
    EXPECT_EQ(longfield(host, "nativeid"), 0);
    EXPECT_EQ(pool.verify(), nullptr);
}

template <pinkind K, class A, class E>
void expectcopied(A array, const E* values, int n) {
    memorymanager m(64 * kb);
    arraypin<K> pin(jvmenv, array);
    allocatedmemory<E> copy;
    m.allocate(copy, 4);
    copytomemory(pin, m, copy);
    ASSERT_EQ(copy.empty(), array == nullptr);
    ASSERT_EQ(copy.length(), n);
    for (int i = 0; i < n; ++i) EXPECT_EQ(copy[i], values[i]);
}

// A missing array leaves the handle empty rather than holding its old block.
TEST(copytomemory, copiesbyteshortandintarrays) {
    const jbyte bytes[] = {1, -2, 3, -128, 127};
    const jshort shorts[] = {-32768, 0, 32767};
    const jint ints[] = {1 << 31, -1, 0, 12345678, 7, 8, 9};
    jbyteArray b = jvmenv->NewByteArray(5);
    jvmenv->SetByteArrayRegion(b, 0, 5, bytes);
    jshortArray s = jvmenv->NewShortArray(3);
    jvmenv->SetShortArrayRegion(s, 0, 3, shorts);
    jintArray i = jvmenv->NewIntArray(7);
    jvmenv->SetIntArrayRegion(i, 0, 7, ints);
    expectcopied<pinkind::byteread>(b, bytes, 5);
    expectcopied<pinkind::shortread>(s, shorts, 3);
    expectcopied<pinkind::intread>(i, ints, 7);
    expectcopied<pinkind::intread>(jvmenv->NewIntArray(0), ints, 0);
    expectcopied<pinkind::intread>(jintArray{}, ints, 0);
}

}  // namespace
