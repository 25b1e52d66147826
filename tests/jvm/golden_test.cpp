// Golden frames of the scene: every buffer of every kind of target at a few camera positions,
// against the set recorded for this processor. The reciprocal estimates under every 3D pixel differ
// between makers of processors, so sets are kept by a fingerprint of them; on a processor with no
// set the test says so, and still checks what holds everywhere: a frame drawn twice is the same,
// and the four- and eight-lane paths draw the same bits. WEXEL_GOLDEN=write records the set.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "jvm.h"
#include "pixel/lanewidth.h"
#include "sprite/sprite.h"
#include "toolkit/surface.h"
#include "toolkit/toolkit.h"

namespace {

// A hash of the estimates over every float the library can hand them: rcpss depends on the
// mantissa alone, rsqrtss on the mantissa and the exponent's parity, so [1, 2) and [1, 4).
uint64_t estimatefingerprint() {
    uint64_t hash = 14695981039346656037ull;
    auto mix = [&](__m128 v) {
        alignas(16) uint32_t bits[4];
        _mm_store_ps(reinterpret_cast<float*>(bits), v);
        for (uint32_t b : bits) hash = (hash ^ b) * 1099511628211ull;
    };
    for (uint32_t m = 0; m < (1u << 24); m += 4) {
        __m128 x = _mm_castsi128_ps(_mm_add_epi32(_mm_set1_epi32(0x3F800000 + int(m)), _mm_setr_epi32(0, 1, 2, 3)));
        if (m < (1u << 23)) mix(_mm_rcp_ps(x));
        mix(_mm_rsqrt_ps(x));
    }
    return hash;
}

struct buffer {
    std::string name;
    std::vector<uint32_t> pixels;
};

jclass goldenclass() { return jvmenv->FindClass("goldenframes"); }
constexpr int steps[] = {0, 7, 15};
constexpr const char* kinds[] = {"canvas", "colouronly", "depthcopy", "sprite"};

// Every buffer of the frames, as 32-bit words: depths by their bits.
std::vector<buffer> drawframes(jobject frames) {
    auto constant = [](const char* name) {
        return jvmenv->GetStaticIntField(goldenclass(), jvmenv->GetStaticFieldID(goldenclass(), name, "I"));
    };
    const int w = constant("WIDTH"), h = constant("HEIGHT");
    auto peer = [&](const char* field, const char* type) {
        jobject object = jvmenv->GetObjectField(frames, jvmenv->GetFieldID(goldenclass(), field, type));
        return longfield(object, "nativeid");
    };
    auto* image = reinterpret_cast<sprite*>(peer("sprite", "Lfa;"));
    auto* depths = reinterpret_cast<surface*>(peer("surface", "Loa;"));
    auto* copy = reinterpret_cast<surface*>(peer("copy", "Loa;"));
    std::vector<buffer> out;
    auto take = [&](std::string name, const void* words) {
        const auto* p = static_cast<const uint32_t*>(words);
        out.push_back({std::move(name), std::vector<uint32_t>(p, p + size_t(w) * h)});
    };
    for (int step : steps)
        for (int kind = 0; kind < 4; ++kind) {
            callvoid(frames, "draw", "(II)V", step, kind);
            EXPECT_EQ(takepending().classname, "");
            std::string name = "step" + std::to_string(step) + "-" + kinds[kind];
            if (kind == 0) take(name + "-colour", currenttoolkit->colourbuffer);
            if (kind == 0) take(name + "-depth", currenttoolkit->depthbuffer);
            if (kind == 1 || kind == 3) take(name + "-colour", image->pixels);
            if (kind == 2) take(name + "-depth", copy->buffer);
            if (kind == 3) take(name + "-depth", depths->buffer);
        }
    return out;
}

jobject pixelarray(const std::vector<uint32_t>& words) {
    jintArray array = jvmenv->NewIntArray(jsize(words.size()));
    jvmenv->SetIntArrayRegion(array, 0, jsize(words.size()), reinterpret_cast<const jint*>(words.data()));
    return array;
}

void writepng(const std::string& path, const std::vector<uint32_t>& words) {
    jclass cls = goldenclass();
    jvmenv->CallStaticVoidMethod(cls, jvmenv->GetStaticMethodID(cls, "write", "(Ljava/lang/String;[I)V"),
                                 jvmenv->NewStringUTF(path.c_str()), pixelarray(words));
    EXPECT_EQ(takepending().classname, "") << path;
}

// The words of a recorded frame, or none if there is no such file.
std::vector<uint32_t> readpng(const std::string& path) {
    jclass cls = goldenclass();
    auto array = static_cast<jintArray>(jvmenv->CallStaticObjectMethod(
        cls, jvmenv->GetStaticMethodID(cls, "read", "(Ljava/lang/String;)[I"), jvmenv->NewStringUTF(path.c_str())));
    EXPECT_EQ(takepending().classname, "") << path;
    if (!array) return {};
    std::vector<uint32_t> words(size_t(jvmenv->GetArrayLength(array)));
    jvmenv->GetIntArrayRegion(array, 0, jsize(words.size()), reinterpret_cast<jint*>(words.data()));
    return words;
}

// How many words differ, and on a difference the three pictures that show where.
size_t compare(const buffer& expected, const buffer& actual) {
    std::vector<uint32_t> difference(actual.pixels.size());
    size_t count = 0;
    for (size_t i = 0; i < difference.size(); ++i) {
        bool differs = expected.pixels[i] != actual.pixels[i];
        count += differs;
        difference[i] = differs ? 0xFFFF00FF : 0xFF000000 | (actual.pixels[i] >> 2 & 0x3F3F3F);
    }
    if (count == 0) return 0;
    std::string stem = std::string(WEXEL_OUT_DIR) + "/golden/" + actual.name;
    writepng(stem + "-expected.png", expected.pixels);
    writepng(stem + "-actual.png", actual.pixels);
    writepng(stem + "-difference.png", difference);
    return count;
}

void expectsame(const std::vector<buffer>& expected, const std::vector<buffer>& actual, const char* what) {
    ASSERT_EQ(expected.size(), actual.size());
    for (size_t i = 0; i < actual.size(); ++i) {
        if (expected[i].pixels.size() != actual[i].pixels.size()) {
            ADD_FAILURE() << actual[i].name << ": " << what << " has another size";
            continue;
        }
        size_t count = compare(expected[i], actual[i]);
        EXPECT_EQ(count, 0u) << actual[i].name << ": " << count << " of " << actual[i].pixels.size() << " pixels differ from "
                             << what << "; pictures in " << WEXEL_OUT_DIR << "/golden/";
    }
}

TEST(golden, thescenedrawsitsrecordedframes) {
    char key[17];
    std::snprintf(key, sizeof key, "%016llx", static_cast<unsigned long long>(estimatefingerprint()));
    const std::string folder = std::string(WEXEL_GOLDEN_DIR) + "/" + key;
    const char* mode = std::getenv("WEXEL_GOLDEN");
    const bool record = mode && std::strcmp(mode, "write") == 0;

    jobject frames = newobject("goldenframes");
    std::vector<buffer> widest = drawframes(frames);
    // The first frame again, after all the others: nothing carries over from frame to frame.
    std::vector<buffer> again = drawframes(frames);
    expectsame(widest, again, "the same frames drawn again");
    if (widestlanes() == lanewidth::eight) {
        limitlanes(lanewidth::four);
        std::vector<buffer> four = drawframes(frames);
        limitlanes(lanewidth::eight);
        expectsame(widest, four, "the four-lane path");
    }
    callvoid(frames, "close", "()V");
    EXPECT_EQ(takepending().classname, "");

    if (record) {
        for (const buffer& b : widest) writepng(folder + "/" + b.name + ".png", b.pixels);
        std::cout << "recorded " << widest.size() << " golden frames in " << folder << "\n";
        return;
    }
    std::vector<buffer> recorded;
    for (const buffer& b : widest) recorded.push_back({b.name, readpng(folder + "/" + b.name + ".png")});
    if (recorded.front().pixels.empty()) {
        std::cout << "NO GOLDEN FRAMES for this processor's rcpss/rsqrtss fingerprint " << key
                  << ": checked only that frames repeat and that the four- and eight-lane paths agree; "
                     "`make golden` records a set for it\n";
        return;
    }
    expectsame(recorded, widest, "the recorded frame");
}

}  // namespace
