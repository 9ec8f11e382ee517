// A thread that answers requests, one for all of its connections.
#pragma once

#include <cstdint>
#include <list>
#include <string>

#include <velmora/app/live.hpp>

#include "cache.hpp"
#include "descriptor.hpp"
#include "settings.hpp"

class Worker {
public:
    /// Answers each request by what is then in effect. Takes its connections from `listener`, which
    /// others may take theirs from, too.
    Worker(const velmora::app::Live<Config>& live, const Descriptor& listener, unsigned number)
        : live_(live), listener_(listener), number_(number) {}

    /// Answers until the other end of the pipe `life` is closed, and then those who are connected and
    /// await an answer or have had none. Throws std::system_error when the system is out of means.
    void run(const Descriptor& life);

private:
    struct Connection {
        Descriptor socket;
        /// When it is closed unless something happens on it.
        Moment deadline;
        std::string in = {};
        std::string out = {};
        /// Whether it ends with what is in `out`.
        bool ending = false;
        /// Whether all that came in is answered.
        bool idle = false;
        /// How long it is kept open after that.
        Seconds keep_alive = {};
    };

    void accept_connections(Moment now);
    /// Reads or writes what there is to; false when the connection has come to its end.
    bool exchange(Connection& connection, Moment now);
    /// Answers what has come in.
    bool answer(Connection& connection, Moment now);
    std::string answer_to(const Request& request, const Config& config, Moment now);
    void log_answer(const Request& request, int status, double sample_rate);

    const velmora::app::Live<Config>& live_;
    const Descriptor& listener_;
    /// Which of the workers it is.
    unsigned number_;
    /// Whether it takes no more connections and closes those that it has.
    bool ending_ = false;
    ResponseCache cache_;
    std::list<Connection> connections_;
    std::uint64_t made_ = 0;
    /// How much of a request to log has come together; one is logged at 1.
    double share_ = 0;
};
