// Scoped holds on host primitive arrays. Each kind has its own cached environment, refreshed by
// the export immediately before it builds the pin, and its own acquire and release calls.
#pragma once
#include <jni.h>

#include "util/frame.h"

enum class pinkind {
    byteread,
    shortread,
    intread,
    intreadwrite,
    floatcritical,
    intcritical,
    intcriticalwrite,
    floatcriticalwrite,
    bytecriticalwrite,
};

// Critical acquires minus critical releases; bookkeeping only.
extern int criticalcount;

template <pinkind K> struct pintraits;
template <class E, class A, bool C, jint M> struct pintraitsof {
    using element = E;
    using array = A;
    static constexpr bool critical = C;
    static constexpr jint releasemode = M;
};
template <> struct pintraits<pinkind::byteread> : pintraitsof<jbyte, jbyteArray, false, JNI_ABORT> {};
template <> struct pintraits<pinkind::shortread> : pintraitsof<jshort, jshortArray, false, JNI_ABORT> {};
template <> struct pintraits<pinkind::intread> : pintraitsof<jint, jintArray, false, JNI_ABORT> {};
template <> struct pintraits<pinkind::intreadwrite> : pintraitsof<jint, jintArray, false, 0> {};
template <> struct pintraits<pinkind::floatcritical> : pintraitsof<jfloat, jfloatArray, true, JNI_ABORT> {};
template <> struct pintraits<pinkind::intcritical> : pintraitsof<jint, jintArray, true, JNI_ABORT> {};
template <> struct pintraits<pinkind::intcriticalwrite> : pintraitsof<jint, jintArray, true, 0> {};
template <> struct pintraits<pinkind::floatcriticalwrite> : pintraitsof<jfloat, jfloatArray, true, 0> {};
template <> struct pintraits<pinkind::bytecriticalwrite> : pintraitsof<jbyte, jbyteArray, true, 0> {};

// Element count of a host array, 0 for a null one.
inline jsize arraylength(JNIEnv* env, jarray a) {
    if (!a) return 0;
    hostcall guard;
    return env->GetArrayLength(a);
}

template <pinkind K>
class arraypin : framehold {
public:
    using traits = pintraits<K>;
    using element = typename traits::element;
    using arraytype = typename traits::array;

    static inline JNIEnv* env;  // this kind's cached environment

    // A null array leaves the pin empty: no data, length 0, nothing acquired.
    arraypin(JNIEnv* caller, arraytype a) {
        env = caller;
        acquire(a);
    }
    // The JVM allows no other call while a critical pin is held, not even for a length, so a
    // call that takes several critical pins reads every length first (`arraylength`) and hands
    // it in here.
    arraypin(JNIEnv* caller, arraytype a, jsize knownlength) requires(traits::critical) {
        env = caller;
        length = knownlength;
        acquire(a, false);
    }
    // The float write pin makes its own array of the given length.
    arraypin(JNIEnv* caller, jsize newlength) requires(K == pinkind::floatcriticalwrite) {
        env = caller;
        jfloatArray made;
        {
            hostcall guard;
            made = env->NewFloatArray(newlength);
        }
        acquire(made);
    }
    // The byte write pin holds one row of an array of byte arrays.
    arraypin(JNIEnv* caller, jobjectArray rows, jsize row) requires(K == pinkind::bytecriticalwrite) {
        env = caller;
        jbyteArray one;
        {
            hostcall guard;
            one = static_cast<jbyteArray>(env->GetObjectArrayElement(rows, row));
        }
        acquire(one);
    }
    ~arraypin() { release(); }
    arraypin(const arraypin&) = delete;
    arraypin& operator=(const arraypin&) = delete;

    element* get() const { return data; }
    element& operator[](long i) const { return data[i]; }
    jint size() const { return length; }
    arraytype object() const { return array; }

    void release() {
        if (!array) return;
        {
            hostcall guard;
            if constexpr (traits::critical) {
                env->ReleasePrimitiveArrayCritical(array, data, traits::releasemode);
                --criticalcount;
            } else {
                releaseelements(array, data);
            }
        }
        array = nullptr;
        data = nullptr;
        unlink();
    }

private:
    void acquire(arraytype a, bool readlength = true) {
        if (!a) return;
        hostcall guard;
        if constexpr (traits::critical) {
            if (readlength) length = env->GetArrayLength(a);
            data = static_cast<element*>(env->GetPrimitiveArrayCritical(a, &iscopy));
            ++criticalcount;
        } else {
            data = getelements(a);
        }
        array = a;
        link();
    }

    element* getelements(arraytype a) {
        if constexpr (K == pinkind::byteread) return env->GetByteArrayElements(a, &iscopy);
        else if constexpr (K == pinkind::shortread) return env->GetShortArrayElements(a, &iscopy);
        else return env->GetIntArrayElements(a, &iscopy);
    }
    void releaseelements(arraytype a, element* d) {
        if constexpr (K == pinkind::byteread) env->ReleaseByteArrayElements(a, d, traits::releasemode);
        else if constexpr (K == pinkind::shortread) env->ReleaseShortArrayElements(a, d, traits::releasemode);
        else env->ReleaseIntArrayElements(a, d, traits::releasemode);
    }

    // While it holds, the pin is on its frame's list so that a fault cannot leave it held.
    void link() {
        exportframe* f = wexelthread.top;
        if (!f) return;
        frame = f;
        below = f->holds;
        giveback = [](framehold* h) { static_cast<arraypin*>(h)->release(); };
        f->holds = this;
    }
    void unlink() {
        if (!frame) return;
        // Pins are released in reverse order of building, so this one is the most recent.
        frame->holds = below;
        frame = nullptr;
    }

    jboolean iscopy = JNI_FALSE;  // the acquire call's answer; nothing reads it
    arraytype array = nullptr;
    element* data = nullptr;
    jint length = 0;
    exportframe* frame = nullptr;
};
