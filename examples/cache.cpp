#include "cache.hpp"

#include <velmora/utils/texts.hpp>

namespace {

bool may_keep(const std::string& path, const Cache& settings) {
    return settings.enabled && !velmora::utils::is_one_of(path, settings.bypass);
}

}  // namespace

const Response* ResponseCache::find(const std::string& path, const Cache& settings, Moment now) {
    const auto found = entries_.find(path);
    if (found == entries_.end()) return nullptr;
    Entry& entry = found->second;
    if (now >= entry.made + settings.ttl || !may_keep(path, settings)) {
        erase(found);
        return nullptr;
    }
    if (settings.policy != CachePolicy::fifo) {
        leaving_.erase(entry.rank);
        if (settings.policy == CachePolicy::lfu) ++entry.rank.first;
        entry.rank.second = ++uses_;
        leaving_.emplace(entry.rank, found);
    }
    return &entry.response;
}

void ResponseCache::keep(const std::string& path, Response response, const Cache& settings,
                         Moment now) {
    const std::uint64_t size = size_of(path, response);
    if (!may_keep(path, settings) || size > settings.max_bytes) return;
    while (bytes_ + size > settings.max_bytes) erase(leaving_.begin()->second);
    const Rank rank = {0, ++uses_};
    Entry entry = {std::move(response), now, rank};
    leaving_.emplace(rank, entries_.try_emplace(path, std::move(entry)).first);
    bytes_ += size;
}

void ResponseCache::erase(Entries::iterator entry) {
    bytes_ -= size_of(entry->first, entry->second.response);
    leaving_.erase(entry->second.rank);
    entries_.erase(entry);
}
