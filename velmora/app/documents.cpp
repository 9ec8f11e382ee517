// Layers that are mappings of sections: values, YAML texts, files and directories.
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

void add_unreadable(Intake& intake, const std::string& path, const utils::FileError& error) {
    intake.add_error(FaultKind::unusable_source, "", path,
                     utils::one_line(path) + ": cannot be read: " + error.what());
}

bool is_missing(const utils::FileError& error) {
    return error.kind() == utils::FileError::Kind::missing;
}

void take_file(Intake& intake, const std::string& path, bool optional, std::size_t most_bytes) {
    std::string text;
    try {
        text = utils::read_regular_file(path, most_bytes);
    } catch (const utils::FileError& error) {
        if (!(optional && is_missing(error))) add_unreadable(intake, path, error);
        return;
    }
    if (!text.empty()) intake.add_file(path);
    intake.take_yaml(text, path);
}

class OfFile final : public detail::Source {
public:
    OfFile(std::string path, FileOptions options)
        : Source(options.on_fault), path_(std::move(path)), options_(options) {}

    bool is_document() const noexcept override { return true; }
    void give(Intake& intake) const override {
        take_file(intake, path_, options_.optional, options_.most_bytes);
    }

private:
    std::string path_;
    FileOptions options_;
};

class OfDirectory final : public detail::Source {
public:
    OfDirectory(std::string path, DirectoryOptions options)
        : Source(options.on_fault), path_(std::move(path)), options_(options) {}

    void give(Intake& intake) const override {
        std::vector<std::string> names;
        try {
            names = utils::OpenFolder(path_).names();
        } catch (const utils::FileError& error) {
            if (!(options_.optional && is_missing(error))) add_unreadable(intake, path_, error);
            return;
        }
        for (const std::string& name : names) {
            if (!name.ends_with(".yaml")) continue;
            const std::string each = utils::path_in(path_, name);
            std::error_code error;
            if (std::filesystem::is_regular_file(each, error) || error) {
                take_file(intake, each, false, options_.most_bytes);
            } else {
                intake.add_fault(FaultKind::unusable_source, "", each,
                                 intake.ignoring() + utils::one_line(each) + ": it is no file");
            }
        }
    }

private:
    std::string path_;
    DirectoryOptions options_;
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
