#include "logging.hpp"

#include <array>
#include <cerrno>
#include <ctime>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <velmora/utils/logging.hpp>

#include "descriptor.hpp"

using velmora::utils::Level;
using velmora::utils::LogRecord;

namespace {

Level level_of(LogLevel level) {
    switch (level) {
        case LogLevel::debug:
            return Level::debug;
        case LogLevel::info:
            return Level::info;
        case LogLevel::warning:
            return Level::warning;
        default:
            return Level::error;
    }
}

std::string time_text(bool utc) {
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
    utc ? ::gmtime_r(&now, &parts) : ::localtime_r(&now, &parts);
    std::array<char, sizeof "1970-01-01T00:00:00+0000"> text = {};
    return {text.data(), std::strftime(text.data(), text.size(), "%FT%T%z", &parts)};
}

}  // namespace

void open_log(const Log& settings) {
    constexpr mode_t mode = 0640;
    constexpr int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
    const auto file = std::make_shared<const Descriptor>(
        settings.file.empty() ? ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)
                              : ::open(settings.file.c_str(), flags, mode));
    if (!file->is_open())
        throw std::system_error(errno, std::generic_category(), settings.file.string());
    velmora::utils::logger("").set_level(level_of(settings.level));
    velmora::utils::set_sink([file, utc = settings.utc](const LogRecord& record) {
        std::string line = time_text(utc) + " ";
        line.append(name_of(record.level())).append(" " + record.message() + "\n");
        // What cannot be written is lost: there is nobody left to tell.
        static_cast<void>(!::write(file->get(), line.data(), line.size()));
    });
}
