#include <gtest/gtest.h>

#include <cstdarg>

#include "jvm.h"

JNIEnv* jvmenv;

// Marks the library as built into this process: the JVM then binds the host classes' natives
// to the entry points of this executable instead of loading the shared library.
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad_wexel(JavaVM*, void*) { return JNI_VERSION_1_8; }

// The JVM checks that every call that may raise is followed by a look at the pending exception;
// the helpers take that look where a failure would be the test's own fault.
void checked() {
    if (!jvmenv->ExceptionCheck()) return;
    jvmenv->ExceptionDescribe();
    ADD_FAILURE() << "unexpected host exception";
}

pending takepending() {
    JNIEnv* env = jvmenv;
    jthrowable thrown = env->ExceptionOccurred();
    if (!thrown) return {"", "", false};
    env->ExceptionClear();
    jclass cls = env->GetObjectClass(thrown);
    jclass classclass = env->FindClass("java/lang/Class");
    auto name = static_cast<jstring>(
        env->CallObjectMethod(cls, env->GetMethodID(classclass, "getName", "()Ljava/lang/String;")));
    checked();
    jclass throwable = env->FindClass("java/lang/Throwable");
    auto message = static_cast<jstring>(
        env->CallObjectMethod(thrown, env->GetMethodID(throwable, "getMessage", "()Ljava/lang/String;")));
    checked();
    auto text = [&](jstring s) {
        const char* chars = env->GetStringUTFChars(s, nullptr);
        std::string out = chars;
        env->ReleaseStringUTFChars(s, chars);
        return out;
    };
    return {text(name), message ? text(message) : "", message != nullptr};
}

jobject newobject(const char* classname) {
    jclass cls = jvmenv->FindClass(classname);
    jobject made = jvmenv->NewObject(cls, jvmenv->GetMethodID(cls, "<init>", "()V"));
    checked();
    return made;
}

void callvoid(jobject object, const char* method, const char* signature, ...) {
    jmethodID id = jvmenv->GetMethodID(jvmenv->GetObjectClass(object), method, signature);
    va_list args;
    va_start(args, signature);
    jvmenv->CallVoidMethodV(object, id, args);
    va_end(args);
}

int callint(jobject object, const char* method) {
    int result = jvmenv->CallIntMethod(object, jvmenv->GetMethodID(jvmenv->GetObjectClass(object), method, "()I"));
    checked();
    return result;
}

int intfield(jobject object, const char* name) {
    return jvmenv->GetIntField(object, jvmenv->GetFieldID(jvmenv->GetObjectClass(object), name, "I"));
}

void setbooleanfield(jobject object, const char* name, bool value) {
    jvmenv->SetBooleanField(object, jvmenv->GetFieldID(jvmenv->GetObjectClass(object), name, "Z"), value);
}

long long longfield(jobject object, const char* name) {
    return jvmenv->GetLongField(object, jvmenv->GetFieldID(jvmenv->GetObjectClass(object), name, "J"));
}

namespace {

// Each test's local references go with its own frame.
class localframes : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { jvmenv->PushLocalFrame(256); }
    void OnTestEnd(const testing::TestInfo&) override { jvmenv->PopLocalFrame(nullptr); }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    char classpath[] = "-Djava.class.path=" JVM_TEST_CLASSPATH;
    char checks[] = "-Xcheck:jni";
    JavaVMOption options[] = {{classpath, nullptr}, {checks, nullptr}};
    JavaVMInitArgs args{JNI_VERSION_1_8, 2, options, JNI_FALSE};
    JavaVM* vm;
    if (JNI_CreateJavaVM(&vm, reinterpret_cast<void**>(&jvmenv), &args) != JNI_OK) {
        fprintf(stderr, "no JVM\n");
        return 1;
    }
    testing::UnitTest::GetInstance()->listeners().Append(new localframes);
    // The JVM cannot be started again in this process, so it stays until exit.
    return RUN_ALL_TESTS();
}
