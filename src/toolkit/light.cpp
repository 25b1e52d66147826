#include "toolkit/light.h"

#include "toolkit/projection.h"
#include "util/arraypin.h"
#include "util/frame.h"
#include "util/truncate.h"

int fogflag = 1;

void setsun(toolkit& t, int colour, float ambient, float diffuse, float x, float y, float z) {
    t.suncolour[0] = static_cast<uint8_t>(colour >> 16);
    t.suncolour[1] = static_cast<uint8_t>(colour >> 8);
    t.suncolour[2] = static_cast<uint8_t>(colour);
    // The length is the processor's correctly rounded single-precision square root (sqrtss).
    float length = _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(x * x + y * y + z * z)));
    float f = 1.0f / length;
    t.sundirection[0] = f * x;
    t.sundirection[1] = f * y;
    t.sundirection[2] = f * z;
    t.ambient = ambient;
    t.diffuse = diffuse;
    // Shadows fall along the sun: x and z travelled per unit of height, in 1/256. A level sun
    // divides by zero and the conversion gives the processor's integer indefinite value.
    t.shadowslopex = truncate(t.sundirection[0] * 256.0f / t.sundirection[1]);
    t.shadowslopez = truncate(t.sundirection[2] * 256.0f / t.sundirection[1]);
}

void setpointlights(toolkit& t, int count, const int* lights, const float* intensities) {
    t.lightcount = count > maxlights ? maxlights : count;
    alignas(16) float radii[maxlights] = {};
    for (int i = 0; i < t.lightcount; ++i) {
        const int* light = lights + 5 * i;
        for (int axis = 0; axis < 3; ++axis) t.lightposition[i][axis] = static_cast<float>(light[axis]);
        float k = intensities[i];
        if (k > 1.0f) k = 1.0f;
        // The square wraps in 32 bits; the intensity scales the squared radius, not the radius.
        radii[i] = static_cast<float>(light[3] * light[3]) * k * 256.0f;
        t.lightcolour[i] = light[4];
    }
    floats4::store(t.lightradius, floats4::load(radii));
}

void setshadowcell(toolkit& t, int size) {
    int shift = 0;
    for (int n = size; n > 1; n >>= 1) ++shift;
    t.shadowshift = shift;
    t.shadowcell = 1 << shift;
}

void setfogenabled(toolkit& t, uint8_t value) {
    t.fogenabled = value == 1;
    fogflag = value == 1 ? 1 : 0;
}

void setfog(toolkit& t, int colour, int distance) {
    t.fogcolour = colour;
    t.fogdistance = distance < 0 ? 0.0f : static_cast<float>(distance);
    updatefog(t);
}

void updatefog(const toolkit& t) {
    float z = rasterstate.farplane - t.fogdistance;
    alignas(16) float screen[4];
    floats4::store(screen, projectpoint(floats4::setr(0.0f, 0.0f, z, 1.0f), t.projectionmatrix));
    floats4::store(rasterstate.fogcolour, colourfloats(t.fogcolour));
    rasterstate.fogstart = screen[2];
    rasterstate.fogscale = 1.0f / (1.0f - screen[2]);
}

// The toolkit's fog colour doubles as the shade colour's integer form; the rasterisers' fog
// colour keeps the fog's until the next fog update.
void setshade(toolkit& t, int start, int colour, int range) {
    t.shadestartf = static_cast<float>(start);
    t.shadescale = -1.0f / static_cast<float>(range);
    t.shadestart = start;
    t.fogcolour = colour;
    t.shaderange = range;
    floats4::store(rasterstate.shadecolour, colourfloats(colour));
}

void overrideshade(toolkit& t, int start, int colour, int range) {
    t.savedfogcolour = t.fogcolour;
    setshade(t, start, colour, range);
    t.fogoverride = 1;
}

// The shade colour and start stay as the override left them.
void restoreshade(toolkit& t) {
    t.fogcolour = t.savedfogcolour;
    t.fogoverride = 0;
}

extern "C" {

JNIEXPORT void JNICALL Java_ja_m(JNIEnv* env, jobject, jint colour, jfloat ambient, jfloat diffuse, jfloat x, jfloat y,
                                 jfloat z) {
    runexport(env, [&] { setsun(*currenttoolkit, colour, ambient, diffuse, x, y, z); });
}

JNIEXPORT void JNICALL Java_ja_IA(JNIEnv* env, jobject, jfloat factor) {
    runexport(env, [&] { currenttoolkit->lightfactor = factor; });
}

JNIEXPORT void JNICALL Java_ja_Q(JNIEnv* env, jobject, jint count, jintArray lights, jfloatArray intensities) {
    runexport(env, [&] {
        jsize lightlength = arraylength(env, lights), intensitylength = arraylength(env, intensities);
        arraypin<pinkind::intcritical> lightpin(env, lights, lightlength);
        arraypin<pinkind::floatcritical> intensitypin(env, intensities, intensitylength);
        setpointlights(*currenttoolkit, count, lightpin.get(), intensitypin.get());
    });
}

JNIEXPORT void JNICALL Java_ja_J(JNIEnv* env, jobject, jint size) {
    runexport(env, [&] { setshadowcell(*currenttoolkit, size); });
}

JNIEXPORT void JNICALL Java_ja_RA(JNIEnv* env, jobject, jboolean enabled) {
    runexport(env, [&] { setfogenabled(*currenttoolkit, enabled); });
}

JNIEXPORT void JNICALL Java_ja_c(JNIEnv* env, jobject, jint colour, jint distance, jint) {
    runexport(env, [&] { setfog(*currenttoolkit, colour, distance); });
}

JNIEXPORT void JNICALL Java_ja_JA(JNIEnv* env, jobject, jint start, jint colour, jint range, jint) {
    runexport(env, [&] { setshade(*currenttoolkit, start, colour, range); });
}

JNIEXPORT void JNICALL Java_ja_M(JNIEnv* env, jobject, jint start, jint colour, jint range, jint) {
    runexport(env, [&] { overrideshade(*currenttoolkit, start, colour, range); });
}

JNIEXPORT void JNICALL Java_ja_O(JNIEnv* env, jobject) {
    runexport(env, [&] { restoreshade(*currenttoolkit); });
}

}  // extern "C"
