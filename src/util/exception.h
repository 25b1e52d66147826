// Failures inside the library: objects of this tree are thrown by pointer and told to the host by
// the frame of the export, which then deletes them.
#pragma once
#include <jni.h>

#include <new>

class Exception {
public:
    explicit Exception(const char* message);
    virtual ~Exception();
    Exception(const Exception&) = delete;
    Exception& operator=(const Exception&) = delete;

    // Raises the host exception that stands for this failure; the export returns after it. A
    // host exception already pending (a callback of the host threw) is the first cause and stays.
    virtual void throwtohost(JNIEnv* env);

    const char* message() const { return text; }

protected:
    void thrownamed(JNIEnv* env, const char* hostclass, const char* words);

private:
    char* text;
};

class NullPointerException : public Exception {
public:
    NullPointerException() : Exception("") {}
    void throwtohost(JNIEnv* env) override;
};

class RuntimeException : public Exception {
public:
    using Exception::Exception;
    void throwtohost(JNIEnv* env) override;
};

// The host's own error class; its message is echoed on standard output before it is raised.
class NativeError : public Exception {
public:
    using Exception::Exception;
    void throwtohost(JNIEnv* env) override;
};

class ArrayIndexOutOfBoundsException : public Exception {
public:
    ArrayIndexOutOfBoundsException(int index, int limit) : Exception(""), index(index), limit(limit) {}
    void throwtohost(JNIEnv* env) override;

    const int index;
    const int limit;  // kept for a reader in a debugger; the host is told only the index
};

class OutOfMemory : public Exception {
public:
    using Exception::Exception;
    void throwtohost(JNIEnv* env) override;
};

class IllegalArgumentException : public Exception {
public:
    IllegalArgumentException() : Exception("") {}
    explicit IllegalArgumentException(const char* message) : Exception(message) {}
    void throwtohost(JNIEnv* env) override;
};

class IllegalStateException : public Exception {
public:
    using Exception::Exception;
    void throwtohost(JNIEnv* env) override;
};

// Allocates a failure with plain new and throws the pointer; a failed allocation throws null,
// which the frame reports as a failure of unknown kind.
template <class E, class... A>
[[noreturn]] void fail(A&&... args) {
    throw new (std::nothrow) E(static_cast<A&&>(args)...);
}
