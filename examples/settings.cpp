#include "settings.hpp"

#include <algorithm>

#include "http.hpp"

namespace app = velmora::app;
using namespace velmora::config;

app::EnumNames<TlsVersion> names_of(TlsVersion) {
    return {{TlsVersion::tls_1_2, "1.2"}, {TlsVersion::tls_1_3, "1.3"}};
}

app::EnumNames<LogLevel> names_of(LogLevel) {
    return {{LogLevel::debug, "debug"},
            {LogLevel::info, "info"},
            {LogLevel::warning, "warning"},
            {LogLevel::error, "error"}};
}

app::EnumNames<CachePolicy> names_of(CachePolicy) {
    return {{CachePolicy::lru, "lru"}, {CachePolicy::lfu, "lfu"}, {CachePolicy::fifo, "fifo"}};
}

namespace {

std::string check_tls(const Config& config) {
    return config.tls.enabled ? "webd serves no HTTPS itself: have a proxy before it do so" : "";
}

std::string check_tags(const Config& config) {
    const auto& tags = config.server.tags;
    const bool fit = std::all_of(tags.begin(), tags.end(), fits_in_header);
    return fit ? "" : "a tag with control characters in it cannot be part of a response";
}

std::string check_cache(const Config& config) {
    const std::size_t least = make_response(200, config.server.tags, "").size();
    if (!config.cache.enabled || config.cache.max_bytes >= least) return "";
    return "no response would be kept, since with these tags each takes " + std::to_string(least) +
           " bytes or more: allow more bytes, or disable the cache";
}

// The table is laid out by hand.
// clang-format off

app::Schema<Config> declared() {
    return {
        app::section(&Config::server, "server",
                     "The HTTP server: where it listens and how it treats connections.",
                     {.restart = Restart::daemon}, {
            app::key(&Server::host, "host", "Address that the server listens on.",
                     {.env = "WEBD_HOST"}),
            app::key(&Server::port, "port", "Port that the server listens on.",
                     {.env = "WEBD_PORT", .bounds = Bound(1, 65535)}),
            app::key(&Server::workers, "workers", "Worker threads.",
                     {.bounds = Bound(1, 256), .restart = Restart::worker}),
            app::key(&Server::keep_alive, "keep_alive",
                     "Seconds that an idle connection is kept open.",
                     {.bounds = NON_NEGATIVE, .restart = Restart::worker}),
            app::key(&Server::tags, "tags", "Tags that every response carries.",
                     {.restart = Restart::worker}),
            app::key(&Server::maintenance, "maintenance", "Answer every request with 503.",
                     {.restart = Restart::none}),
        }),
        app::section(&Config::tls, "tls",
                     "HTTPS. Certificates are read when the daemon starts.",
                     {.restart = Restart::daemon}, {
            app::key(&Tls::enabled, "enabled", "Serve HTTPS.", {.env = "WEBD_TLS"}),
            app::key(&Tls::certificate, "certificate", "File of the certificate chain, PEM."),
            app::key(&Tls::private_key, "private_key", "File of the private key, PEM."),
            app::key(&Tls::minimum_version, "minimum_version",
                     "Oldest protocol version that is accepted."),
            app::key(&Tls::ciphers, "ciphers", "Cipher suites, best first."),
        }),
        app::section(&Config::log, "log", "What is logged, and where to.",
                     {.restart = Restart::none}, {
            app::key(&Log::level, "level", "Least severe messages that are logged.",
                     {.env = "WEBD_LOG_LEVEL"}),
            app::key(&Log::file, "file", "File that is logged to; standard error when empty."),
            app::key(&Log::utc, "utc", "Give times in UTC."),
            app::key(&Log::sample_rate, "sample_rate", "Share of the requests that are logged.",
                     {.env = "WEBD_LOG_SAMPLE_RATE", .bounds = PROBABILITY}),
        }),
        app::section(&Config::cache, "cache", "The cache of responses, one for each worker.",
                     {.restart = Restart::worker}, {
            app::key(&Cache::enabled, "enabled", "Keep responses in memory."),
            app::key(&Cache::max_bytes, "max_bytes", "Memory that responses may take, in bytes.",
                     {.env = "WEBD_CACHE_MAX_BYTES", .bounds = POSITIVE}),
            app::key(&Cache::ttl, "ttl", "Seconds that a response stays fresh.",
                     {.bounds = POSITIVE, .restart = Restart::none}),
            app::key(&Cache::policy, "policy", "Which response goes first when memory runs out."),
            app::key(&Cache::bypass, "bypass", "Paths that are never cached.",
                     {.env = "WEBD_CACHE_BYPASS", .restart = Restart::none}),
        }),
    };
}

// clang-format on

}  // namespace

const app::Schema<Config>& schema() {
    static const app::Schema<Config> schema =
        declared()
            .check({"tls.enabled"}, check_tls)
            .check({"server.tags"}, check_tags)
            .check({"cache.max_bytes", "server.tags"}, check_cache);
    return schema;
}
