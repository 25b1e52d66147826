// Render clients: made zeroed with stamp 1, each new one first in its toolkit's ring, and gone
// from it when destroyed.
#include "toolkit/renderworkspace.h"

#include <gtest/gtest.h>

namespace {

TEST(renderworkspace, newclientsgofirstandleavewhendestroyed) {
    toolkit t{};
    renderworkspace* first = makeworkspace(t, 7, 9);
    renderworkspace* second = makeworkspace(t, 1, 2);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(t.clients.next, second);
    EXPECT_EQ(second->next, first);
    EXPECT_EQ(first->next, &t.clients);
    EXPECT_EQ(t.clients.prev, first);
    EXPECT_EQ(first->toolkit, &t);
    EXPECT_EQ(first->limitone, 7);
    EXPECT_EQ(first->limittwo, 9);
    EXPECT_EQ(first->stamp, 1);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(first->vertices) % 16, 0u);
    EXPECT_EQ(first->vertices[workspacevertices - 1][3], 0.0f);
    EXPECT_EQ(first->stampstwo[workspacestamps - 1], 0);
    destroyworkspace(second);
    EXPECT_EQ(t.clients.next, first);
    destroyworkspace(first);
    EXPECT_TRUE(t.clients.alone());
}

}  // namespace
