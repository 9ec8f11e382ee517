#include "velmora/config/value.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <unordered_map>

#include "velmora/utils/errors.hpp"
#include "velmora/utils/hash.hpp"

namespace velmora::config {

// --- What handles share ---

class List::Data : public Shared {
public:
    std::vector<ConfigValue> items;

private:
    void append_children(std::vector<Shared*>& children) const override {
        for (const ConfigValue& item : items) {
            if (Shared* child = item.shared()) children.push_back(child);
        }
    }
    void clear() noexcept override { items.clear(); }
};

class Mapping::Data : public Shared {
public:
    std::vector<Entry> entries;

    // The entry whose key `matches`, a predicate that holds only for keys of this hash; null when
    // there is none. `hash` is called only when it is needed.
    template <class Hash, class Matches>
    Entry* find(Hash hash, Matches matches) {
        if (entries.size() <= searched_one_by_one) {
            const auto found = std::find_if(entries.begin(), entries.end(),
                                            [&](const Entry& entry) { return matches(entry.key); });
            return found == entries.end() ? nullptr : &*found;
        }
        const auto [first, last] = by_hash_.equal_range(hash());
        const auto found = std::find_if(
            first, last, [&](const auto& item) { return matches(entries[item.second].key); });
        return found == last ? nullptr : &entries[found->second];
    }

    Entry* find(const ConfigValue& key) {
        return find([&] { return key.hash(); },
                    [&](const ConfigValue& other) { return other == key; });
    }

    void append(ConfigValue key, ConfigValue value) {
        entries.emplace_back(std::move(key), std::move(value));
        try {
            index();
        } catch (...) {
            entries.pop_back();
            throw;
        }
    }

    // Makes the entries found that were put into `entries` directly.
    void index() {
        if (entries.size() <= searched_one_by_one) return;
        for (std::size_t i = by_hash_.size(); i < entries.size(); ++i) {
            by_hash_.emplace(entries[i].key.hash(), i);
        }
    }

private:
    static constexpr std::size_t searched_one_by_one = 8;

    void append_children(std::vector<Shared*>& children) const override {
        for (const auto& [key, value] : entries) {
            if (Shared* child = key.shared()) children.push_back(child);
            if (Shared* child = value.shared()) children.push_back(child);
        }
    }
    void clear() noexcept override { entries.clear(); }

