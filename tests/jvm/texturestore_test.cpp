// Textures through the JVM: the host answers a miss by loading from within its callback while the
// call that asked still runs, a host that throws ends that call with its exception, and without a
// store the texture calls fault.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "jvm.h"
#include "toolkit/texturefilter.h"
#include "toolkit/texturestore.h"
#include "util/frame.h"

namespace {

// The message of the host exception that the call left, "" without one.
template <class... A>
std::string call(jobject object, const char* method, const char* signature, A... args) {
    callvoid(object, method, signature, args...);
    return takepending().message;
}

// True when `path` names the crash dump that a fault on the drawing thread left; the dump goes.
bool removeddump(const std::string& path) {
    return path.ends_with(".dmp") && unlink(path.c_str()) == 0;
}

texturerecord* drawneeds(int id) {
    texturerecord* r = nullptr;
    runexport(jvmenv, [&] { r = gettexture(id); });
    return r;
}

// The descriptor's fields arrive in order, each cut to its width.
TEST(texturestore, thehostloadsfromwithinitscallback) {
    jobject host = newobject("texturehost");
    EXPECT_EQ(call(host, "q", "(Ljava/lang/Object;II)V", host, 16, 0), "");
    texturerecord* r = drawneeds(0x1234);
    EXPECT_EQ(takepending().message, "");
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(std::vector<int>({r->averagecolour, r->value, r->type, r->bytetwo, r->colour, r->flagone, r->blend,
                                r->bright, r->speedu, r->speedv, r->hidden, r->flagthree, r->flagfour, r->flagfive,
                                r->flagsix, r->bytefive, r->flagseven, r->flageight, r->tail}),
              std::vector<int>({0x2345, 2, 4, 5, -6, 1, 7, 8, -3, -56, 1, 0, 1, 0, 1, 9, 0, 1, 42}));
    std::vector<uint32_t> plain(128 * 128, 0xFF001234u), expected(128 * atlaspitch);
    filtertexture(plain.data(), expected.data(), atlaspitch, true, false, true);
    // Only the texture's own 128 columns of each atlas row: the rest hold what the block held before.
    for (int y = 0; y < 128; ++y)
        EXPECT_TRUE(std::equal(r->pixels + y * atlaspitch, r->pixels + y * atlaspitch + 128, &expected[y * atlaspitch]));
    EXPECT_EQ(drawneeds(0x1234), r);
    setbooleanfield(host, "refuse", true);
    EXPECT_EQ(drawneeds(7), nullptr);
    EXPECT_EQ(takepending().message, "no texture 7");
    EXPECT_EQ(intfield(host, "asked"), 2);
    EXPECT_EQ(call(host, "ma", "(I)V", 0), "");
}

// The frame reports the read through null, and releases the load's pixels first: the JVM's
// checks would see them held at the next call.
TEST(texturestore, withoutasourcethetexturecallsfault) {
    jobject bare = newobject("ja");
    EXPECT_EQ(call(bare, "q", "(Ljava/lang/Object;II)V", nullptr, 16, 0), "");
    EXPECT_EQ(call(bare, "Y", "(I)V", 1000), "");
    EXPECT_TRUE(removeddump(
        call(bare, "V", "(IIIIIIZIIIIZZZZZIZZI)V", 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)));
    EXPECT_TRUE(removeddump(call(bare, "F", "(I[IIIIIIZIIIIZZZZZIZZI)V", 5, jvmenv->NewIntArray(128 * 128), 0, 0, 0, 0,
                                 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)));
    EXPECT_EQ(call(bare, "ma", "(I)V", 0), "");
}

}  // namespace
