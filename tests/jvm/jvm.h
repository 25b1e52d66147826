// The JVM that the tests of this binary share, started once in main.
#pragma once
#include <jni.h>

#include <cstdarg>
#include <string>

extern JNIEnv* jvmenv;

// The pending exception's class name and message, cleared; an empty class name if none.
struct pending {
    std::string classname;
    std::string message;
    bool hasmessage;
};
pending takepending();

// A new object of a host class through its no-argument constructor.
jobject newobject(const char* classname);

// Calls a void method; a host exception it raises stays pending for takepending.
void callvoid(jobject object, const char* method, const char* signature, ...);
int callint(jobject object, const char* method);

int intfield(jobject object, const char* name);
void setbooleanfield(jobject object, const char* name, bool value);
long long longfield(jobject object, const char* name);
