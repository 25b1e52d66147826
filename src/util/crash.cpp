#include "util/crash.h"

#include <fcntl.h>
#include <unistd.h>
#include <uuid/uuid.h>

#include <cstdio>
#include <cstring>

#include "util/assertion.h"
#include "util/exception.h"
#include "util/minidump.h"
#include "util/systemproperty.h"

int toolkitcount;

namespace {

constexpr int foldersize = 260;
constexpr int pathsize = foldersize + 48;

// The handler of the thread that made the first toolkit. The next dump's path is made ahead of
// the fault, for a fresh id can't be made inside a signal handler.
struct dumphandler {
    pid_t thread;
    int file;  // the dump being written, or -1
    char nextpath[pathsize];
};

dumphandler handler;
dumphandler* crashhandler;
char dumpfolder[foldersize];
bool dumpfolderknown;
char dumppath[pathsize];

// The host's "java.io.tmpdir", used as it stands; "/tmp" when it is missing or empty.
void finddumpfolder(JNIEnv* env) {
    dumpfolderknown = true;
    std::string folder;
    {
        hostcall guard;
        folder = systemproperty(env, "java.io.tmpdir");
    }
    snprintf(dumpfolder, foldersize, "%s", folder.empty() ? "/tmp" : folder.c_str());
}

void namenextdump() {
    uuid_t u;
    uuid_generate(u);
    char id[40];
    snprintf(id, sizeof id, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
             static_cast<unsigned>(u[0] << 24 | u[1] << 16 | u[2] << 8 | u[3]), u[4] << 8 | u[5], u[6] << 8 | u[7],
             u[8], u[9], u[10], u[11], u[12], u[13], u[14], u[15]);
    snprintf(crashhandler->nextpath, pathsize, "%s/%s.dmp", dumpfolder, id);
}

// A dump cut short leaves no file.
void closedump(bool written) {
    if (crashhandler->file < 0) return;
    close(crashhandler->file);
    if (!written) unlink(crashhandler->nextpath);
    crashhandler->file = -1;
}

}  // namespace

void startcrashreporting(JNIEnv* env) {
    if (++toolkitcount != 1) return;
    if (!dumpfolderknown) finddumpfolder(env);
    WEXEL_ASSERT(crashhandler == nullptr, "eh==null", "util/exception", 50);
    prepareminidumps();
    handler.thread = gettid();
    handler.file = -1;
    crashhandler = &handler;
    namenextdump();
}

void stopcrashreporting() {
    if (--toolkitcount == 0) crashhandler = nullptr;
}

faultreport takecrashdump(int sig, const siginfo_t& info, const ucontext_t& fault) {
    if (!crashhandler || crashhandler->thread != gettid()) return faultreport::plain;
    // A fault from here on is a fault of the report itself: the handler jumps back at once.
    wexelthread.reporting = 1;
    crashhandler->file = open(crashhandler->nextpath, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    bool written = crashhandler->file >= 0 && writeminidump(crashhandler->file, sig, info, fault);
    wexelthread.reporting = 0;
    closedump(written);
    if (!written) return faultreport::dumpfailed;
    memcpy(dumppath, crashhandler->nextpath, pathsize);
    return faultreport::dumped;
}

void reportcrash(JNIEnv* env, faultreport how) {
    if (how == faultreport::reportfaulted) {
        closedump(false);
        RuntimeException("Error during error reporting").throwtohost(env);
    } else {
        // A failed dump leaves the path of the one before, or nothing.
        NativeError(dumppath).throwtohost(env);
    }
    namenextdump();
}
