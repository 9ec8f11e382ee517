#include "worker.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <velmora/utils/logging.hpp>

#include "http.hpp"

using velmora::utils::Level;

namespace {

constexpr std::size_t most_connections = 256;
// For a request to come in as a whole, and for its answer to be taken.
constexpr Seconds patience{10};

velmora::utils::Logger& log() {
    return velmora::utils::logger("webd");
}

bool must_wait() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

Moment moment() {
    return std::chrono::steady_clock::now();
}

int milliseconds_until(Moment deadline) {
    constexpr double most = 60'000;
    const std::chrono::duration<double, std::milli> left = deadline - moment();
    return static_cast<int>(std::clamp(left.count() + 1, 0.0, most));
}

}  // namespace

void Worker::run(const Descriptor& life) {
    while (!ending_ || !connections_.empty()) {
        const bool takes_more = !ending_ && connections_.size() < most_connections;
        std::vector<pollfd> polled = {{ending_ ? -1 : life.get(), POLLIN, 0},
                                      {takes_more ? listener_.get() : -1, POLLIN, 0}};
        Moment next = Moment::max();
        for (const Connection& each : connections_) {
            const short event = each.out.empty() ? POLLIN : POLLOUT;
            polled.push_back({each.socket.get(), event, 0});
            next = std::min(next, each.deadline);
        }
        if (::poll(polled.data(), polled.size(), milliseconds_until(next)) == -1 && errno != EINTR)
            fail("poll");
        ending_ = ending_ || polled[0].revents != 0;
        const Moment now = moment();
        auto state = polled.begin() + 2;
        for (auto each = connections_.begin(); each != connections_.end(); ++state) {
            const bool stays = state->revents == 0 || exchange(*each, now);
            const bool is_due = now >= each->deadline || (ending_ && each->idle);
            each = stays && !is_due ? std::next(each) : connections_.erase(each);
        }
        if (polled[1].revents != 0) accept_connections(now);
    }
}

void Worker::accept_connections(Moment now) {
    while (connections_.size() < most_connections) {
        const int socket =
            ::accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (socket != -1) {
            connections_.push_back({Descriptor(socket), now + patience});
            log().log(Level::debug, "a connection is open");
            continue;
        }
        // All other errors are of a connection that is gone by now.
        const bool out_of_means =
            errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
        if (out_of_means) fail("accept");
        return;
    }
}

bool Worker::exchange(Connection& connection, Moment now) {
    if (connection.out.empty()) {
        std::array<char, 4096> bytes;
        const ssize_t count = ::recv(connection.socket.get(), bytes.data(), bytes.size(), 0);
        if (count <= 0) return count == -1 && must_wait();
        // Closed with something unread, the connection would take its last answer with it.
        if (connection.ending) return true;
        if (connection.in.empty()) connection.deadline = now + patience;
        connection.idle = false;
        connection.in.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return answer(connection, now);
}

bool Worker::answer(Connection& connection, Moment now) {
    for (;;) {
        if (connection.out.empty()) {
            if (connection.ending) return true;
            std::optional<Request> request = take_request(connection.in);
            if (!request) return true;
            const velmora::app::Snapshot<Config> config = live_.now();
            connection.keep_alive = config->server.keep_alive;
            request->close = request->close || connection.keep_alive == Seconds(0) ||
                             (ending_ && connection.in.empty());
            connection.ending = request->close;
            connection.out = answer_to(*request, *config, now);
        }
        const ssize_t count =
            ::send(connection.socket.get(), connection.out.data(), connection.out.size(), 0);
        if (count == -1) return must_wait();
        connection.out.erase(0, static_cast<std::size_t>(count));
        if (!connection.out.empty()) continue;
        if (connection.ending) ::shutdown(connection.socket.get(), SHUT_WR);
        connection.idle = connection.in.empty() && !connection.ending;
        connection.deadline = now + (connection.idle ? connection.keep_alive : patience);
    }
}

std::string Worker::answer_to(const Request& request, const Config& config, Moment now) {
    const Server& server = config.server;
    const int status = request.status == 200 && server.maintenance ? 503 : request.status;
    log_answer(request, status, config.log.sample_rate);
    if (status != 200)
        return wire_text(make_response(status, server.tags, "No response.\n"), request);
    const std::string path = request.target.substr(0, request.target.find('?'));
    if (const Response* const kept = cache_.find(path, config.cache, now))
        return wire_text(*kept, request);
    Response response = make_response(200, server.tags,
                                      "Response " + std::to_string(++made_) + " of worker " +
                                          std::to_string(number_) + ", to " + path + "\n");
    std::string text = wire_text(response, request);
    cache_.keep(path, std::move(response), config.cache, now);
    return text;
}

void Worker::log_answer(const Request& request, int status, double sample_rate) {
    share_ += sample_rate;
    if (share_ < 1) return;
    share_ -= 1;
    log().log(status == 200 ? Level::info : Level::warning, "%s %s %s", status, request.method,
              request.target);
}