    // Positions of the entries, once there are too many to be searched one by one.
    std::unordered_multimap<std::size_t, std::size_t> by_hash_;
};

// --- List ---

List::List() : handle_(new Data) {}

List::List(FromItems /*tag*/, std::vector<ConfigValue> items) : List() {
    data().items = std::move(items);
}

List::Data& List::data() const noexcept {
    return static_cast<Data&>(*handle_.get());
}

std::size_t List::size() const noexcept {
    return data().items.size();
}

const ConfigValue* List::begin() const noexcept {
    return data().items.data();
}

const ConfigValue* List::end() const noexcept {
    return begin() + size();
}

const ConfigValue& List::operator[](std::size_t index) const noexcept {
    return data().items[index];
}

void List::push_back(ConfigValue item) {
    if (Shared* child = item.shared()) data().before_adding(*child);
    data().items.push_back(std::move(item));
}

void List::set(std::size_t index, ConfigValue item) {
    if (Shared* child = item.shared()) data().before_adding(*child);
    std::swap(data().items[index], item);
}

List List::copy() const {
    return List(data().items);
}

bool operator==(const List& a, const List& b) {
    return ConfigValue(a) == ConfigValue(b);
}

// --- Mapping ---

Mapping::Mapping() : handle_(new Data) {}

Mapping::Mapping(std::initializer_list<Entry> entries) : Mapping() {
    for (const Entry& entry : entries) set(entry.key, entry.value);
}

Mapping::Data& Mapping::data() const noexcept {
    return static_cast<Data&>(*handle_.get());
}

std::size_t Mapping::size() const noexcept {
    return data().entries.size();
}

const Mapping::Entry* Mapping::begin() const noexcept {
    return data().entries.data();
}

const Mapping::Entry* Mapping::end() const noexcept {
    return begin() + size();
}

const ConfigValue* Mapping::find(std::string_view key) const {
    const Entry* entry = find_entry(key, 0);
    return entry != nullptr ? &entry->value : nullptr;
}

const Mapping::Entry* Mapping::find_entry(std::string_view key, std::size_t expected) const {
    const auto matches = [key](const ConfigValue& candidate) {
        const auto* text = candidate.get_if<std::string>();
        return text != nullptr && *text == key;
    };
    Data& all = data();
    if (expected < all.entries.size() && matches(all.entries[expected].key))
        return &all.entries[expected];
    return all.find([key] { return std::hash<std::string_view>{}(key); }, matches);
}

const ConfigValue* Mapping::find_value(const ConfigValue& key) const {
    const Entry* entry = data().find(key);
    return entry != nullptr ? &entry->value : nullptr;
}

void Mapping::set(ConfigValue key, ConfigValue value) {
    Data& all = data();
    if (Shared* child = value.shared()) all.before_adding(*child);
    if (Entry* entry = all.find(key)) {
        std::swap(entry->value, value);
        return;
    }
    if (Shared* child = key.shared()) all.before_adding(*child);
    all.append(std::move(key), std::move(value));
}

Mapping Mapping::copy() const {
    Mapping result;
    for (const auto& [key, value] : *this) result.data().append(key, value);
    return result;
}

bool operator==(const Mapping& a, const Mapping& b) {
    return ConfigValue(a) == ConfigValue(b);
}

// --- ConfigValue ---

ConfigValue::ConfigValue(ConfigValue&& other) noexcept : value_(std::move(other.value_)) {
    other.value_.emplace<std::monostate>();
}

ConfigValue& ConfigValue::operator=(ConfigValue&& other) noexcept {
    value_ = std::exchange(other.value_, std::monostate{});
    return *this;
}

ConfigValue::ConfigValue(const Number& number) {
    if (const Integer* integer = number.if_integer()) {
        value_ = *integer;
    } else {
        value_ = *number.if_double();
    }
}

ConfigValue::ConfigValue(const char* text) {
    if (text != nullptr) value_ = std::string(text);
}

std::string_view ConfigValue::kind_text() const noexcept {
    constexpr std::array<std::string_view, std::variant_size_v<decltype(value_)>> kinds = {
        "null", "a flag", "an integer", "a float", "a text", "a list", "a mapping"};
    return kinds[value_.index()];
}

Shared* ConfigValue::shared() const noexcept {
    if (const auto* list = get_if<List>()) return list->handle_.get();
    if (const auto* mapping = get_if<Mapping>()) return mapping->handle_.get();
    return nullptr;
}

void detail::throw_unwanted(std::string_view wanted, const ConfigValue& got) {
    throw TypeError(
        std::string("expected ").append(wanted).append(", got ").append(got.kind_text()));
}

ConfigValue ConfigValue::deep_copy() const {
    std::unordered_map<const Shared*, ConfigValue> copies;
    std::vector<const ConfigValue*> unfilled;
    const auto copy_of = [&](const ConfigValue& value) {
        const Shared* original = value.shared();
        if (original == nullptr) return value;
        const auto [entry, fresh] = copies.try_emplace(original);
        if (fresh) {
            entry->second = value.get_if<List>() ? ConfigValue(List()) : ConfigValue(Mapping());
            unfilled.push_back(&value);
        }
        return entry->second;
    };
    ConfigValue result = copy_of(*this);
    while (!unfilled.empty()) {
        const ConfigValue& original = *unfilled.back();
        unfilled.pop_back();
        const ConfigValue& copy = copies.at(original.shared());
        if (const auto* list = original.get_if<List>()) {
            std::vector<ConfigValue>& items = copy.get_if<List>()->data().items;
            items.reserve(list->size());
            for (const ConfigValue& item : *list) items.push_back(copy_of(item));
        } else {
            std::vector<Mapping::Entry>& entries = copy.get_if<Mapping>()->data().entries;
            for (const auto& [key, value] : *original.get_if<Mapping>()) {
                entries.emplace_back(copy_of(key), copy_of(value));
            }
        }
    }
    // Only now that all keys are whole do they have their hashes.
    for (const auto& [original, copy] : copies) {
        if (const auto* mapping = copy.get_if<Mapping>()) mapping->data().index();
    }
    // Only once the handles of `copies` are gone: letting go of one of an object in a cycle is
    // costly.
    std::vector<std::pair<const Shared*, Shared*>> copied;
    copied.reserve(copies.size());
    for (const auto& [original, copy] : copies) copied.emplace_back(original, copy.shared());
    copies.clear();
    for (const auto& [original, copy] : copied) copy->share_cycles_of(*original);
    return result;
}

namespace {

// Lists and mappings are hashed down to this depth, and only so many items from both ends of each
// list, so that every hash is cheap and ends.
constexpr int hashed_depth = 3;
constexpr std::size_t hashed_items = 4;

std::size_t hash_to_depth(const ConfigValue& value, int depth);

std::size_t hash_items(const List& list, int depth) {
    std::size_t seed = list.size();
    const auto mix = [&](std::size_t i) {
        seed = utils::hash_mix(seed, hash_to_depth(list[i], depth));
    };
    const std::size_t front = std::min(list.size(), hashed_items);
    for (std::size_t i = 0; i < front; ++i) mix(i);
    for (std::size_t i = std::max(front, list.size() - front); i < list.size(); ++i) mix(i);
    return seed;
}

// A sum, because the order of the entries does not count.
std::size_t hash_entries(const Mapping& mapping, int depth) {
    std::size_t sum = mapping.size();
    if (mapping.size() > 2 * hashed_items) return sum;
    for (const auto& [key, value] : mapping) {
        sum += utils::hash_mix(hash_to_depth(key, depth), hash_to_depth(value, depth));
    }
    return sum;
}

std::size_t hash_to_depth(const ConfigValue& value, int depth) {
    if (const auto* text = value.get_if<std::string>()) return std::hash<std::string_view>{}(*text);
    if (const auto number = value.as<Number>()) return number->hash();
    if (const auto* flag = value.get_if<bool>()) return utils::hash_fields(*flag);
    if (depth == 0) return 0;
    if (const auto* list = value.get_if<List>()) return hash_items(*list, depth - 1);
    if (const auto* mapping = value.get_if<Mapping>()) return hash_entries(*mapping, depth - 1);
    return 0;
}

bool equal_scalars(const ConfigValue& a, const ConfigValue& b) {
    if (const auto* text = a.get_if<std::string>()) {
        const auto* other = b.get_if<std::string>();
        return other != nullptr && *text == *other;
    }
    if (const auto* flag = a.get_if<bool>()) {
        const auto* other = b.get_if<bool>();
        return other != nullptr && *flag == *other;
    }
    if (const auto number = a.as<Number>()) {
        const auto other = b.as<Number>();
        return other && *number == *other;
    }
    return a.is_null() && b.is_null();
}

}  // namespace

std::size_t ConfigValue::hash() const {
    return hash_to_depth(*this, hashed_depth);
}

// Compares pair by pair, taking every pair of lists or mappings that is met for equal until a
// difference shows: the classes of such objects are kept as in Hopcroft and Karp, "A Linear
// Algorithm for Testing Equivalence of Finite Automata" (1971), so that no more pairs are opened
// than there are objects.
class ConfigValue::Comparison {
public:
    bool equal(const ConfigValue& a, const ConfigValue& b) {
        add(a, b);
        while (!pending_.empty()) {
            const auto [left, right] = pending_.back();
            pending_.pop_back();
            if (!equal_so_far(*left, *right)) return false;
        }
        return true;
    }

private:
    void add(const ConfigValue& a, const ConfigValue& b) { pending_.emplace_back(&a, &b); }

