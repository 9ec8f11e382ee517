#include "server.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <netdb.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <velmora/utils/logging.hpp>

#include "descriptor.hpp"
#include "worker.hpp"

using velmora::utils::Level;

namespace {

velmora::utils::Logger& log() {
    return velmora::utils::logger("webd");
}

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Blocks the signals that end the daemon and its workers, for `::sigwait` to take.
sigset_t signals_held() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int each : {SIGTERM, SIGINT, SIGCHLD}) ::sigaddset(&signals, each);
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

// The workers, each a process. They end when this does, however that comes about: then the last
// end of a pipe is closed that they all watch.
class Workers {
public:
    Workers(const Config& config, const Descriptor& listener) : Workers() {
        for (unsigned i = 0; i < config.server.workers; ++i) start(config, listener);
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    ~Workers() {
        ::close(ends_[1]);
        while (::wait(nullptr) != -1 || errno == EINTR) {
        }
        ::close(ends_[0]);
    }

private:
    Workers() {
        if (::pipe(ends_.data()) == -1) fail("pipe");
    }

    void start(const Config& config, const Descriptor& listener) {
        const pid_t process = ::fork();
        if (process == -1) fail("fork");
        if (process != 0) return;
        ::close(ends_[1]);
        try {
            Worker(config, listener).run(ends_[0]);
            ::_exit(0);
        } catch (const std::exception& error) {
            log().log(Level::error, "%s", error);
            ::_exit(1);
        }
    }

    std::array<int, 2> ends_ = {};
};

// Waits until a signal says to end.
void wait_for_end(const sigset_t& signals) {
    for (int signal = SIGCHLD; signal == SIGCHLD; ::sigwait(&signals, &signal)) {
        if (::waitpid(-1, nullptr, WNOHANG) > 0)
            throw std::runtime_error("a worker has ended by itself");
    }
}

}  // namespace

void serve(const Config& config) {
    const sigset_t signals = signals_held();
    const Descriptor listener = listening(config.server);
    const Workers workers(config, listener);
    log().log(Level::info, "listening on %s port %s", config.server.host, config.server.port);
    wait_for_end(signals);
}
