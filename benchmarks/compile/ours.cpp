// Thirty keys as the members of structs.
#include "velmora/app/schema.hpp"
#include "velmora/config/spec.hpp"

namespace app = velmora::app;
using namespace velmora::config;

struct Server {
    bool key_0 = false;
    std::uint16_t key_1 = 8080;
    double key_2 = 1.5;
    std::string key_3 = "a text";
    std::vector<std::string> key_4 = {"a", "b"};
    std::int64_t key_5 = 7;
    bool key_6 = false;
    std::uint16_t key_7 = 8080;
    double key_8 = 1.5;
    std::string key_9 = "a text";
};
struct Tls {
    bool key_0 = false;
    std::uint16_t key_1 = 8080;
    double key_2 = 1.5;
    std::string key_3 = "a text";
    std::vector<std::string> key_4 = {"a", "b"};
    std::int64_t key_5 = 7;
    bool key_6 = false;
    std::uint16_t key_7 = 8080;
    double key_8 = 1.5;
    std::string key_9 = "a text";
};
struct Log {
    bool key_0 = false;
    std::uint16_t key_1 = 8080;
    double key_2 = 1.5;
    std::string key_3 = "a text";
    std::vector<std::string> key_4 = {"a", "b"};
    std::int64_t key_5 = 7;
    bool key_6 = false;
    std::uint16_t key_7 = 8080;
    double key_8 = 1.5;
    std::string key_9 = "a text";
};
struct Config {
    Server server;
    Tls tls;
    Log log;
};

const app::Schema<Config>& settings() {
    static const app::Schema<Config> schema{
        app::section(
            &Config::server, "server", "What server is for.", {.restart = Restart::worker},
            {
                app::key(&Server::key_0, "key_0", "What the key is for."),
                app::key(&Server::key_1, "key_1", "What the key is for.",
                         {.bounds = Bound(1, 65535)}),
                app::key(&Server::key_2, "key_2", "What the key is for.", {.bounds = POSITIVE}),
                app::key(&Server::key_3, "key_3", "What the key is for.",
                         {.env = "VARIABLE_SERVER_3"}),
                app::key(&Server::key_4, "key_4", "What the key is for."),
                app::key(&Server::key_5, "key_5", "What the key is for.",
                         {.restart = Restart::daemon}),
                app::key(&Server::key_6, "key_6", "What the key is for."),
                app::key(&Server::key_7, "key_7", "What the key is for.",
                         {.bounds = Bound(1, 65535)}),
                app::key(&Server::key_8, "key_8", "What the key is for.", {.bounds = POSITIVE}),
                app::key(&Server::key_9, "key_9", "What the key is for.",
                         {.env = "VARIABLE_SERVER_9"}),
            }),
        app::section(
            &Config::tls, "tls", "What tls is for.", {.restart = Restart::worker},
            {
                app::key(&Tls::key_0, "key_0", "What the key is for."),
                app::key(&Tls::key_1, "key_1", "What the key is for.", {.bounds = Bound(1, 65535)}),
                app::key(&Tls::key_2, "key_2", "What the key is for.", {.bounds = POSITIVE}),
                app::key(&Tls::key_3, "key_3", "What the key is for.", {.env = "VARIABLE_TLS_3"}),
                app::key(&Tls::key_4, "key_4", "What the key is for."),
                app::key(&Tls::key_5, "key_5", "What the key is for.",
                         {.restart = Restart::daemon}),
                app::key(&Tls::key_6, "key_6", "What the key is for."),
                app::key(&Tls::key_7, "key_7", "What the key is for.", {.bounds = Bound(1, 65535)}),
                app::key(&Tls::key_8, "key_8", "What the key is for.", {.bounds = POSITIVE}),
                app::key(&Tls::key_9, "key_9", "What the key is for.", {.env = "VARIABLE_TLS_9"}),
            }),
        app::section(
            &Config::log, "log", "What log is for.", {.restart = Restart::worker},
            {
                app::key(&Log::key_0, "key_0", "What the key is for."),
                app::key(&Log::key_1, "key_1", "What the key is for.", {.bounds = Bound(1, 65535)}),
                app::key(&Log::key_2, "key_2", "What the key is for.", {.bounds = POSITIVE}),
                app::key(&Log::key_3, "key_3", "What the key is for.", {.env = "VARIABLE_LOG_3"}),
                app::key(&Log::key_4, "key_4", "What the key is for."),
                app::key(&Log::key_5, "key_5", "What the key is for.",
                         {.restart = Restart::daemon}),
                app::key(&Log::key_6, "key_6", "What the key is for."),
                app::key(&Log::key_7, "key_7", "What the key is for.", {.bounds = Bound(1, 65535)}),
                app::key(&Log::key_8, "key_8", "What the key is for.", {.bounds = POSITIVE}),
                app::key(&Log::key_9, "key_9", "What the key is for.", {.env = "VARIABLE_LOG_9"}),
            }),
    };
    return schema;
}
