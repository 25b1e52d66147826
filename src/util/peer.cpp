#include "util/peer.h"

#include <cstdint>

#include "util/exception.h"
#include "util/frame.h"

namespace {

struct peerfield {
    jfieldID fieldid;
    jweak classref;  // keeps the field id's class known; nothing reads it
};
peerfield peerfields[static_cast<int>(hostclass::count)];

// The first use for a class finds the field. A read normally comes after a store, but a host that
// reads first gets a working lookup rather than a null field id.
jfieldID fieldof(JNIEnv* env, peerfield& p, jobject object) {
    if (!p.fieldid) {
        jclass c = env->GetObjectClass(object);
        p.classref = env->NewWeakGlobalRef(c);
        p.fieldid = env->GetFieldID(c, "nativeid", "J");
    }
    return p.fieldid;
}

}  // namespace

void setpeerfield(JNIEnv* env, hostclass cls, jobject object, const void* pointer) {
    if (!object) return;
    hostcall guard;
    jfieldID id = fieldof(env, peerfields[static_cast<int>(cls)], object);
    if (id) env->SetLongField(object, id, static_cast<jlong>(reinterpret_cast<intptr_t>(pointer)));
}

void* getpeerfield(JNIEnv* env, hostclass cls, jobject object) {
    if (!object) fail<NullPointerException>();
    jlong value;
    {
        hostcall guard;
        jfieldID id = fieldof(env, peerfields[static_cast<int>(cls)], object);
        value = id ? env->GetLongField(object, id) : 0;
    }
    return peerat<void>(value);
}
