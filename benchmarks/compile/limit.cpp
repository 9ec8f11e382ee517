// What benchmarks/compile/ours.cpp declares, as record types.
#include "velmora/config/spec.hpp"

using namespace velmora::config;

const RecordType& settings() {
    static const RecordType server(
        "Server",
        {
            {"key_0", bool_type, setting(false, "What the key is for.")},
            {"key_1", int_type, setting(8080, "What the key is for.", {.bounds = Bound(1, 65535)})},
            {"key_2", float_type, setting(1.5, "What the key is for.", {.bounds = POSITIVE})},
            {"key_3", str_type,
             setting("a text", "What the key is for.", {.env = "VARIABLE_SERVER_3"})},
            {"key_4", list_of(str_type), setting(List{"a", "b"}, "What the key is for.")},
            {"key_5", int_type, setting(7, "What the key is for.", {.restart = Restart::daemon})},
            {"key_6", bool_type, setting(false, "What the key is for.")},
            {"key_7", int_type, setting(8080, "What the key is for.", {.bounds = Bound(1, 65535)})},
            {"key_8", float_type, setting(1.5, "What the key is for.", {.bounds = POSITIVE})},
            {"key_9", str_type,
             setting("a text", "What the key is for.", {.env = "VARIABLE_SERVER_9"})},
        });
    static const RecordType tls(
        "Tls",
        {
            {"key_0", bool_type, setting(false, "What the key is for.")},
            {"key_1", int_type, setting(8080, "What the key is for.", {.bounds = Bound(1, 65535)})},
            {"key_2", float_type, setting(1.5, "What the key is for.", {.bounds = POSITIVE})},
            {"key_3", str_type,
             setting("a text", "What the key is for.", {.env = "VARIABLE_TLS_3"})},
            {"key_4", list_of(str_type), setting(List{"a", "b"}, "What the key is for.")},
            {"key_5", int_type, setting(7, "What the key is for.", {.restart = Restart::daemon})},
            {"key_6", bool_type, setting(false, "What the key is for.")},
            {"key_7", int_type, setting(8080, "What the key is for.", {.bounds = Bound(1, 65535)})},
            {"key_8", float_type, setting(1.5, "What the key is for.", {.bounds = POSITIVE})},
            {"key_9", str_type,
             setting("a text", "What the key is for.", {.env = "VARIABLE_TLS_9"})},
        });
    static const RecordType log(
        "Log",
        {
            {"key_0", bool_type, setting(false, "What the key is for.")},
            {"key_1", int_type, setting(8080, "What the key is for.", {.bounds = Bound(1, 65535)})},
            {"key_2", float_type, setting(1.5, "What the key is for.", {.bounds = POSITIVE})},
            {"key_3", str_type,
             setting("a text", "What the key is for.", {.env = "VARIABLE_LOG_3"})},
            {"key_4", list_of(str_type), setting(List{"a", "b"}, "What the key is for.")},
            {"key_5", int_type, setting(7, "What the key is for.", {.restart = Restart::daemon})},
            {"key_6", bool_type, setting(false, "What the key is for.")},
            {"key_7", int_type, setting(8080, "What the key is for.", {.bounds = Bound(1, 65535)})},
            {"key_8", float_type, setting(1.5, "What the key is for.", {.bounds = POSITIVE})},
            {"key_9", str_type,
             setting("a text", "What the key is for.", {.env = "VARIABLE_LOG_9"})},
        });
    static const RecordType config(
        "Config", {
                      {"server", server,
                       section(server, "What server is for.", {.restart = Restart::worker})},
                      {"tls", tls, section(tls, "What tls is for.", {.restart = Restart::worker})},
                      {"log", log, section(log, "What log is for.", {.restart = Restart::worker})},
                  });
    return config;
}
