#include "util/jniseam.h"

#include "toolkit/toolkit.h"
#include "util/exception.h"
#include "util/frame.h"
#include "util/peer.h"

jmethodID method_SA, method_h, method_WA;

void findhostmethods(JNIEnv* env) {
    hostcall guard;
    jclass cls = env->FindClass("ja");
    if (!cls) return;
    method_SA = env->GetMethodID(cls, "SA", "(S)Z");
    method_h = env->GetMethodID(cls, "h", "()V");
    method_WA = env->GetMethodID(cls, "WA", "()Ljava/lang/Object;");
}

namespace {

// A callback on the toolkit's host object, with this thread's environment from the toolkit's VM,
// inside a host-call scope. Without an environment or with the object gone there is nobody to ask
// and `none` is the answer. The host's own failure ends the call that needed the host, and the
// host sees its exception.
template <class R, class F>
R callhost(const toolkit& t, const char* failure, R none, JNIEnv*& env, F&& call) {
    hostcall guard;
    if (jniof(t.vm)->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_1) != JNI_OK) return none;
    jobject host = env->NewLocalRef(jniof(t.hostref));
    if (!host) return none;
    R result = call(host);
    env->DeleteLocalRef(host);
    if (env->ExceptionCheck()) fail<RuntimeException>(failure);
    return result;
}

class jniseam final : public hostseam {
public:
    void flushpool(const toolkit& t) override {
        JNIEnv* env = nullptr;
        callhost(t, "Exception in memory flush", 0, env, [&](jobject host) {
            env->CallVoidMethod(host, method_h);
            return 0;
        });
    }

    bool loadtexture(const toolkit& t, int id) override {
        JNIEnv* env = nullptr;
        return callhost(t, "Exception in texture load", false, env, [&](jobject host) {
            return env->CallBooleanMethod(host, method_SA, static_cast<jshort>(id)) != JNI_FALSE;
        });
    }

    hostobject* newmask(const toolkit& t, shadowmask* mask) override {
        JNIEnv* env = nullptr;
        jobject made = callhost(t, "Exception in mask construction", jobject{}, env,
                                [&](jobject host) { return env->CallObjectMethod(host, method_WA); });
        setpeer(env, hostclass::aa, made, mask);
        return hostof(made);
    }
};

jniseam seam;

}  // namespace

hostseam* currentseam = &seam;
