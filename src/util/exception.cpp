#include "util/exception.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "util/frame.h"

Exception::Exception(const char* message) : text(strdup(message)) {}

Exception::~Exception() { free(text); }

void Exception::thrownamed(JNIEnv* env, const char* hostclass, const char* words) {
    hostcall guard;
    if (env->ExceptionCheck()) return;
    jclass cls = env->FindClass(hostclass);
    if (cls) env->ThrowNew(cls, words);
}

void Exception::throwtohost(JNIEnv* env) { thrownamed(env, "java/lang/Exception", message()); }

void NullPointerException::throwtohost(JNIEnv* env) {
    thrownamed(env, "java/lang/NullPointerException", "");
}

void RuntimeException::throwtohost(JNIEnv* env) {
    thrownamed(env, "java/lang/RuntimeException", message());
}

void NativeError::throwtohost(JNIEnv* env) {
    printf("Throwing: %s\n", message());
    fflush(stdout);
    thrownamed(env, "morvik/graphics2/NativeError", message());
}

void ArrayIndexOutOfBoundsException::throwtohost(JNIEnv* env) {
    hostcall guard;
    if (env->ExceptionCheck()) return;
    jclass cls = env->FindClass("java/lang/ArrayIndexOutOfBoundsException");
    if (!cls) return;
    jmethodID init = env->GetMethodID(cls, "<init>", "(I)V");
    if (!init) return;
    auto thrown = static_cast<jthrowable>(env->NewObject(cls, init, static_cast<jint>(index)));
    if (thrown) env->Throw(thrown);
}

void OutOfMemory::throwtohost(JNIEnv* env) { thrownamed(env, "java/lang/OutOfMemoryError", message()); }

void IllegalArgumentException::throwtohost(JNIEnv* env) {
    thrownamed(env, "java/lang/IllegalArgumentException", message());
}

void IllegalStateException::throwtohost(JNIEnv* env) {
    thrownamed(env, "java/lang/IllegalStateException", message());
}
