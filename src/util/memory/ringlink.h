// Intrusive doubly linked rings: the blocks of a manager and the handles of a block link
// themselves in, so that moving a block can reach every holder without any allocation.
#pragma once

struct ringlink {
    ringlink* next = this;
    ringlink* prev = this;

    ringlink() = default;
    ringlink(const ringlink&) = delete;
    ringlink& operator=(const ringlink&) = delete;

    bool alone() const { return next == this; }

    // Links this in just before `at`; before a ring's head that makes it the ring's last item.
    void linkbefore(ringlink& at) {
        next = &at;
        prev = at.prev;
        prev->next = this;
        at.prev = this;
    }

    void unlink() {
        prev->next = next;
        next->prev = prev;
        next = prev = this;
    }
};

// The head of a ring of T, which derive from ringlink. Items are visited from the first linked
// to the last, and the one being visited may unlink itself.
template <class T>
struct ring {
    ringlink head;

    bool empty() const { return head.alone(); }
    T* last() const { return static_cast<T*>(head.prev); }
    void append(T& item) { item.linkbefore(head); }

    template <class F>
    void each(F&& visit) const {
        for (ringlink *l = head.next, *after; l != &head; l = after) {
            after = l->next;
            visit(*static_cast<T*>(l));
        }
    }
};
