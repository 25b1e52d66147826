// The three moments when drawing calls the host: a full pool asks it to release memory (`h`), a
// missing texture asks it to load one (`SA`), and a new shadow mask needs a host object (`WA`).
// They all go through this interface; the JNI layer implements it, and tests put their own in.
#pragma once

struct toolkit;
struct shadowmask;

// The host's objects as the records keep them: handles that only the implementation of the seam
// looks into.
struct hostmachine;
struct hostobject;

class hostseam {
public:
    // Asks the host of the toolkit to release memory.
    virtual void flushpool(const toolkit& t) = 0;
    // Asks the host to load texture `id` into the store; true when it says it did.
    virtual bool loadtexture(const toolkit& t, int id) = 0;
    // A new host object for a shadow mask, holding `mask` as its peer; null when there is none.
    virtual hostobject* newmask(const toolkit& t, shadowmask* mask) = 0;

protected:
    ~hostseam() = default;
};

// The seam in use: the JNI one unless a test has put its own in.
extern hostseam* currentseam;
