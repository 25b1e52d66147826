// The host as a test plays it, in place of the JNI seam and with its own toolkit current while it
// lives: a texture load gets what `load` answers, none declining.
#pragma once
#include <functional>
#include <vector>

#include "toolkit/toolkit.h"
#include "util/hostseam.h"

struct testhost final : hostseam {
    testhost() { currentseam = this, currenttoolkit = &t; }
    ~testhost() { currentseam = seam, currenttoolkit = kit; }
    void flushpool(const toolkit&) override {}
    bool loadtexture(const toolkit&, int id) override { return loads.push_back(id), load && load(id); }
    hostobject* newmask(const toolkit&, shadowmask*) override { return nullptr; }

    hostseam* seam = currentseam;  // put back at the end
    toolkit* kit = currenttoolkit;
    toolkit t{};
    std::function<bool(int)> load;
    std::vector<int> loads;
};
