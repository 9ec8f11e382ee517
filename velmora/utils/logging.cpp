#include "velmora/utils/logging.hpp"

#include <algorithm>
#include <cstdio>
#include <map>
#include <mutex>

namespace velmora::utils {

namespace {

void write_line(const LogRecord& record, std::string_view message) {
    std::string line = record.logger() + ": ";
    line.append(name_of(record.level())).append(": ").append(one_line(message)).append("\n");
    // In one call, so that lines of several threads do not mix.
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void write_to_standard_error(const LogRecord& record) {
    write_line(record, record.message());
}

// The template alone when an argument cannot be written.
void write_whatever_can_be(const LogRecord& record) {
    try {
        write_to_standard_error(record);
    } catch (...) {
        write_line(record, record.message_template());
    }
}

// The sink of all loggers. Its user may outlive its replacement.
class SharedSink {
public:
    void set(LogSink sink) {
        auto next = std::make_shared<const LogSink>(sink ? std::move(sink)
                                                         : LogSink(write_to_standard_error));
        const std::lock_guard lock(mutex_);
        sink_.swap(next);
    }

    std::shared_ptr<const LogSink> get() const {
        const std::lock_guard lock(mutex_);
        return sink_;
    }

private:
    mutable std::mutex mutex_;
    std::shared_ptr<const LogSink> sink_ = std::make_shared<const LogSink>(write_to_standard_error);
};

// Never destroyed, as loggers are not: whatever runs when the program ends may still log.
SharedSink& shared_sink() {
    static auto& sink = *new SharedSink;
    return sink;
}

}  // namespace

// All loggers by name.
class LoggerRegistry {
public:
    static LoggerRegistry& instance() {
        static auto& registry = *new LoggerRegistry;
        return registry;
    }

    Logger& get(std::string_view name) {
        const std::lock_guard lock(mutex_);
        const auto found = loggers_.find(name);
        if (found != loggers_.end()) return *found->second;
        std::unique_ptr<Logger> made(new Logger(std::string(name)));
        Logger& logger = *loggers_.emplace(name, std::move(made)).first->second;
        logger.level_ = effective_level(name);
        return logger;
    }

    void set_level(Logger& logger, std::optional<Level> level) {
        const std::lock_guard lock(mutex_);
        logger.own_level_ = level;
        for (const auto& [name, each] : loggers_) each->level_ = effective_level(name);
    }

private:
    Level effective_level(std::string_view name) const {
        while (true) {
            const auto found = loggers_.find(name);
            if (found != loggers_.end() && found->second->own_level_)
                return *found->second->own_level_;
            if (name.empty()) return Level::warning;
            const std::size_t dot = name.rfind('.');
            name = name.substr(0, dot == std::string_view::npos ? 0 : dot);
        }
    }

    std::mutex mutex_;
    std::map<std::string, std::unique_ptr<Logger>, std::less<>> loggers_;
};

std::string_view name_of(Level level) noexcept {
    switch (level) {
        case Level::debug:
            return "debug";
        case Level::info:
            return "info";
        case Level::warning:
            return "warning";
        case Level::error:
            return "error";
    }
    return "no level";
}

std::string LogRecord::message() const {
    std::string text;
    std::size_t used = 0;
    std::string_view rest = template_;
    while (!rest.empty()) {
        const std::size_t mark = std::min(rest.find('%'), rest.size());
        text += rest.substr(0, mark);
        const std::string_view directive = rest.substr(mark, 2);
        rest.remove_prefix(mark + directive.size());
        const bool for_argument = directive == "%s" || directive == "%r";
        if (for_argument && used < arguments_.size()) {
            const LogArgument& argument = arguments_[used++];
            text += directive == "%s" ? argument.text() : argument.form();
        } else {
            text += directive == "%%" ? "%" : directive;
        }
    }
    if (used == arguments_.size()) return text;
    std::string_view separator = " (";
    for (; used < arguments_.size(); ++used) {
        text.append(separator).append(arguments_[used].form());
        separator = ", ";
    }
    return text += ')';
}

void set_sink(LogSink sink) {
    shared_sink().set(std::move(sink));
}

void Logger::set_level(std::optional<Level> level) {
    LoggerRegistry::instance().set_level(*this, level);
}

void Logger::emit(Level level, std::string_view message_template,
                  std::vector<LogArgument> arguments) const {
    const LogRecord record(name_, level, std::string(message_template), std::move(arguments));
    try {
        (*shared_sink().get())(record);
    } catch (...) {
        write_whatever_can_be(record);
    }
}

Logger& logger(std::string_view name) {
    return LoggerRegistry::instance().get(name);
}

}  // namespace velmora::utils
