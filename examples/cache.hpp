// Responses that are kept for a while.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "http.hpp"
#include "settings.hpp"

/// A point in time that no number of seconds goes beyond.
using Moment = std::chrono::time_point<std::chrono::steady_clock, Seconds>;

/// Responses by the path that they answer. From call to call the settings may differ, and count for
/// what is already kept as well.
class ResponseCache {
public:
    /// A response that is still fresh, or null. It lives until the next call.
    const Response* find(const std::string& path, const Cache& settings, Moment now);

    /// Takes in a response to a path that none is there for, if it may be kept. Where room is short,
    /// those go that the policy says.
    void keep(const std::string& path, Response response, const Cache& settings, Moment now);

private:
    /// The least goes first: by uses where the policy counts them, then by age.
    using Rank = std::pair<std::uint64_t, std::uint64_t>;

    struct Entry {
        Response response;
        Moment made;
        Rank rank;
    };

    using Entries = std::map<std::string, Entry>;

    static std::size_t size_of(const std::string& path, const Response& response) {
        return path.size() + response.size();
    }
    void erase(Entries::iterator entry);

    Entries entries_;
    std::map<Rank, Entries::iterator> leaving_;
    std::uint64_t bytes_ = 0;
    std::uint64_t uses_ = 0;
};
