// Variant lists: a family of drawing functions is a list of members, each a combination of the
// values of a few axes. The list is written once and everything else comes from it: the table of
// functions (each member's function is a template instantiated for that member), the position of
// a member in the table, and the member's name for tests and benchmarks.
//
// An axis is an enum whose values run from 0 without gaps, with a function `axisnames(E)`
// beside it (found by argument-dependent lookup) that gives the name of every value in order.
#pragma once
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

template <class E>
inline constexpr int axiscount = int(axisnames(E{}).size());

template <class E>
constexpr std::string_view axisname(E value) {
    return axisnames(E{})[size_t(value)];
}

template <class E, class... A>
constexpr int axisposition() {
    constexpr bool found[] = {std::is_same_v<E, A>...};
    for (int i = 0; i < int(sizeof...(A)); ++i)
        if (found[i]) return i;
    return -1;
}

// One member: a value on each axis. It is a structural type, so a member is itself the template
// argument of its function.
template <class... A>
struct variant {
    std::array<int, sizeof...(A)> values{};

    constexpr variant() = default;
    constexpr explicit variant(A... a) : values{int(a)...} {}

    template <class E>
    constexpr E get() const {
        static_assert(axisposition<E, A...>() >= 0, "not an axis of this variant");
        return E(values[axisposition<E, A...>()]);
    }
    template <class E>
    constexpr variant with(E value) const {
        variant v = *this;
        v.values[axisposition<E, A...>()] = int(value);
        return v;
    }
    constexpr bool operator==(const variant&) const = default;

    // The value names joined by dots, axes in their order: "multiply.blend".
    std::string name() const {
        std::string s;
        size_t i = 0;
        ((s += (i ? "." : ""), s += axisname(A(values[i])), ++i), ...);
        return s;
    }
};

// Every combination of the axes, the first axis outermost.
template <class... A>
constexpr auto allcombinations() {
    constexpr size_t count = (size_t(axiscount<A>) * ...);
    std::array<variant<A...>, count> list{};
    for (size_t i = 0; i < count; ++i) {
        size_t rest = i;
        size_t axis = sizeof...(A);
        // The last axis varies fastest.
        constexpr std::array<int, sizeof...(A)> counts{axiscount<A>...};
        while (axis-- > 0) {
            list[i].values[axis] = int(rest % size_t(counts[axis]));
            rest /= size_t(counts[axis]);
        }
    }
    return list;
}

// The position of a member in a list, or -1.
template <class V, size_t N>
constexpr int indexof(const std::array<V, N>& list, const V& member) {
    for (size_t i = 0; i < N; ++i)
        if (list[i] == member) return int(i);
    return -1;
}

// The members of a list whose axis E has the given value, in list order: one slice per value of
// an outer axis lets each slice be instantiated in a file of its own.
template <const auto& list, class E, E value>
constexpr auto slice() {
    constexpr size_t count = [] {
        size_t n = 0;
        for (const auto& m : list) n += m.template get<E>() == value;
        return n;
    }();
    std::array<std::remove_cvref_t<decltype(list[0])>, count> out{};
    size_t n = 0;
    for (const auto& m : list)
        if (m.template get<E>() == value) out[n++] = m;
    return out;
}

// The dispatch table of a list: make.template operator()<member>() for each member, in order.
// `make` is a template lambda such as []<auto M>() { return &drawrow<M>; }.
template <const auto& list, class Make>
constexpr auto dispatchtable(Make make) {
    return [&]<size_t... I>(std::index_sequence<I...>) {
        return std::array{make.template operator()<list[I]>()...};
    }(std::make_index_sequence<list.size()>{});
}
