// The configuration of a small web daemon.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <velmora/app/schema.hpp>

using Seconds = std::chrono::duration<double>;

struct Server {
    std::string host = "127.0.0.1";
    std::uint16_t port = 8080;
    unsigned workers = 4;
    Seconds keep_alive{75};
    std::vector<std::string> tags;
    bool maintenance = false;
};

enum class TlsVersion { tls_1_2, tls_1_3 };
velmora::app::EnumNames<TlsVersion> names_of(TlsVersion);

struct Tls {
    bool enabled = false;
    std::filesystem::path certificate = "/etc/webd/cert.pem";
    std::filesystem::path private_key = "/etc/webd/key.pem";
    TlsVersion minimum_version = TlsVersion::tls_1_2;
    std::vector<std::string> ciphers = {"TLS_AES_128_GCM_SHA256", "TLS_AES_256_GCM_SHA384"};
};

enum class LogLevel { debug, info, warning, error };
velmora::app::EnumNames<LogLevel> names_of(LogLevel);

struct Log {
    LogLevel level = LogLevel::info;
    std::filesystem::path file;
    bool utc = true;
    double sample_rate = 1;
};

enum class CachePolicy { lru, lfu, fifo };
velmora::app::EnumNames<CachePolicy> names_of(CachePolicy);

struct Cache {
    bool enabled = true;
    std::uint64_t max_bytes = 268435456;
    Seconds ttl{300};
    CachePolicy policy = CachePolicy::lru;
    std::vector<std::string> bypass = {"/health", "/metrics"};
};

struct Config {
    Server server;
    Tls tls;
    Log log;
    Cache cache;
};

/// What its values may be and what is said of them.
const velmora::app::Schema<Config>& schema();
