// Crash reporting: a fault of the library's own code on the thread that made the first toolkit
// leaves a minidump in the host's temporary folder and reaches the host as its error class, with
// the dump's path as the message.
#pragma once
#include <jni.h>
#include <signal.h>
#include <ucontext.h>

#include "util/frame.h"

extern int toolkitcount;

// From the toolkit's construction and teardown. Toolkits share one handler, bound to the thread
// that made the first of them and gone with the last.
void startcrashreporting(JNIEnv* env);
void stopcrashreporting();

// From the fault handler: writes the dump when the fault is on the handler's thread.
faultreport takecrashdump(int sig, const siginfo_t& info, const ucontext_t& fault);

// After the jump back to the export: tells the host, and names the next dump.
void reportcrash(JNIEnv* env, faultreport how);
