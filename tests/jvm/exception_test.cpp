// Every class of the failure tree raised in a real JVM: the host class and message it leaves
// pending, the line the error class alone writes first, and what the frame makes of a failure and
// leaves of the thread.
#include <gtest/gtest.h>

#include "jvm.h"
#include "util/exception.h"
#include "util/frame.h"

namespace {

pending raised(Exception* e) {
    e->throwtohost(jvmenv);
    delete e;
    return takepending();
}

TEST(exceptiontree, eachclassraisesitshostclasswithitsmessage) {
    struct {
        Exception* failure;
        const char* hostclass;
        const char* message;
    } cases[] = {
        {new Exception("No colour buffer"), "java.lang.Exception", "No colour buffer"},
        {new NullPointerException, "java.lang.NullPointerException", ""},
        {new RuntimeException("Error during error reporting"), "java.lang.RuntimeException",
         "Error during error reporting"},
        {new ArrayIndexOutOfBoundsException(17, 4), "java.lang.ArrayIndexOutOfBoundsException",
         "Array index out of range: 17"},
        {new OutOfMemory("native(MPR: 1100)"), "java.lang.OutOfMemoryError", "native(MPR: 1100)"},
        {new IllegalArgumentException, "java.lang.IllegalArgumentException", ""},
        {new IllegalStateException("not permitted"), "java.lang.IllegalStateException", "not permitted"},
        {new NativeError("/tmp/6f1c.dmp"), "morvik.graphics2.NativeError", "/tmp/6f1c.dmp"},
    };
    testing::internal::CaptureStdout();
    for (auto& c : cases) {
        pending p = raised(c.failure);
        EXPECT_EQ(p.classname, c.hostclass);
        EXPECT_TRUE(p.hasmessage) << c.hostclass;
        EXPECT_EQ(p.message, c.message) << c.hostclass;
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Throwing: /tmp/6f1c.dmp\n");
}

// A host exception already pending, from a callback of the host, is the cause the host sees.
TEST(exceptiontree, apendinghostexceptionisnotreplaced) {
    jvmenv->ThrowNew(jvmenv->FindClass("java/lang/IllegalStateException"), "the host's own");
    pending p = raised(new OutOfMemory("native(MPA)"));
    EXPECT_EQ(p.classname, "java.lang.IllegalStateException");
    EXPECT_EQ(p.message, "the host's own");
    jvmenv->ThrowNew(jvmenv->FindClass("java/lang/IllegalStateException"), "again");
    p = raised(new ArrayIndexOutOfBoundsException(1, 0));
    EXPECT_EQ(p.message, "again");
}

// The frame reports a thrown failure, deletes it, and the export's result is 0.
TEST(exceptiontree, frametellsthehostandreturnszero) {
    int result = runexport(jvmenv, []() -> int { fail<IllegalStateException>("outside the mask"); });
    EXPECT_EQ(result, 0);
    pending p = takepending();
    EXPECT_EQ(p.classname, "java.lang.IllegalStateException");
    EXPECT_EQ(p.message, "outside the mask");
    EXPECT_EQ(runexport(jvmenv, [] { return 7; }), 7);
    EXPECT_EQ(takepending().classname, "");
    // The thread is the host's again after every export, also after one made from inside a call
    // back into the host, where a fault of the JVM's own would otherwise be taken as the library's.
    EXPECT_EQ(wexelthread.running, 0);
    runexport(jvmenv, [] {
        hostcall host;
        runexport(jvmenv, [] {});
        EXPECT_EQ(wexelthread.running, 0);
    });
    EXPECT_EQ(wexelthread.running, 0);
}

}  // namespace
