// The host as a test plays it, in place of the JNI seam for the double's lifetime: it counts pool
// flushes, answers texture loads with what the test gives, and hands out numbered mask objects.
#pragma once
#include <functional>
#include <vector>

#include "toolkit/toolkit.h"
#include "util/hostseam.h"

class testhost final : public hostseam {
public:
    testhost() : previous(currentseam), savedtoolkit(currenttoolkit) {
        currentseam = this;
        currenttoolkit = &t;
    }
    ~testhost() {
        currentseam = previous;
        currenttoolkit = savedtoolkit;
    }

    void flushpool(const toolkit&) override { ++flushes; }
    bool loadtexture(const toolkit&, int id) override {
        loads.push_back(id);
        return load && load(id);
    }
    hostobject* newmask(const toolkit&, shadowmask* mask) override {
        masks.push_back(mask);
        return reinterpret_cast<hostobject*>(masks.size());
    }

    toolkit t{};  // current while the double is
    int flushes = 0;
    std::vector<int> loads;
    std::function<bool(int)> load;  // the host's answer to a load; none declines
    std::vector<shadowmask*> masks;

private:
    hostseam* previous;
    toolkit* savedtoolkit;
};
