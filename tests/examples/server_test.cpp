// The example daemon: what it makes of requests, what it keeps, and how it answers over its sockets.
#include "server.hpp"

#include <csignal>
#include <stdexcept>
#include <tuple>

#include <netinet/in.h>
#include <sys/socket.h>

#include "cache.hpp"
#include "command_line.hpp"
#include "descriptor.hpp"
#include "http.hpp"

namespace app = velmora::app;

namespace {

TEST(TakeRequest, SaysWhatIsUnderstood) {
    const std::string host = "\r\nHost: a\r\n", end = "\r\n\r\n";
    const std::string most = "GET /" + std::string(most_request_bytes - 23, 'x') + " HTTP/1.1" + host;
    // What came in, and what is taken from it, then what is left.
    std::vector<std::pair<std::string, std::string>> cases = {
        {"GET / HTTP/1.1" + host, ""},
        {"\r\n\r\nGET /!a?b~ HTTP/1.1" + host + "\r\nGET", "200 GET /!a?b~|GET"},
        {"HEAD / HTTP/1.1\r\nHOST:\r\nx: close" + end, "200 HEAD / no body|"},
        {"GET / HTTP/1.1\r\nconnection: te ,\tClose\r\nConnection: x" + host + "\r\n", "200 GET / close|"},
        {"GET / HTTP/1.1\r\nConnection: closed\r\nContent-Length: 0" + host + "\r\n", "200 GET /|"},
        {"GET / HTTP/1.0" + end, "200 GET / close|"},
        {"GET / HTTP/1.1\r\nContent-Length: 3" + host + "\r\nabc", "200 GET / close|abc"},
        {"GET / HTTP/1.1\r\ntransfer-encoding: x" + host + "\r\n", "200 GET / close|"},
        {"POST / HTTP/1.1" + host + "\r\n", "405 POST / close|"},
        {"OPTIONS * HTTP/1.1" + host + "\r\n", "405 OPTIONS * close|"},
        {most, ""},
        {most + "x", ""},
        {most + "\r\n", "200 GET " + most.substr(4, most.find(" HTTP") - 4) + "|"},
        {most + "xx\r\n\r\n", "431 - - close|" + most + "xx\r\n\r\n"},
        {most + "xx", "431 - - close|" + most + "xx"},
    };
    for (const char* head :
         {"GET / HTTP/1.1", "GET / HTTP/1.1\r\nHost: a\r\nHost: a", "GET / HTTP/2\r\nHost: a",
          "GET a HTTP/1.1\r\nHost: a", "GET /\x1b[m HTTP/1.1\r\nHost: a", "GET  / HTTP/1.1\r\nHost: a",
          "GET / HTTP/1.1\r\nHost: a\r\nx", "GET / HTTP/1.1\r\nHost: a\r\n x: y"})
        cases.emplace_back(head + end, "400 - - close|");
    for (const auto& [came, taken] : cases) {
        std::string in = came, out;
        if (const auto request = take_request(in)) {
            out = std::to_string(request->status) + " " + request->method + " " + request->target;
            out += (request->head_only ? " no body" : "") + std::string(request->close ? " close" : "") + "|" + in;
        }
        EXPECT_EQ(out, taken) << came;
    }
}

TEST(ResponseCache, LetsGoOfWhatThePolicySays) {
    const auto response = [](std::size_t size) { return Response{"", std::string(size, 'x')}; };
    const Moment now(Seconds(0));
    for (const auto& [policy, gone] :
         {std::pair(CachePolicy::fifo, "a"), {CachePolicy::lru, "b"}, {CachePolicy::lfu, "c"}}) {
        const Cache settings = {.max_bytes = 30, .ttl = Seconds(5), .policy = policy, .bypass = {"x"}};
        ResponseCache cache;
        for (const char* path : {"a", "b", "c"}) cache.keep(path, response(9), settings, now);
        for (const char* path : {"b", "b", "a", "c", "a"}) EXPECT_NE(cache.find(path, settings, now), nullptr);
        for (const char* path : {"x", "d"}) cache.keep(path, response(9), settings, now);
        cache.keep("y", response(30), settings, now);
        for (const char* path : {"a", "b", "c", "d", "x", "y"}) {
            const bool kept = std::string("dabc").find(path) != std::string::npos && std::string(gone) != path;
            EXPECT_EQ(cache.find(path, settings, now + Seconds(4.5)) != nullptr, kept) << gone << path;
            EXPECT_EQ(cache.find(path, settings, now + Seconds(5)), nullptr);
        }
        // What is stale leaves all of its room.
        cache.keep("a", response(29), settings, now);
        EXPECT_EQ(cache.find("a", settings, now)->size(), 29U);
        for (const char* path : {"b", "c"}) cache.keep(path, response(9), settings, now);
        cache.keep("d", response(20), settings, now);
        EXPECT_TRUE(cache.find("d", settings, now) != nullptr && cache.find("c", settings, now) == nullptr);
    }
}

std::string free_port() {
    const Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(::bind(socket.get(), any, size) | ::getsockname(socket.get(), any, &size), 0);
    return std::to_string(::ntohs(address.sin_port));
}

class Serve : public CommandLine {
protected:
    // What the daemon answers to a script of bash, which connects to it on descriptor 3, without the header fields that
    // vary; and the status with which it ends on a signal.
    static std::string served(const std::string& options, const std::string& script, const char* signal = "TERM") {
        ::setenv("port", free_port().c_str(), 1);
        ::setenv("options", options.c_str(), 1);
        ::setenv("script", script.c_str(), 1);
        ::setenv("signal", signal, 1);
        ::setenv("TZ", "here-2", 1);
        const Outcome outcome = run(R"sh(bash -c '
            get() { printf "${2:-GET} $1 HTTP/1.1\r\nHost: a\r\n$3\r\n" >&3; }
            last() { get "$1" "$2" "Connection: close\r\n"; cat <&3; }
            ask() { get "$1"; while read -r line <&3; do echo "$line"; [[ $line != *esponse* ]] || break; done; }
            connect() { exec 3<>/dev/tcp/127.0.0.1/$port; }
            half() { printf "GET $1 " >&3; exec 4<&3; connect; }
            rest() { printf "HTTP/1.1\r\nHost: a\r\n\r\n" >&4; cat <&4; }
            await() { until grep -s "$1" $2 || ! kill -0 $pid; do sleep 0.01; done; }
            hup() { mv log old; echo "$1" >f.yaml; kill -HUP $pid; await loaded log; }
            umask 0; cd $(mktemp -d ./XXX) && : >f.yaml
            $webd run --file f.yaml --set server.port=$port --set server.workers=1 $options & pid=$!
            until (connect) 2>/dev/null || ! kill -0 $pid; do sleep 0.01; done
            (connect; eval "$script") | tr -d "\r" |
                grep -E "^(HTTP|X-|Conn|Allow|Resp)" | sed "s/ of .*, to//; s/Response //" | tr "\n" "|"
            kill -$signal $pid; wait $pid')sh");
        return outcome.out + std::to_string(outcome.status);
    }
};

TEST_F(Serve, AnswersUntilASignalComes) {
    const std::string ok = "HTTP/1.1 200 OK|", close = "Connection: close|", tags = "X-Tag: a|X-Tag: b|";
    const std::string log = "sed s/^[^+]*/X-/ log | grep -v listening", to_log = "--set log.file=log";
    const std::string unavailable = "HTTP/1.1 503 Service Unavailable|";
    const std::string not_allowed = "HTTP/1.1 405 Method Not Allowed|Allow: GET, HEAD|";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"--set server.tags=a,b", "get /x; get /x?y; get /health; last /health",
         ok + tags + "1 /x|" + ok + tags + "1 /x|" + ok + tags + "2 /health|" + ok + tags + close + "3 /health|0"},
        {"--set cache.enabled=0", "get /; last /", ok + "1 /|" + ok + close + "2 /|0"},
        {"--set server.maintenance=1", "get /; get / POST; cat <&3", unavailable + not_allowed + close + "0"},
        {"--set server.keep_alive=0", "get /; cat <&3", ok + close + "1 /|0"},
        // One that idles ends before another that is not done with its request.
        {"--set server.keep_alive=0.1", "kill -STOP $pid; get /; half /a; kill -CONT $pid; get /b; cat <&3; rest",
         ok + "2 /b|" + ok + "1 /|" + ok + "3 /a|0"},
        {"", "kill -STOP $pid; get /; get /; exec 3>&-; kill -CONT $pid; connect; last /a", ok + close + "2 /a|0"},
        {"", "get / HEAD; last / HEAD", ok + ok + close + "0"},
        {"", "get /$(printf %09000d); cat <&3", "HTTP/1.1 431 Request Header Fields Too Large|" + close + "0"},
        {"", "echo >&3; get /; cat <&3", "HTTP/1.1 400 Bad Request|" + close + "0"},
        {to_log + " --set log.utc=0 --set log.sample_rate=0.75", "get /a; get /b; get /c; last /d; " + log,
         ok + "1 /a|" + ok + "2 /b|" + ok + "3 /c|" + ok + close +
             "4 /d|X-+0200 info 200 GET /b|X-+0200 info 200 GET /c|X-+0200 info 200 GET /d|0"},
        {"--set log.file=l --set log.level=warning", "get /a; last / POST >o; sed s/^[^+]*/X-/ l",
         "X-+0000 warning 405 POST /|0"},
        {"", "$webd run --set server.port=$port; echo X-$?", "X-1|0"},
        {to_log + " --set server.workers=3 --set log.level=debug",
         "await listening log; echo X-$(ls /proc/$pid/task | wc -l); ask /; stat -c X-%a log; grep -q debug log; echo "
         "X-$?",
         "X-4|" + ok + "1 /|X-640|X-0|0"},
        // What it reloads: at once for the next request, with the workers, after a restart or not at all.
        {to_log,
         "ask /; hup 'cache: {bypass: [/]}'; ask /; hup 'x-: {}'; ask /; ask /; hup 'cache: {ttl: 1e-9}'; ask /; "
         "hup 'server: {maintenance: 1}'; last /",
         ok + "1 /|" + ok + "2 /|" + ok + "3 /|" + ok + "3 /|" + ok + "4 /|" + unavailable + close + "0"},
        {to_log,
         "ask /; half /a; exec 5<&3; connect; ask /; hup 'server: {tags: [a, b]}'; cat <&3; rest; exec 3<&5; last /b; "
         "connect; last /",
         ok + "1 /|" + ok + "1 /|" + ok + tags + close + "2 /a|" + ok + tags + close + "3 /b|" + ok + tags + close +
             "1 /|0"},
        {to_log, "ask /a; kill -HUP $pid; await loaded log; last /b; " + log,
         ok + "1 /a|" + ok + close + "2 /b|" +
             "X-+0000 info 200 GET /a|X-+0000 info reloaded: Nothing changes.|X-+0000 info 200 GET /b|0"},
        {to_log, "hup '{log: {utc: 0}, server: {host: 0.0.0.0}}'; " + log + "; last /",
         "X-+0200 info pending: server.host: '127.0.0.1' -> '0.0.0.0', takes a restart of the daemon|"
         "X-+0200 info reloaded: log.utc: True -> False, takes no restart|" +
             ok + close + "1 /|0"},
        {to_log,
         "hup 'server: {maintenance: 1, prot: 8}'; " + log +
             " | cut -d: -f-4; ask /; hup 'server: {maintenance: 1}'; last /",
         "X-+0000 error nothing reloaded: f.yaml:1:26|" + ok + "1 /|" + unavailable + close + "0"},
        {to_log, "mv log l; mkdir log; kill -HUP $pid; await stays l | sed s/^[^+]*/X-/",
         "X-+0000 error the log stays as it was: log: Is a directory|0"},
    };
    for (const auto& [options, script, answers] : cases)
        EXPECT_EQ(served(options, script), answers) << options << script;
    EXPECT_EQ(served("", "last /", "INT"), ok + close + "1 /|0");
    // A worker that cannot go on ends the daemon.
    EXPECT_EQ(served("", "get /; read <&3; prlimit -p $pid -n5; connect; cat <&3", "0"), "1");
}

TEST_F(Serve, GoesOnAfterWhatACheckThrows) {
    const auto serve_one_reload = [] {
        bool reloads = false;
        const auto check = [&](const Config&) -> std::string {
            if (!std::exchange(reloads, true)) return "";
            ::raise(SIGTERM);
            throw std::runtime_error("no more");
        };
        app::Live<Config> live(schema().check({"log.level"}, check), {app::sets({"server.port=" + free_port()})});
        sigset_t signals;
        ::sigfillset(&signals);
        ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        ::raise(SIGHUP);
        serve(live);
        ::_exit(0);
    };
    EXPECT_EXIT(serve_one_reload(), testing::ExitedWithCode(0), "error nothing reloaded: no more\n");
}

}  // namespace
