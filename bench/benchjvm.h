// The JVM of the benchmark process, made on first use, with the host classes and the demo's scene
// on its class path. The library is built into this process: the host classes' natives bind to
// the copy the benchmarks measure. Faults' dumps go to a folder of their own.
#pragma once
#include <jni.h>

#include <string>

// Null if no JVM could be made.
JNIEnv* benchjvm();
const std::string& benchdumpfolder();
