// The frame that every export runs its work in. It sets the library's floating-point mode, turns
// failures into pending host exceptions, takes processor faults of the library's own code back
// to the export, and releases every array pin on every road out.
#pragma once
#include <jni.h>
#include <setjmp.h>

#include <type_traits>

#include "util/exception.h"

// A live hold on a host resource that the frame must give back if the work is cut short by a
// fault, when no destructor runs. Pins link themselves here while they hold.
struct framehold {
    framehold* below;
    void (*giveback)(framehold*);
};

// What the fault handler did before it jumped back to the export.
enum class faultreport {
    plain,          // no crash handler on this thread
    dumped,         // a dump was written
    dumpfailed,     // no dump: the file could not be made or written
    reportfaulted,  // the dump writer itself faulted
};

struct exportframe {
    sigjmp_buf jump;
    faultreport fault;
    exportframe* outer;
    framehold* holds;          // most recent first
    unsigned hostmxcsr;        // the caller's control word, restored on the way out
    int hostwasrunning;        // what the thread marker said on entry
};

// Per-thread state, read by the fault handler: a plain record with no constructor so that the
// handler reaches it without any call.
struct librarythread {
    exportframe* top;
    int running;               // 1 while the library's own code runs on this thread
    int reporting;             // 1 while a crash dump is being written on this thread
};
extern __thread librarythread wexelthread __attribute__((tls_model("initial-exec")));

// The library computes with flush-to-zero, denormals-are-zero, all exceptions masked and
// rounding to nearest, whatever the host's threads use.
inline constexpr unsigned librarymxcsr = 0x1F80u | 0x8040u;

void enterframe(exportframe& f);
void leaveframe(exportframe& f);
void givebackholds(exportframe& f);
void reportfault(JNIEnv* env, faultreport how = faultreport::plain);
void reportfailure(JNIEnv* env, Exception* e);

// Runs `work` as the body of an export. After a failure the host has a pending exception and the
// result is zero.
template <class F>
auto runexport(JNIEnv* env, F&& work) -> decltype(work()) {
    using R = decltype(work());
    exportframe f;
    enterframe(f);
    if (sigsetjmp(f.jump, 0) == 0) {
        try {
            if constexpr (std::is_void_v<R>) {
                work();
                leaveframe(f);
                return;
            } else {
                R result = work();
                leaveframe(f);
                return result;
            }
        } catch (Exception* e) {
            reportfailure(env, e);
        } catch (...) {
            reportfault(env);
        }
    } else {
        givebackholds(f);
        reportfault(env, f.fault);
    }
    leaveframe(f);
    return R{};
}

// Scope in which the library calls into the JVM: the JVM's own faults there are not ours, and the
// host's code runs with the host's floating-point mode.
class hostcall {
public:
    hostcall();
    ~hostcall();
    hostcall(const hostcall&) = delete;
    hostcall& operator=(const hostcall&) = delete;

private:
    int wasrunning;
};
