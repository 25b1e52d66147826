#include "util/frame.h"

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>
#include <signal.h>
#include <string.h>
#include <ucontext.h>
#include <xmmintrin.h>

#include "util/crash.h"

__thread librarythread wexelthread __attribute__((tls_model("initial-exec")));

namespace {

// Code in which a fault during the library's work is the library's own: the library itself and
// the C and C++ runtimes that it calls (a bad memcpy faults inside the C library).
struct coderange {
    uintptr_t start, end;
};
constexpr int maxranges = 32;
coderange ranges[maxranges];
int rangecount;

constexpr int handledsignals[] = {SIGSEGV, SIGBUS, SIGFPE};
struct sigaction previous[3];
bool installed;

bool isruntime(const char* path) {
    const char* base = strrchr(path, '/');
    base = base ? base + 1 : path;
    static const char* const names[] = {"libc.so", "libm.so", "libstdc++.so", "libgcc_s.so"};
    for (const char* n : names)
        if (strncmp(base, n, strlen(n)) == 0) return true;
    return false;
}

bool containsself(dl_phdr_info* info) {
    auto self = reinterpret_cast<uintptr_t>(&isruntime);
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& ph = info->dlpi_phdr[i];
        uintptr_t start = info->dlpi_addr + ph.p_vaddr;
        if (ph.p_type == PT_LOAD && self >= start && self < start + ph.p_memsz) return true;
    }
    return false;
}

int collectranges(dl_phdr_info* info, size_t, void*) {
    if (!containsself(info) && !isruntime(info->dlpi_name)) return 0;
    for (int i = 0; i < info->dlpi_phnum && rangecount < maxranges; ++i) {
        const ElfW(Phdr)& ph = info->dlpi_phdr[i];
        if (ph.p_type != PT_LOAD || !(ph.p_flags & PF_X)) continue;
        uintptr_t start = info->dlpi_addr + ph.p_vaddr;
        ranges[rangecount++] = {start, start + ph.p_memsz};
    }
    return 0;
}

bool inourcode(uintptr_t pc) {
    for (int i = 0; i < rangecount; ++i)
        if (pc >= ranges[i].start && pc < ranges[i].end) return true;
    return false;
}

int signalslot(int sig) {
    for (int i = 0; i < 3; ++i)
        if (handledsignals[i] == sig) return i;
    return 0;
}

// A fault that is not the library's goes on to whoever handled the signal before.
void passon(int sig, siginfo_t* info, void* context) {
    const struct sigaction& old = previous[signalslot(sig)];
    if (old.sa_flags & SA_SIGINFO) {
        old.sa_sigaction(sig, info, context);
    } else if (old.sa_handler == SIG_IGN) {
        return;
    } else if (old.sa_handler == SIG_DFL) {
        // Returning re-runs the faulting instruction under the default action.
        signal(sig, SIG_DFL);
    } else {
        old.sa_handler(sig);
    }
}

void onfault(int sig, siginfo_t* info, void* context) {
    auto* uc = static_cast<ucontext_t*>(context);
    librarythread& t = wexelthread;
    if (t.reporting) {
        // The dump writer faulted: the frame reports that instead of a dump.
        pthread_sigmask(SIG_SETMASK, &uc->uc_sigmask, nullptr);
        t.reporting = 0;
        t.top->fault = faultreport::reportfaulted;
        siglongjmp(t.top->jump, 1);
    }
    if (!t.running || !t.top || !inourcode(static_cast<uintptr_t>(uc->uc_mcontext.gregs[REG_RIP]))) {
        passon(sig, info, context);
        return;
    }
    // The jump does not restore the signal mask; without this the thread would keep the fault
    // signals blocked and the JVM's next implicit null check would kill the process. Restored
    // before the dump too, so that a fault of the dump writer comes back here.
    pthread_sigmask(SIG_SETMASK, &uc->uc_sigmask, nullptr);
    t.running = 0;
    t.top->fault = takecrashdump(sig, *info, *uc);
    siglongjmp(t.top->jump, 1);
}

void installhandlers() {
    installed = true;
    dl_iterate_phdr(collectranges, nullptr);
    for (int i = 0; i < 3; ++i) {
        struct sigaction sa {};
        sa.sa_sigaction = onfault;
        sa.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESTART;
        sigemptyset(&sa.sa_mask);
        sigaction(handledsignals[i], &sa, &previous[i]);
    }
}

}  // namespace

void enterframe(exportframe& f) {
    if (!installed) installhandlers();
    librarythread& t = wexelthread;
    f.outer = t.top;
    f.holds = nullptr;
    f.hostmxcsr = _mm_getcsr();
    f.hostwasrunning = t.running;
    _mm_setcsr(librarymxcsr);
    t.top = &f;
    t.running = 1;
}

void leaveframe(exportframe& f) {
    librarythread& t = wexelthread;
    t.running = f.hostwasrunning;
    t.top = f.outer;
    _mm_setcsr(f.hostmxcsr);
}

void givebackholds(exportframe& f) {
    _mm_setcsr(librarymxcsr);
    while (framehold* h = f.holds) h->giveback(h);
}

void reportfailure(JNIEnv* env, Exception* e) {
    if (!e) {
        reportfault(env);
        return;
    }
    e->throwtohost(env);
    delete e;
}

void reportfault(JNIEnv* env, faultreport how) {
    if (how == faultreport::plain)
        RuntimeException("System exception occured").throwtohost(env);
    else
        reportcrash(env, how);
}

hostcall::hostcall() : wasrunning(wexelthread.running) {
    librarythread& t = wexelthread;
    if (!t.top) return;
    t.running = 0;
    _mm_setcsr(t.top->hostmxcsr);
}

hostcall::~hostcall() {
    librarythread& t = wexelthread;
    if (!t.top) return;
    _mm_setcsr(librarymxcsr);
    t.running = wasrunning;
}
