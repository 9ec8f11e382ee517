#include "cache.hpp"

#include <velmora/utils/texts.hpp>

const Response* ResponseCache::find(const std::string& path, Moment now) {
    const auto found = entries_.find(path);
    if (found == entries_.end()) return nullptr;
    Entry& entry = found->second;
    if (now >= entry.stale) {
        erase(found);
        return nullptr;
    }
    if (settings_.policy != CachePolicy::fifo) {
        leaving_.erase(entry.rank);
        if (settings_.policy == CachePolicy::lfu) ++entry.rank.first;
        entry.rank.second = ++uses_;
        leaving_.emplace(entry.rank, found);
    }
    return &entry.response;
}

void ResponseCache::keep(const std::string& path, Response response, Moment now) {
    const std::uint64_t size = size_of(path, response);
    if (!settings_.enabled || size > settings_.max_bytes ||
        velmora::utils::is_one_of(path, settings_.bypass))
        return;
    while (bytes_ + size > settings_.max_bytes) erase(leaving_.begin()->second);
    const Rank rank = {0, ++uses_};
    Entry entry = {std::move(response), now + settings_.ttl, rank};
    leaving_.emplace(rank, entries_.try_emplace(path, std::move(entry)).first);
    bytes_ += size;
}

void ResponseCache::erase(Entries::iterator entry) {
    bytes_ -= size_of(entry->first, entry->second.response);
    leaving_.erase(entry->second.rank);
    entries_.erase(entry);
}
