// A minidump of the whole process, in the Microsoft format with the Linux streams that common
// readers know, written from inside the fault's signal handler.
#pragma once
#include <signal.h>
#include <ucontext.h>

// Gathers what a dump says about the machine, which doesn't change while the process runs.
// Called before any fault, outside the signal handler.
void prepareminidumps();

// Writes the dump for the fault `sig` described by `info` and `fault`, taken on the calling thread,
// into the open file `fd`. Async-signal-safe: it makes no allocation, takes no lock and reads
// through system calls into memory reserved with the library. False if any write failed.
bool writeminidump(int fd, int sig, const siginfo_t& info, const ucontext_t& fault);
