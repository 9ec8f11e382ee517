#include "server.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <future>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>
#include <velmora/utils/errors.hpp>
#include <velmora/utils/logging.hpp>

#include "descriptor.hpp"
#include "logging.hpp"
#include "worker.hpp"

namespace app = velmora::app;
using velmora::config::Restart;
using velmora::utils::Level;

namespace {

velmora::utils::Logger& log() {
    return velmora::utils::logger("webd");
}

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Blocks the signals that are for the daemon, in later threads as well, for `::sigwait` to take.
sigset_t signals_held() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int each : {SIGTERM, SIGINT, SIGHUP}) ::sigaddset(&signals, each);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

Descriptor listening(const Server& settings) {
    const std::string port = std::to_string(settings.port);
    const std::string place = settings.host + " port " + port;
    addrinfo hints = {};
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (const int error = ::getaddrinfo(settings.host.c_str(), port.c_str(), &hints, &found))
        throw std::runtime_error(place + ": " + ::gai_strerror(error));
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> address(found, ::freeaddrinfo);
    Descriptor socket(::socket(address->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const int on = 1;
    if (!socket.is_open() ||
        ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == -1 ||
        ::bind(socket.get(), address->ai_addr, address->ai_addrlen) == -1 ||
        ::listen(socket.get(), SOMAXCONN) == -1)
        fail(place);
    return socket;
}

std::array<int, 2> opened_pipe() {
    std::array<int, 2> ends = {};
    if (::pipe2(ends.data(), O_CLOEXEC) == -1) fail("pipe");
    return ends;
}

// The workers, each a thread. They end when one end of a pipe is closed whose other they watch.
class Workers {
public:
    Workers(const app::Live<Config>& live, const Descriptor& listener) : Workers(opened_pipe()) {
        for (unsigned i = 1; i <= live.now()->server.workers; ++i) {
            threads_.push_back(std::async(std::launch::async, [this, &live, &listener, i] {
                try {
                    Worker(live, listener, i).run(life_);
                } catch (...) {
                    ::kill(::getpid(), SIGTERM);
                    throw;
                }
            }));
        }
    }

    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// Ends them, and throws what one of them has ended by itself with.
    void end() {
        end_.close();
        for (std::future<void>& thread : threads_) thread.get();
    }

private:
    explicit Workers(const std::array<int, 2>& ends) : life_(ends[0]), end_(ends[1]) {}

    Descriptor life_;
    /// Waited for when they are destroyed, which `end_` must be before.
    std::vector<std::future<void>> threads_;
    Descriptor end_;
};

void reopen_log(const Log& settings) {
    try {
        open_log(settings);
    } catch (const std::system_error& error) {
        log().log(Level::error, "the log stays as it was: %s", error);
    }
}

void log_lines(Level level, std::string_view what, const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) log().log(level, "%s: %s", what, line);
}

// Says what must restart for what has come into effect. The log is opened anew each time, since its
// file may have been moved away.
Restart reload(app::Live<Config>& live) {
    app::Reload reload;
    try {
        reload = live.reload({.granted = Restart::worker});
    } catch (const std::exception& error) {
        reopen_log(live.now()->log);
        log_lines(Level::error, "nothing reloaded", velmora::message_of(error));
        return Restart::none;
    }
    reopen_log(live.now()->log);
    if (!reload.pending.changes.empty()) log_lines(Level::info, "pending", text_of(reload.pending));
    log_lines(Level::info, "reloaded", text_of(reload.changes));
    return reload.changes.restart;
}

}  // namespace

void serve(app::Live<Config>& live) {
    const sigset_t signals = signals_held();
    // Whoever reads what is written may leave.
    ::signal(SIGPIPE, SIG_IGN);
    const app::Snapshot<Config> start = live.now();
    open_log(start->log);
    const Descriptor listener = listening(start->server);
    auto workers = std::make_unique<Workers>(live, listener);
    log().log(Level::info, "listening on %s port %s", start->server.host, start->server.port);
    for (int signal = 0; ::sigwait(&signals, &signal) == 0 && signal == SIGHUP;) {
        if (reload(live) == Restart::none) continue;
        const auto ending = std::exchange(workers, std::make_unique<Workers>(live, listener));
        ending->end();
        log().log(Level::info, "the workers have restarted");
    }
    workers->end();
}
