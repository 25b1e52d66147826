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

// A raw value of axis E, as a host passes it.
template <class E>
using selector = int;

// One member: a value on each axis. It is a structural type, so a member is itself the template
// argument of its function.
template <class... A>
struct variant {
    static constexpr std::array<int, sizeof...(A)> counts{axiscount<A>...};
    static constexpr int combinations = (axiscount<A> * ...);

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

    // The place of the combination of these values among all combinations, the first axis
    // outermost, or -1 when a value lies outside its axis: raw selectors as a host passes them.
    static constexpr int combinationof(selector<A>... v) {
        const int value[] = {v...};
        int place = 0;
        for (size_t i = 0; i < sizeof...(A); ++i) {
            if (value[i] < 0 || value[i] >= counts[i]) return -1;
            place = place * counts[i] + value[i];
        }
        return place;
    }
    constexpr int combination() const {
        return [this]<size_t... I>(std::index_sequence<I...>) {
            return combinationof(values[I]...);
        }(std::make_index_sequence<sizeof...(A)>{});
    }

    // The value names joined by the separator, axes in their order: "multiply.blend". Test
    // frameworks that allow only letters, digits and '_' in a name take '_'.
    std::string name(char separator = '.') const {
        std::string s;
        size_t i = 0;
        ((s += i ? std::string(1, separator) : "", s += axisname(A(values[i])), ++i), ...);
        return s;
    }
};

// Every combination of the axes, the first axis outermost.
template <class... A>
constexpr auto allcombinations() {
    std::array<variant<A...>, variant<A...>::combinations> list{};
    for (size_t i = 0; i < list.size(); ++i) {
        size_t rest = i;
        size_t axis = sizeof...(A);
        // The last axis varies fastest.
        while (axis-- > 0) {
            list[i].values[axis] = int(rest % size_t(variant<A...>::counts[axis]));
            rest /= size_t(variant<A...>::counts[axis]);
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

// For each combination of the axes, its member's position in `list`, or -1.
template <const auto& list>
inline constexpr auto positions = [] {
    using member = std::remove_cvref_t<decltype(list[0])>;
    std::array<int, member::combinations> at{};
    at.fill(-1);
    for (size_t i = 0; i < list.size(); ++i) at[size_t(list[i].combination())] = int(i);
    return at;
}();

// The position in `list` of the member that raw selectors name, one int per axis in the axes'
// order, or -1 when a value lies outside its axis or the combination is not a member: a draw
// chooses its member once with this, and draws nothing on -1.
template <const auto& list, class... I>
constexpr int selectindex(I... values) {
    using member = std::remove_cvref_t<decltype(list[0])>;
    int c = member::combinationof(int(values)...);
    return c < 0 ? -1 : positions<list>[size_t(c)];
}
