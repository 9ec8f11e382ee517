// Equality and hashes of values, at any depth.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "velmora/config/value.hpp"
#include "velmora/utils/hash.hpp"

namespace velmora::config {

namespace {

bool is_nan(const ConfigValue& value) {
    const auto* real = value.get_if<double>();
    return real != nullptr && std::isnan(*real);
}

// Lists and mappings are hashed down to this depth, and only so many items from both ends of each
// list, so that every hash is cheap and ends.
constexpr int hashed_depth = 3;
constexpr std::size_t hashed_items = 4;

// What holds NaN equals only itself: hashed by its items alone, many such keys would be compared
// with each other in vain.
std::size_t hash_identity(const void* identity) {
    return utils::hash_mix(0, std::hash<const void*>{}(identity));
}

class Hasher {
public:
    explicit Hasher(int depth) : depth_(depth) {}

    std::size_t operator()(std::monostate) const { return 0; }
    std::size_t operator()(bool flag) const { return flag ? 1 : 2; }
    std::size_t operator()(const Integer& integer) const { return integer.hash(); }
    std::size_t operator()(double real) const { return Number(real).hash(); }
    std::size_t operator()(const std::string& text) const { return utils::hash_text(text); }

    std::size_t operator()(const List& list) const {
        if (depth_ == 0) return 0;
        std::size_t seed = list.size();
        const std::size_t front = std::min(list.size(), hashed_items);
        const std::size_t back = std::max(front, list.size() - front);
        for (std::size_t i = 0; i < list.size(); i = i + 1 == front ? back : i + 1) {
            if (is_nan(list[i])) return hash_identity(list.identity());
            seed = utils::hash_mix(seed, hash_below(list[i]));
        }
        return seed;
    }

    // A sum, because the order of the entries does not count.
    std::size_t operator()(const Mapping& mapping) const {
        std::size_t sum = mapping.size();
        if (depth_ == 0 || mapping.size() > 2 * hashed_items) return sum;
        for (const auto& [key, value] : mapping) {
            if (is_nan(key) || is_nan(value)) return hash_identity(mapping.identity());
            sum += utils::hash_mix(hash_below(key), hash_below(value));
        }
        return sum;
    }

private:
    std::size_t hash_below(const ConfigValue& value) const {
        return value.visit(Hasher(depth_ - 1));
    }

    int depth_;
};

// Compares pair by pair, taking every pair of lists or mappings that is met for equal until a
// difference shows: the classes of such objects are kept as in Hopcroft and Karp, "A Linear
// Algorithm for Testing Equivalence of Finite Automata" (1971), so that no more pairs are opened
// than there are objects.
class Comparison {
public:
    bool equal(const ConfigValue& a, const ConfigValue& b) {
        if (!equal_so_far(a, b)) return false;
        while (!lists_.empty() || !mappings_.empty()) {
            if (!(lists_.empty() ? equal_entries(taken(mappings_)) : equal_items(taken(lists_))))
                return false;
        }
        return true;
    }

private:
    template <class T>
    using Pairs = std::vector<std::pair<const T*, const T*>>;

    template <class T>
    static std::pair<const T*, const T*> taken(Pairs<T>& pairs) {
        const auto last = pairs.back();
        pairs.pop_back();
        return last;
    }

    // What lists and mappings hold is left to be compared later.
    bool equal_so_far(const ConfigValue& a, const ConfigValue& b) {
        return a.visit([&](const auto& left) {
            return b.visit([&](const auto& right) { return this->equal_held(left, right); });
        });
    }

    template <class T>
    static bool equal_held(const T& a, const T& b) {
        return a == b;
    }
    template <class T, class Other>
    static bool equal_held(const T&, const Other&) {
        return false;
    }
    static bool equal_held(const Integer& a, double b) { return Number(a) == Number(b); }
    static bool equal_held(double a, const Integer& b) { return Number(a) == Number(b); }
    bool equal_held(const List& a, const List& b) { return equal_sizes(a, b, lists_); }
    bool equal_held(const Mapping& a, const Mapping& b) { return equal_sizes(a, b, mappings_); }

    template <class T>
    bool equal_sizes(const T& a, const T& b, Pairs<T>& pairs) {
        if (a.size() != b.size()) return false;
        if (merge(a.identity(), b.identity())) pairs.emplace_back(&a, &b);
        return true;
    }

    bool equal_items(const std::pair<const List*, const List*>& lists) {
        const auto& [a, b] = lists;
        return std::equal(
            a->begin(), a->end(), b->begin(),
            [this](const auto& left, const auto& right) { return equal_so_far(left, right); });
    }

    bool equal_entries(const std::pair<const Mapping*, const Mapping*>& mappings) {
        const auto& [a, b] = mappings;
        const auto has_object_key = [](const Mapping::Entry& entry) {
            return entry.key.get_if<List>() != nullptr || entry.key.get_if<Mapping>() != nullptr;
        };
        const Mapping::Entry* next = b->begin();
        for (const Mapping::Entry& entry : *a) {
            const Mapping::Entry* match = nullptr;
            if (has_object_key(entry)) {
                match = std::find_if(next, b->end(), has_object_key);
                if (match == b->end() || !equal_so_far(entry.key, match->key)) return false;
                next = match + 1;
            } else {
                match = b->find_entry(entry.key);
                if (match == nullptr) return false;
            }
            if (!equal_so_far(entry.value, match->value)) return false;
        }
        return true;
    }

    // Makes one class of the classes of two objects; false when they are in one already.
    bool merge(const void* a, const void* b) {
        const void* left = class_of(a);
        const void* right = class_of(b);
        if (left == right) return false;
        parents_[left] = right;
        return true;
    }

    const void* class_of(const void* object) {
        for (auto found = parents_.find(object); found != parents_.end();
             found = parents_.find(object)) {
            const auto next = parents_.find(found->second);
            if (next == parents_.end()) return found->second;
            object = found->second = next->second;
        }
        return object;
    }

    Pairs<List> lists_;
    Pairs<Mapping> mappings_;
    std::unordered_map<const void*, const void*> parents_;
};

}  // namespace

std::size_t ConfigValue::hash() const {
    return visit(Hasher(hashed_depth));
}

bool operator==(const ConfigValue& a, const ConfigValue& b) {
    return Comparison().equal(a, b);
}

bool operator==(const List& a, const List& b) {
    return ConfigValue(a) == ConfigValue(b);
}

bool operator==(const Mapping& a, const Mapping& b) {
    return ConfigValue(a) == ConfigValue(b);
}

}  // namespace velmora::config
