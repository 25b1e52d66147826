#include "benchjvm.h"

#include <unistd.h>

#include <cstdlib>

// Marks the library as built in: the JVM binds the natives of "wexel" to this executable.
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad_wexel(JavaVM*, void*) { return JNI_VERSION_1_8; }

namespace {

// The dump folder, gone with the process.
struct dumpfolder {
    std::string path;
    ~dumpfolder() {
        if (!path.empty()) rmdir(path.c_str());
    }
} folder;

}  // namespace

const std::string& benchdumpfolder() { return folder.path; }

JNIEnv* benchjvm() {
    static JNIEnv* env = [] {
        char made[] = "/tmp/wexelbenchXXXXXX";
        folder.path = mkdtemp(made);
        std::string classpath = "-Djava.class.path=" BENCH_CLASSPATH, tmpdir = "-Djava.io.tmpdir=" + folder.path;
        JavaVMOption options[] = {{classpath.data(), nullptr}, {tmpdir.data(), nullptr}};
        JavaVMInitArgs args{JNI_VERSION_1_8, 2, options, JNI_FALSE};
        JavaVM* vm;
        JNIEnv* env = nullptr;
        if (JNI_CreateJavaVM(&vm, reinterpret_cast<void**>(&env), &args) != JNI_OK) return static_cast<JNIEnv*>(nullptr);
        return env;
    }();
    return env;
}
