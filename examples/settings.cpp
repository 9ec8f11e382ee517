#include "settings.hpp"

using namespace velmora::config;

// The tables are laid out by hand.
// clang-format off

const RecordType& settings() {
    static const RecordType server("Server", {
        {"host", str_type, setting("127.0.0.1", "Address that the server listens on.",
                                   {.env = "WEBD_HOST"})},
        {"port", int_type, setting(8080, "Port that the server listens on.",
                                   {.env = "WEBD_PORT", .bounds = Bound(1, 65535)})},
        {"workers", int_type, setting(4, "Worker processes.", {.bounds = Bound(1, 256)})},
        {"keep_alive", float_type, setting(75.0, "Seconds that an idle connection is kept open.",
                                           {.bounds = NON_NEGATIVE, .restart = Restart::worker})},
        {"tags", list_of(str_type), setting(List{}, "Tags that every response carries.",
                                            {.restart = Restart::worker})},
        {"maintenance", bool_type, setting(false, "Answer every request with 503.",
                                           {.restart = Restart::none})},
    });
    static const RecordType tls("Tls", {
        {"enabled", bool_type, setting(false, "Serve HTTPS.", {.env = "WEBD_TLS"})},
        {"certificate", str_type, setting("/etc/webd/cert.pem",
                                          "File of the certificate chain, PEM.")},
        {"private_key", str_type, setting("/etc/webd/key.pem", "File of the private key, PEM.")},
        {"minimum_version", str_type, setting("1.2", "Oldest protocol version that is accepted.",
                                              {.choices = {"1.2", "1.3"}})},
        {"ciphers", list_of(str_type), setting(List{"TLS_AES_128_GCM_SHA256",
                                                    "TLS_AES_256_GCM_SHA384"},
                                               "Cipher suites, best first.")},
    });
    static const RecordType log("Log", {
        {"level", str_type, setting("info", "Least severe messages that are logged.",
                                    {.env = "WEBD_LOG_LEVEL",
                                     .choices = {"debug", "info", "warning", "error"}})},
        {"file", str_type, setting("", "File that is logged to; standard error when empty.")},
        {"utc", bool_type, setting(true, "Give times in UTC.")},
        {"sample_rate", float_type, setting(1, "Share of the requests that are logged.",
                                            {.env = "WEBD_LOG_SAMPLE_RATE",
                                             .bounds = PROBABILITY})},
    });
    static const RecordType cache("Cache", {
        {"enabled", bool_type, setting(true, "Keep responses in memory.")},
        {"max_bytes", int_type, setting(268435456, "Memory that responses may take, in bytes.",
                                        {.env = "WEBD_CACHE_MAX_BYTES", .bounds = POSITIVE})},
        {"ttl", float_type, setting(300.0, "Seconds that a response stays fresh.",
                                    {.bounds = POSITIVE, .restart = Restart::none})},
        {"policy", str_type, setting("lru", "Which response goes first when memory runs out.",
                                     {.choices = {"lru", "lfu", "fifo"}})},
        {"bypass", list_of(str_type), setting(List{"/health", "/metrics"},
                                              "Paths that are never cached.",
                                              {.env = "WEBD_CACHE_BYPASS",
                                               .restart = Restart::none})},
    });
    static const RecordType config("Config", {
        {"server", server, section(server,
                                   "The HTTP server: where it listens and how it treats "
                                   "connections.",
                                   {.restart = Restart::daemon})},
        {"tls", tls, section(tls,
                             "HTTPS. Certificates are read when the daemon starts, as root; the "
                             "workers never see the private key.",
                             {.restart = Restart::daemon})},
        {"log", log, section(log, "What is logged, and where to.", {.restart = Restart::worker})},
        {"cache", cache, section(cache, "The cache of responses, one for each worker.",
                                 {.restart = Restart::worker})},
    });
    return config;
}
