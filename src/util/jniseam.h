// The host seam as the JVM serves it, and the conversions between the records' host handles and
// the JNI references behind them.
#pragma once
#include <jni.h>

#include "util/hostseam.h"

// The host's callbacks on its class "ja", looked up for every toolkit.
extern jmethodID method_SA, method_h, method_WA;
void findhostmethods(JNIEnv* env);

inline hostobject* hostof(jobject o) { return reinterpret_cast<hostobject*>(o); }
inline jobject jniof(hostobject* h) { return reinterpret_cast<jobject>(h); }
inline hostmachine* hostof(JavaVM* vm) { return reinterpret_cast<hostmachine*>(vm); }
inline JavaVM* jniof(hostmachine* m) { return reinterpret_cast<JavaVM*>(m); }
