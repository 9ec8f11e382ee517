#include "http.hpp"

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

#include <velmora/utils/unicode.hpp>

using velmora::utils::equal_ignoring_case;

namespace {

constexpr std::string_view line_end = "\r\n";
constexpr std::string_view head_end = "\r\n\r\n";

bool is_visible(char c) {
    return c > ' ' && c <= '~';
}

bool is_word(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), is_visible);
}

// What is before the separator, which goes with it; everything where there is none.
std::string_view take(std::string_view& text, std::string_view separator) {
    const std::size_t size = std::min(text.find(separator), text.size());
    const std::string_view taken = text.substr(0, size);
    text.remove_prefix(std::min(size + separator.size(), text.size()));
    return taken;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

bool has_item(std::string_view list, std::string_view item) {
    while (!list.empty()) {
        if (equal_ignoring_case(trimmed(take(list, ",")), item)) return true;
    }
    return false;
}

// Without a body: none is read, so none may come.
Request parsed(std::string_view head) {
    std::string_view line = take(head, line_end);
    const std::string_view method = take(line, " ");
    const std::string_view target = take(line, " ");
    const bool is_old = line == "HTTP/1.0";
    if (!is_word(method) || !is_word(target) || !(is_old || line == "HTTP/1.1")) return {};
    bool close = is_old;
    std::size_t hosts = 0;
    while (!head.empty()) {
        std::string_view value = take(head, line_end);
        const bool has_colon = value.find(':') != std::string_view::npos;
        const std::string_view name = take(value, ":");
        value = trimmed(value);
        if (!has_colon || !is_word(name)) return {};
        if (equal_ignoring_case(name, "host")) ++hosts;
        if (equal_ignoring_case(name, "connection")) close = close || has_item(value, "close");
        if (equal_ignoring_case(name, "content-length") && value != "0") close = true;
        if (equal_ignoring_case(name, "transfer-encoding")) close = true;
    }
    if (hosts > 1 || (hosts == 0 && !is_old)) return {};
    const bool known = method == "GET" || method == "HEAD";
    if (known && !target.starts_with('/')) return {};
    return {.status = known ? 200 : 405,
            .head_only = method == "HEAD",
            .close = close || !known,
            .method = std::string(method),
            .target = std::string(target)};
}

std::string_view reason_of(int status) {
    switch (status) {
        case 200:
            return "OK";
        case 405:
            return "Method Not Allowed";
        case 431:
            return "Request Header Fields Too Large";
        case 503:
            return "Service Unavailable";
        default:
            return "Bad Request";
    }
}

std::string date() {
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
    std::array<char, sizeof "Thu, 01 Jan 1970 00:00:00 GMT"> text = {};
    ::gmtime_r(&now, &parts);
    return {text.data(),
            std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts)};
}

}  // namespace

std::optional<Request> take_request(std::string& in) {
    while (in.starts_with(line_end)) in.erase(0, line_end.size());
    const std::size_t size = in.find(head_end);
    const bool is_complete = size != std::string::npos;
    if (is_complete ? size > most_request_bytes : in.size() >= most_request_bytes + head_end.size())
        return Request{.status = 431};
    if (!is_complete) return std::nullopt;
    Request request = parsed(std::string_view(in).substr(0, size));
    in.erase(0, size + head_end.size());
    return request;
}

bool fits_in_header(std::string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; });
}

Response make_response(int status, const std::vector<std::string>& tags, std::string body) {
    std::string head = "HTTP/1.1 " + std::to_string(status) + " ";
    head.append(reason_of(status)).append(line_end);
    head += "Date: " + date() + "\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: " +
            std::to_string(body.size()) + "\r\n";
    if (status == 405) head += "Allow: GET, HEAD\r\n";
    for (const std::string& tag : tags) head += "X-Tag: " + tag + "\r\n";
    return {std::move(head), std::move(body)};
}

std::string wire_text(const Response& response, const Request& request) {
    std::string text = response.head;
    if (request.close) text += "Connection: close\r\n";
    text += line_end;
    if (!request.head_only) text += response.body;
    return text;
}
