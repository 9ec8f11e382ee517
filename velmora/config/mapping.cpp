#include "velmora/config/mapping.hpp"

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "velmora/config/value.hpp"
#include "velmora/utils/hash.hpp"
#include "velmora/utils/index.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::config {

using utils::Index;

namespace {

// NaN, which equals nothing, is never found.
bool may_be_found(const ConfigValue& key) noexcept {
    const auto* real = key.get_if<double>();
    return real == nullptr || !std::isnan(*real);
}

}  // namespace

class Mapping::Data : public Entries {
public:
    // The position of the entry whose key `matches`, a predicate that holds only for keys of this
    // hash; `Index::none` when there is none. `hash` is called only when it is needed.
    template <class Hash, class Matches>
    std::size_t find(Hash hash, Matches matches) const {
        const auto matches_at = [&](std::size_t position) {
            return matches(entries[position].key);
        };
        if (entries.size() > searched_one_by_one) return index_.find(hash(), matches_at);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (matches_at(i)) return i;
        }
        return Index::none;
    }

    std::size_t find(const ConfigValue& key) const {
        if (!may_be_found(key)) return Index::none;
        return find([&] { return key.hash(); },
                    [&](const ConfigValue& other) { return other == key; });
    }

    const Entry* entry_at(std::size_t position) const noexcept {
        return position == Index::none ? nullptr : &entries[position];
    }

    void append(ConfigValue key, ConfigValue value) {
        const std::size_t position = entries.size();
        if (position < searched_one_by_one) {
            entries.emplace_back(std::move(key), std::move(value));
            return;
        }
        // Whatever may fail comes first, so that the index has no position without an entry.
        if (!index_.has_room_for(position + 1)) reindex();
        const bool found = may_be_found(key);
        const std::size_t hash = key.hash();
        entries.emplace_back(std::move(key), std::move(value));
        if (found) index_.insert(hash, position);
    }

    void assign(const Data& other) {
        entries = other.entries;
        index_ = other.index_;
    }

private:
    static constexpr std::size_t searched_one_by_one = 8;

    void reindex() {
        Index grown(4 * entries.size());  // A power of two, as that size is: 8, 16, 32 ...
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (may_be_found(entries[i].key)) grown.insert(entries[i].key.hash(), i);
        }
        index_ = std::move(grown);
    }

    detail::Handle* next_handle(std::size_t& position) noexcept override {
        while (position < 2 * entries.size()) {
            Entry& entry = entries[position / 2];
            ConfigValue& part = position++ % 2 == 0 ? entry.key : entry.value;
            if (detail::Handle* handle = part.handle()) return handle;
        }
        return nullptr;
    }

    Index index_;  // Once there are too many entries to be searched one by one.
};

Mapping::Mapping() : handle_(new Data) {}

Mapping::Mapping(std::initializer_list<Entry> entries) : Mapping() {
    for (const Entry& entry : entries) set(entry.key, entry.value);
}

Mapping::Data& Mapping::data() const noexcept {
    return static_cast<Data&>(*handle_.get());
}

const Mapping::Entry* Mapping::find_entry(std::string_view key) const {
    const Data& all = data();
    return all.entry_at(all.find([&] { return utils::hash_text(key); },
                                 [&](const ConfigValue& other) {
                                     const auto* text = other.get_if<std::string>();
                                     return text != nullptr && utils::same_name(*text, key);
                                 }));
}

const Mapping::Entry* Mapping::find_entry(const char* key) const {
    return key != nullptr ? find_entry(std::string_view(key)) : find_any(nullptr);
}

const Mapping::Entry* Mapping::find_any(const ConfigValue& key) const {
    return data().entry_at(data().find(key));
}

void Mapping::set(ConfigValue key, ConfigValue value) {
    Data& all = data();
    detail::Adding adding_value(all, value.handle());
    const std::size_t position = all.find(key);
    if (position != Index::none) {
        ConfigValue& place = all.entries[position].value;
        std::swap(place, value);
        adding_value.finish(place.handle());
        return;
    }
    detail::Adding adding_key(all, key.handle());
    all.append(std::move(key), std::move(value));
    Entry& entry = all.entries.back();
    adding_key.finish(entry.key.handle());
    adding_value.finish(entry.value.handle());
}

Mapping Mapping::copy() const {
    Mapping result;
    result.data().assign(data());
    return result;
}

}  // namespace velmora::config
