// Layers that are mappings of sections: values, YAML texts, files and directories.
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/read_file.hpp"

namespace velmora::app {

namespace {

class OfValue final : public detail::Source {
public:
    OfValue(config::ConfigValue value, std::string name, OnFault on_fault)
        : Source(on_fault), value_(std::move(value)), name_(std::move(name)) {}

    bool is_document() const noexcept override { return true; }
    void give(Intake& intake) const override { intake.take_document(value_, name_, nullptr); }

private:
    config::ConfigValue value_;
    std::string name_;
};

class OfText final : public detail::Source {
public:
    OfText(std::string text, std::string name, OnFault on_fault)
        : Source(on_fault), text_(std::move(text)), name_(std::move(name)) {}

    bool is_document() const noexcept override { return true; }
    void give(Intake& intake) const override { intake.take_yaml(text_, name_); }

private:
    std::string text_;
    std::string name_;
};

bool is_missing(const std::error_code& error) {
    return error == std::errc::no_such_file_or_directory;
}

void add_unreadable(Intake& intake, const std::string& path, const std::error_code& error) {
    intake.add_error(FaultKind::unusable_source, "", path,
                     utils::one_line(path) + ": cannot be read: " + error.message());
}

void take_file(Intake& intake, const std::string& path, bool optional) {
    std::string text;
    try {
        text = utils::read_file(path);
    } catch (const std::system_error& error) {
        if (!(optional && is_missing(error.code()))) add_unreadable(intake, path, error.code());
        return;
    }
    if (!text.empty()) intake.add_file(path);
    intake.take_yaml(text, path);
}

class OfFile final : public detail::Source {
public:
    OfFile(std::string path, FileOptions options)
        : Source(options.on_fault), path_(std::move(path)), optional_(options.optional) {}

    bool is_document() const noexcept override { return true; }
    void give(Intake& intake) const override { take_file(intake, path_, optional_); }

private:
    std::string path_;
    bool optional_;
};

class OfDirectory final : public detail::Source {
public:
    OfDirectory(std::string path, DirectoryOptions options)
        : Source(options.on_fault), path_(std::move(path)), optional_(options.optional) {}

    void give(Intake& intake) const override {
        std::vector<std::string> files;
        std::error_code error;
        std::filesystem::directory_iterator entries(path_, error);
        for (; !error && entries != std::filesystem::directory_iterator();
             entries.increment(error)) {
            const std::string name = entries->path().filename().string();
            if (name.ends_with(".yaml") && !name.starts_with('.'))
                files.push_back(entries->path().string());
        }
        if (error) {
            if (!(optional_ && is_missing(error))) add_unreadable(intake, path_, error);
            return;
        }
        std::sort(files.begin(), files.end());
        for (const std::string& each : files) {
            // A pipe would be waited for.
            if (std::filesystem::is_regular_file(each, error) || error) {
                take_file(intake, each, false);
            } else {
                intake.add_fault(FaultKind::unusable_source, "", each,
                                 intake.ignoring() + utils::one_line(each) + ": it is no file");
            }
        }
    }

private:
    std::string path_;
    bool optional_;
};

template <class Source, class... Arguments>
Layer layer_of(Arguments&&... arguments) {
    return Layer(std::make_shared<const Source>(std::forward<Arguments>(arguments)...));
}

}  // namespace

Layer values(config::ConfigValue value, std::string name, ValuesOptions options) {
    return layer_of<OfValue>(std::move(value), std::move(name), options.on_fault);
}

Layer text(std::string yaml, std::string name, ValuesOptions options) {
    return layer_of<OfText>(std::move(yaml), std::move(name), options.on_fault);
}

Layer file(std::string path, FileOptions options) {
    return layer_of<OfFile>(std::move(path), options);
}

Layer directory(std::string path, DirectoryOptions options) {
    return layer_of<OfDirectory>(std::move(path), options);
}

}  // namespace velmora::app
