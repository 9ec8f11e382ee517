// Compiled once for each kind of row or use that the compiler must refuse, by its line, and for a right one.
#include <map>

#include "velmora/app/schema.hpp"

using namespace velmora;

struct Server {
    int port = 80;
    bool quiet = false;
    std::string host;
    std::map<int, int> odd;
};
struct Config {
    Server server;
};
const app::Schema<Config> schema{app::section(&Config::server, "server", "Doc.", {config::Restart::none}, {
#if defined(RIGHT)
    app::key(&Server::port, "port", "Doc.", {.bounds = config::NON_NEGATIVE}),
#elif defined(MISSPELT_MEMBER)
    app::key(&Server::prot, "port", "Doc."),
#elif defined(UNSUPPORTED_TYPE)
    app::key(&Server::odd, "odd", "Doc."),
#elif defined(SECTION_AS_KEY)
    app::key(&Config::server, "server", "Doc."),
#elif defined(NO_DOC)
    app::key(&Server::port, "port"),
#elif defined(EMPTY_DOC)
    app::key(&Server::port, "port", {}),
#elif defined(OPTION_OF_ANOTHER_TYPE)
    app::key(&Server::quiet, "quiet", "Doc.", {.bounds = config::NON_NEGATIVE}),
#elif defined(MISSPELT_OPTION)
    app::key(&Server::host, "host", "Doc.", {.chocies = {"a"}}),
#endif
})};
#if defined(MEMBERS_OF_A_TEMPORARY)
const Config& config = *schema.load({});
#endif
