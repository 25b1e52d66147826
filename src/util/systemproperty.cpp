#include "util/systemproperty.h"

std::string systemproperty(JNIEnv* env, const char* name) {
    jclass system = env->FindClass("java/lang/System");
    jmethodID get = system ? env->GetStaticMethodID(system, "getProperty", "(Ljava/lang/String;)Ljava/lang/String;")
                           : nullptr;
    auto value = get ? static_cast<jstring>(env->CallStaticObjectMethod(system, get, env->NewStringUTF(name))) : nullptr;
    // A lookup that raised is a property the host doesn't have.
    if (env->ExceptionCheck()) env->ExceptionClear();
    std::string text;
    if (!value || env->GetStringLength(value) == 0) return text;
    if (const char* chars = env->GetStringUTFChars(value, nullptr)) {
        text = chars;
        env->ReleaseStringUTFChars(value, chars);
    }
    return text;
}
