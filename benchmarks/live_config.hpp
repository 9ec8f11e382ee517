// The configuration that is read while it is reloaded.
#pragma once

#include "velmora/app/live.hpp"

namespace bench {

struct Server {
    int port = 8080;
};
struct Config {
    Server server;
};

inline const velmora::app::Schema<Config>& schema() {
    namespace app = velmora::app;
    static const app::Schema<Config> schema{
        app::section(&Config::server, "server", "Server.",
                     {.restart = velmora::config::Restart::none},
                     {app::key(&Server::port, "port", "Port.")}),
    };
    return schema;
}

}  // namespace bench
