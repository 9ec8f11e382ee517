// One section of 20 keys and its reader by hand, over whatever tree the values come in.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "value.hpp"

namespace bench {

struct Service {
    std::string host = "127.0.0.1";
    std::int64_t port = 8080;
    std::int64_t workers = 4;
    std::int64_t backlog = 511;
    std::int64_t max_connections = 10'000;
    std::int64_t max_body_bytes = 1'048'576;
    std::int64_t max_header_bytes = 8192;
    std::int64_t retries = 3;
    std::int64_t queue_length = 1024;
    double keep_alive = 75.5;
    double read_timeout = 30.25;
    double write_timeout = 30.25;
    double sample_rate = 0.125;
    std::string certificate = "/etc/service/certificate.pem";
    std::string policy = "lru";
    std::string log_level = "warning";
    bool http2 = true;
    bool maintenance = false;
    Texts tags = {"production", "web", "blue"};
    Texts trusted_proxies = {"127.0.0.1", "10.0.0.0/8", "fd00::/8"};

    friend bool operator==(const Service& a, const Service& b) = default;
};

inline const Service default_service;

/// A value for every key, none of them its default, in declared order.
Tree service_tree();
/// The same among 40 others, shuffled.
Tree shuffled_tree();
/// The same, every value a text.
Tree text_tree();
/// What each of these reads as.
const Service& given_service();

/// Reads values from a `Source`, which finds a value by its name and reads it as a type, and gives
/// something false for a name or a reading that is not there.
template <class Source>
class Reader {
public:
    explicit Reader(Source& source) : source_(source) {}

    std::int64_t integer(std::string_view name, std::int64_t low, std::int64_t high,
                         std::int64_t fallback) {
        const auto value = source_.find(name);
        if (!value) return fallback;
        const std::optional<std::int64_t> read = source_.integer(*value);
        return read && low <= *read && *read <= high ? *read : refused(name, fallback);
    }
    double real(std::string_view name, double low, double high, double fallback) {
        const auto value = source_.find(name);
        if (!value) return fallback;
        const std::optional<double> read = source_.real(*value);
        return read && low <= *read && *read <= high ? *read : refused(name, fallback);
    }
    bool flag(std::string_view name, bool fallback) {
        const auto value = source_.find(name);
        if (!value) return fallback;
        const std::optional<bool> read = source_.flag(*value);
        return read ? *read : refused(name, fallback);
    }
    std::string text(std::string_view name, const std::string& fallback,
                     std::initializer_list<std::string_view> choices = {}) {
        const auto value = source_.find(name);
        if (!value) return fallback;
        const std::optional<std::string_view> read = source_.text(*value);
        const bool taken = read && (choices.size() == 0 || std::find(choices.begin(), choices.end(),
                                                                     *read) != choices.end());
        if (!taken) return refused(name, fallback);
        return std::string(*read);
    }
    Texts list(std::string_view name, const Texts& fallback) {
        const auto value = source_.find(name);
        if (!value) return fallback;
        std::optional<Texts> read = source_.list(*value);
        if (!read) return refused(name, fallback);
        return *std::move(read);
    }

private:
    template <class T>
    [[gnu::cold]] static const T& refused(std::string_view name, const T& fallback) {
        std::cerr << "Ignoring service." << name << "; keeping the default\n";
        return fallback;
    }

    Source& source_;
};

template <class Source>
Service read_service(Source source) {
    Reader<Source> read(source);
    const Service& otherwise = default_service;
    return {
        .host = read.text("host", otherwise.host),
        .port = read.integer("port", 1, 65535, otherwise.port),
        .workers = read.integer("workers", 1, 256, otherwise.workers),
        .backlog = read.integer("backlog", 1, 65535, otherwise.backlog),
        .max_connections = read.integer("max_connections", 1, 1'000'000, otherwise.max_connections),
        .max_body_bytes =
            read.integer("max_body_bytes", 0, std::int64_t{1} << 40U, otherwise.max_body_bytes),
        .max_header_bytes =
            read.integer("max_header_bytes", 256, 1'048'576, otherwise.max_header_bytes),
        .retries = read.integer("retries", 0, 100, otherwise.retries),
        .queue_length = read.integer("queue_length", 1, 100'000, otherwise.queue_length),
        .keep_alive = read.real("keep_alive", 0, 3600, otherwise.keep_alive),
        .read_timeout = read.real("read_timeout", 0, 3600, otherwise.read_timeout),
        .write_timeout = read.real("write_timeout", 0, 3600, otherwise.write_timeout),
        .sample_rate = read.real("sample_rate", 0, 1, otherwise.sample_rate),
        .certificate = read.text("certificate", otherwise.certificate),
        .policy = read.text("policy", otherwise.policy, {"lru", "lfu", "fifo"}),
        .log_level =
            read.text("log_level", otherwise.log_level, {"debug", "info", "warning", "error"}),
        .http2 = read.flag("http2", otherwise.http2),
        .maintenance = read.flag("maintenance", otherwise.maintenance),
        .tags = read.list("tags", otherwise.tags),
        .trusted_proxies = read.list("trusted_proxies", otherwise.trusted_proxies),
    };
}

}  // namespace bench
