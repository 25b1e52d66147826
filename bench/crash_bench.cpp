// The time from a fault on the drawing thread to the pending host exception, with the crash dump
// it writes, beside the same fault with no crash handler (the plain runtime exception). The dump's
// size is a counter. A JVM runs in this process for the exceptions, with a dump folder of its own.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <jni.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "benchjvm.h"
#include "ratio.h"
#include "util/crash.h"
#include "util/frame.h"

namespace {

// A pointer the compiler cannot see to be null, so that the store stays a store.
int* volatile nowhere = nullptr;

void fault(JNIEnv* env) {
    runexport(env, [] { *nowhere = 1; });
    env->ExceptionClear();
}

// Removes the dumps written so far; their total size.
long long cleardumps() {
    long long bytes = 0;
    DIR* dir = opendir(benchdumpfolder().c_str());
    while (dirent* e = dir ? readdir(dir) : nullptr) {
        std::string path = benchdumpfolder() + "/" + e->d_name;
        struct stat s;
        if (e->d_name[0] == '.' || stat(path.c_str(), &s) != 0) continue;
        bytes += s.st_size;
        unlink(path.c_str());
    }
    if (dir) closedir(dir);
    return bytes;
}

void BM_faultwithdump(benchmark::State& state) {
    JNIEnv* env = benchjvm();
    if (!env) return state.SkipWithError("no JVM");
    startcrashreporting(env);
    long long bytes = 0;
    for (auto _ : state) {
        fault(env);
        state.PauseTiming();
        bytes += cleardumps();
        state.ResumeTiming();
    }
    stopcrashreporting();
    state.counters["dump bytes"] = static_cast<double>(bytes) / static_cast<double>(state.iterations());
}
BENCHMARK(BM_faultwithdump)->Unit(benchmark::kMillisecond);

void BM_faultwithoutdump(benchmark::State& state) {
    JNIEnv* env = benchjvm();
    if (!env) return state.SkipWithError("no JVM");
    for (auto _ : state) fault(env);
}
BENCHMARK(BM_faultwithoutdump)->Unit(benchmark::kMillisecond);

[[maybe_unused]] const bool compared = [] {
    compareto("BM_faultwithdump", "BM_faultwithoutdump");
    return true;
}();

}  // namespace
