// As much of HTTP/1.1 as it takes to answer GET and HEAD.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The request line and the header of a request may take this many bytes together.
inline constexpr std::size_t most_request_bytes = 8192;

struct Request {
    /// 200, or why there is no answer but this: 400, 405 or 431.
    int status = 400;
    bool head_only = false;
    /// Whether the connection ends with the answer.
    bool close = true;
    /// Both are free of control characters, and "-" when the status is 400 or 431.
    std::string method = "-";
    std::string target = "-";
};

/// Takes the first request off `in`; nothing as long as it is not complete. One that is not
/// understood stays in part, so the connection must end with its answer.
std::optional<Request> take_request(std::string& in);

struct Response {
    /// Status line and header fields, all but the empty line after them.
    std::string head;
    std::string body;

    std::size_t size() const noexcept { return head.size() + body.size(); }
};

/// Whether a header field may hold the text.
bool fits_in_header(std::string_view text);

/// A response with a text, and a header field X-Tag for each tag.
Response make_response(int status, const std::vector<std::string>& tags, std::string body);

/// What goes over the wire.
std::string wire_text(const Response& response, const Request& request);
