// Native peers: each peer-bearing host object keeps its peer's address in its `long nativeid`.
#pragma once
#include <jni.h>

#include <cstdint>

enum class hostclass { ja, za, oa, wa, aa, ba, a, fa, h, i, ea, m, ia, count };

// Stores the peer's address in the object's nativeid. The field id is looked up once per class.
void setpeerfield(JNIEnv* env, hostclass cls, jobject object, const void* pointer);

// Reads the peer's address; a null object raises NullPointerException.
void* getpeerfield(JNIEnv* env, hostclass cls, jobject object);

template <class T>
T* getpeer(JNIEnv* env, hostclass cls, jobject object) {
    return static_cast<T*>(getpeerfield(env, cls, object));
}

inline void setpeer(JNIEnv* env, hostclass cls, jobject object, const void* pointer) {
    setpeerfield(env, cls, object, pointer);
}

// The peers of fa, oa and a, and the toolkit and masks of some calls, come as the long that holds
// the address.
template <class T>
T* peerat(jlong handle) {
    return reinterpret_cast<T*>(static_cast<intptr_t>(handle));
}
