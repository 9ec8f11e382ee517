#include "keys.hpp"

#include <cstdint>

#include "section.hpp"

namespace bench {

using namespace velmora::config;

namespace {

KeyFacts integer(std::string name, std::int64_t fallback, double low, double high,
                 std::string doc) {
    return {name, KeyKind::int_, fallback, std::move(doc), "SERVICE_" + name, {{low, high}}};
}

KeyFacts real(std::string name, double fallback, double high, std::string doc) {
    return {name, KeyKind::float_, fallback, std::move(doc), "SERVICE_" + name, {{0, high}}};
}

KeyFacts text(std::string name, const std::string& fallback, std::string doc, Texts choices = {}) {
    return {name,         KeyKind::str,      fallback, std::move(doc), "SERVICE_" + name,
            std::nullopt, std::move(choices)};
}

KeyFacts flag(std::string name, bool fallback, std::string doc) {
    return {name, KeyKind::bool_, fallback, std::move(doc), "SERVICE_" + name};
}

KeyFacts list(std::string name, const Texts& fallback, std::string doc) {
    return {name, KeyKind::list, Values(fallback.begin(), fallback.end()), std::move(doc),
            "SERVICE_" + name};
}

Bound bound(const KeyFacts& key) {
    const auto [low, high] = *key.range;
    if (key.kind == KeyKind::float_) return Bound(low, high);
    return Bound(static_cast<std::int64_t>(low), static_cast<std::int64_t>(high));
}

}  // namespace

const std::vector<KeyFacts>& service_keys() {
    static const Service& by = default_service;
    static const std::vector<KeyFacts> keys = {
        text("host", by.host, "Address that the service listens on."),
        integer("port", by.port, 1, 65535, "Port that the service listens on."),
        integer("workers", by.workers, 1, 256, "Processes that answer requests."),
        integer("backlog", by.backlog, 1, 65535, "Connections that may wait to be taken."),
        integer("max_connections", by.max_connections, 1, 1e6, "Connections open at a time."),
        integer("max_body_bytes", by.max_body_bytes, 0, 0x1p40, "Bytes of the longest body."),
        integer("max_header_bytes", by.max_header_bytes, 256, 1'048'576, "Bytes of all headers."),
        integer("retries", by.retries, 0, 100, "Times that a request is tried again."),
        integer("queue_length", by.queue_length, 1, 1e5, "Requests that may wait for a worker."),
        real("keep_alive", by.keep_alive, 3600, "Seconds before an idle connection closes."),
        real("read_timeout", by.read_timeout, 3600, "Seconds that a client has to send."),
        real("write_timeout", by.write_timeout, 3600, "Seconds that a client has to receive."),
        real("sample_rate", by.sample_rate, 1, "Share of the requests that are traced."),
        text("certificate", by.certificate, "File of the certificate."),
        text("policy", by.policy, "What the cache drops first.", {"lru", "lfu", "fifo"}),
        text("log_level", by.log_level, "Least severe messages that are kept.",
             {"debug", "info", "warning", "error"}),
        flag("http2", by.http2, "Speak HTTP/2 where the client does."),
        flag("maintenance", by.maintenance, "Answer every request with 503."),
        list("tags", by.tags, "Tags that every response carries."),
        list("trusted_proxies", by.trusted_proxies, "Networks whose forwarding is believed."),
    };
    return keys;
}

RecordType record_type(const std::string& name, const std::vector<KeyFacts>& keys) {
    std::vector<FieldDecl> fields;
    fields.reserve(keys.size());
    for (const KeyFacts& key : keys) {
        SettingOptions options{.env = key.env, .choices = key.choices};
        if (key.range) options.bounds = bound(key);
        fields.emplace_back(key.name, key.kind,
                            setting(config_value(key.fallback), key.doc, std::move(options)));
    }
    return {name, std::move(fields)};
}

Section resolved_section(const std::vector<KeyFacts>& keys) {
    const RecordType service = record_type("Service", keys);
    const RecordType config(
        "Config", {{"service", service, section(service, "One.", {.restart = Restart::worker})}});
    return sections_of(config)[0];
}

}  // namespace bench
