// A thread that answers requests, one for all of its connections.
#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "cache.hpp"
#include "descriptor.hpp"
#include "settings.hpp"

class Worker {
public:
    /// Takes its connections from `listener`, which others may take theirs from, too.
    Worker(const Config& config, const Descriptor& listener, unsigned number)
        : config_(config), listener_(listener), number_(number), cache_(config.cache) {}

    /// Answers until the other end of the pipe `life` is closed. Throws std::system_error when the
    /// system is out of means.
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
    };

    void accept_connections(Moment now);
    /// Reads or writes what there is to; false when the connection has come to its end.
    bool exchange(Connection& connection, Moment now);
    /// Answers what has come in.
    bool answer(Connection& connection, Moment now);
    std::string answer_to(const Request& request, Moment now);
    void log_answer(const Request& request, int status);

    const Config& config_;
    const Descriptor& listener_;
    /// Which of the workers it is.
    unsigned number_;
    ResponseCache cache_;
    std::list<Connection> connections_;
    std::uint64_t made_ = 0;
    /// How much of a request to log has come together; one is logged at 1.
    double share_ = 0;
};
