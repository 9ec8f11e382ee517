#include <iostream>

#include <velmora/app/schema.hpp>

namespace app = velmora::app;

struct Server {
    int port = 80;
};
struct Config {
    Server server;
};

int main() {
    const app::Schema<Config> schema{app::section(&Config::server, "server", "The server.",
                                                  {velmora::config::Restart::none},
                                                  {app::key(&Server::port, "port", "Port to listen on.")})};
    std::cout << schema.load({app::sets({"server.port=8080"})})->server.port << '\n';
}
