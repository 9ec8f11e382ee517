// Logging: named loggers, and records whose text is put together only when a sink asks for it.
//
//     Logger& log = logger("app.server");
//     log.warning("No answer from %s after %s attempts", host, attempts);
//
// Records go to standard error, one line each, until the application takes them over:
//
//     set_sink([](const LogRecord& record) { my_logger.write(record.logger(), record.message());
//     });
//
// Everything here may be called from several threads.
#pragma once

#include <atomic>
#include <concepts>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/utils/errors.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::utils {

enum class Level { debug, info, warning, error };

/// "debug", "info", "warning" or "error".
VELMORA_EXPORT std::string_view name_of(Level level) noexcept;

/// A type that says itself how it is written: functions beside it make its text and its display
/// form.
template <class T>
concept Displayable = requires(const T& value) {
    { plain_text(value) } -> std::same_as<std::string>;
    { display(value) } -> std::same_as<std::string>;
};

/// A type of which some copies share what they hold, as handles do; `shares_state`, a function
/// beside it, says which.
template <class T>
concept SharesState = requires(const T& value) {
    { shares_state(value) } -> std::same_as<bool>;
};

/// An argument of a message. It keeps a copy of what it is made from, later changes to which do not
/// show, and writes it when it is asked to; only a value that shares its state is written at once.
class VELMORA_EXPORT LogArgument {
public:
    LogArgument(std::string text) : forms_(std::make_shared<OfText>(std::move(text))) {}
    LogArgument(std::string_view text) : LogArgument(std::string(text)) {}
    /// A null pointer is written as null: None.
    LogArgument(const char* text)
        : LogArgument(text != nullptr ? LogArgument(std::string(text))
                                      : LogArgument("None", "None")) {}
    /// An error is written as its message.
    LogArgument(const std::exception& error) : LogArgument(message_of(error)) {}
    template <std::integral I>
    requires(!std::same_as<I, bool> && !std::same_as<I, char>) LogArgument(I value)
        : LogArgument(std::to_string(value), std::to_string(value)) {}
    template <Displayable T>
    LogArgument(T value) : forms_(forms_of(std::move(value))) {}

    /// As "%s" writes it: a text itself.
    std::string text() const { return forms_->text(); }
    /// As "%r" writes it: a text quoted and escaped.
    std::string form() const { return forms_->form(); }

private:
    struct Forms {
        virtual ~Forms() = default;
        virtual std::string text() const = 0;
        virtual std::string form() const = 0;
    };

    struct OfText final : Forms {
        explicit OfText(std::string text) : held(std::move(text)) {}
        std::string text() const override { return held; }
        std::string form() const override { return quoted_text(held); }
        std::string held;
    };

    struct Written final : Forms {
        Written(std::string text, std::string form)
            : held_text(std::move(text)), held_form(std::move(form)) {}
        std::string text() const override { return held_text; }
        std::string form() const override { return held_form; }
        std::string held_text;
        std::string held_form;
    };

    template <class T>
    struct Of final : Forms {
        explicit Of(T value) : held(std::move(value)) {}
        std::string text() const override { return plain_text(held); }
        std::string form() const override { return display(held); }
        T held;
    };

    LogArgument(std::string text, std::string form)
        : forms_(std::make_shared<Written>(std::move(text), std::move(form))) {}

    template <class T>
    static std::shared_ptr<const Forms> forms_of(T value) {
        if constexpr (SharesState<T>) {
            if (shares_state(value))
                return std::make_shared<Written>(plain_text(value), display(value));
        }
        return std::make_shared<Of<T>>(std::move(value));
    }

    std::shared_ptr<const Forms> forms_;
};

/// One message, on its way to the sink.
class VELMORA_EXPORT LogRecord {
public:
    LogRecord(std::string logger, Level level, std::string message_template,
              std::vector<LogArgument> arguments)
        : logger_(std::move(logger)),
          level_(level),
          template_(std::move(message_template)),
          arguments_(std::move(arguments)) {}

    /// The logger's name.
    const std::string& logger() const noexcept { return logger_; }
    Level level() const noexcept { return level_; }
    const std::string& message_template() const noexcept { return template_; }
    const std::vector<LogArgument>& arguments() const noexcept { return arguments_; }

    /// The template with its arguments in place of "%s" and "%r", and "%" in place of "%%". Where
    /// there are too few, the rest of the template stays as it is; those left over follow in
    /// parentheses.
    std::string message() const;

private:
    std::string logger_;
    Level level_;
    std::string template_;
    std::vector<LogArgument> arguments_;
};

/// Takes records to where they are kept. It may be called by several threads at once. What it
/// throws goes nowhere: the record is then written to standard error.
using LogSink = std::function<void(const LogRecord&)>;

/// Replaces the sink of all loggers; an empty one brings back the default, standard error. The old
/// sink may still be running in other threads when this returns, and lives until they are done. A
/// sink may log, or replace itself.
VELMORA_EXPORT void set_sink(LogSink sink);

class VELMORA_EXPORT Logger {
public:
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    const std::string& name() const noexcept { return name_; }

    /// The least level that comes out: its own, else that of the nearest logger above that has one,
    /// where "app" is above "app.server" and "" above all; warning where none has.
    Level level() const noexcept { return level_.load(std::memory_order_relaxed); }
    bool enabled(Level level) const noexcept { return level >= this->level(); }
    /// Empty for that of the loggers above.
    void set_level(std::optional<Level> level);

    /// Hands a record to the sink when `level` is enabled; else nothing is copied or put together.
    /// What the sink throws, or an argument that is written, does not pass.
    template <class... Arguments>
    void log(Level level, std::string_view message_template, const Arguments&... arguments) {
        if (enabled(level)) emit(level, message_template, {LogArgument(arguments)...});
    }

    template <class... Arguments>
    void warning(std::string_view message_template, const Arguments&... arguments) {
        log(Level::warning, message_template, arguments...);
    }

private:
    friend class LoggerRegistry;

    explicit Logger(std::string name) : name_(std::move(name)) {}

    void emit(Level level, std::string_view message_template,
              std::vector<LogArgument> arguments) const;

    std::string name_;
    std::optional<Level> own_level_;
    std::atomic<Level> level_ = Level::warning;
};

/// The logger of this name, a dotted path; the same one for every call, for the life of the
/// program.
VELMORA_EXPORT Logger& logger(std::string_view name);

}  // namespace velmora::utils
