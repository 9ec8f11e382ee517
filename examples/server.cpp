#include "server.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>
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

// Blocks the signals that end the daemon, in later threads as well, for `::sigwait` to take.
sigset_t signals_held() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int each : {SIGTERM, SIGINT}) ::sigaddset(&signals, each);
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
    Workers(const Config& config, const Descriptor& listener) : Workers(opened_pipe()) {
        for (unsigned i = 1; i <= config.server.workers; ++i) {
            threads_.push_back(std::async(std::launch::async, [this, &config, &listener, i] {
                try {
                    Worker(config, listener, i).run(life_);
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

}  // namespace

void serve(const Config& config) {
    const sigset_t signals = signals_held();
    const Descriptor listener = listening(config.server);
    Workers workers(config, listener);
    log().log(Level::info, "listening on %s port %s", config.server.host, config.server.port);
    int signal = 0;
    ::sigwait(&signals, &signal);
    workers.end();
}