    bool equal_so_far(const ConfigValue& a, const ConfigValue& b) {
        if (a.shared() == nullptr || b.shared() == nullptr) return equal_scalars(a, b);
        if (!merge(a.shared(), b.shared())) return true;
        const auto* lists = a.get_if<List>();
        const auto* other_lists = b.get_if<List>();
        if (lists != nullptr && other_lists != nullptr) return open(*lists, *other_lists);
        if (lists != nullptr || other_lists != nullptr) return false;
        return open(*a.get_if<Mapping>(), *b.get_if<Mapping>());
    }

    bool open(const List& a, const List& b) {
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i) add(a[i], b[i]);
        return true;
    }

    bool open(const Mapping& a, const Mapping& b) {
        if (a.size() != b.size()) return false;
        const Mapping::Entry* other = b.begin();
        for (const auto& [key, value] : a) {
            if (key.shared() == nullptr) {
                const ConfigValue* match = b.find(key);
                if (match == nullptr) return false;
                add(value, *match);
                continue;
            }
            other = std::find_if(other, b.end(), [](const Mapping::Entry& entry) {
                return entry.key.shared() != nullptr;
            });
            if (other == b.end()) return false;
            add(key, other->key);
            add(value, other->value);
            ++other;
        }
        return true;
    }

    // Makes one class of the classes of two objects; false when they are in one already.
    bool merge(const Shared* a, const Shared* b) {
        const Shared* left = class_of(a);
        const Shared* right = class_of(b);
        if (left == right) return false;
        parents_[left] = right;
        return true;
    }

    const Shared* class_of(const Shared* object) {
        for (auto found = parents_.find(object); found != parents_.end();
             found = parents_.find(object)) {
            const auto next = parents_.find(found->second);
            if (next == parents_.end()) return found->second;
            object = found->second = next->second;
        }
        return object;
    }

    std::vector<std::pair<const ConfigValue*, const ConfigValue*>> pending_;
    std::unordered_map<const Shared*, const Shared*> parents_;
};

bool operator==(const ConfigValue& a, const ConfigValue& b) {
    if (a.shared() == nullptr || b.shared() == nullptr) return equal_scalars(a, b);
    return ConfigValue::Comparison().equal(a, b);
}

}  // namespace velmora::config
