// The host's system properties, the only settings the library reads from outside its calls.
#pragma once
#include <jni.h>

#include <string>

// The value of the host's system property `name` through System.getProperty; empty when the host
// has none. Called inside a hostcall scope.
std::string systemproperty(JNIEnv* env, const char* name);
