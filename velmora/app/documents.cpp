// Layers that are mappings of sections: values, YAML texts, files and directories.
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/read_file.hpp"

namespace velmora::app {

namespace {

using utils::FileError;
using State = Giver::State;

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

void add_unreadable(Intake& intake, const std::string& path, const FileError& error) {
    intake.add_unreadable(path, std::string("cannot be read: ") + error.what());
}

void check_path(const std::string& path) {
    if (path.empty()) throw FileError(FileError::Kind::other, "its path is empty");
}

class OfFile final : public detail::Source {
public:
    OfFile(std::string path, FileOptions options)
        : Source(options.on_fault), path_(std::move(path)), options_(options) {}

    bool is_document() const noexcept override { return true; }
    void give(Intake& intake) const override {
        std::string text;
        try {
            check_path(path_);
            text = utils::read_regular_file(path_, options_.most_bytes);
        } catch (const FileError& error) {
            if (!options_.optional || error.kind() != FileError::Kind::missing)
                return add_unreadable(intake, path_, error);
            return intake.add_giver({Giver::Kind::file, State::missing, source_named(path_)});
        }
        intake.take_yaml(text, path_);
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
        try {
            check_path(path_);
            const utils::OpenFolder folder(path_);
            give(intake, folder, folder.names());
        } catch (const FileError& error) {
            if (!options_.optional || error.kind() != FileError::Kind::missing)
                return add_unreadable(intake, path_, error);
            intake.add_giver({Giver::Kind::folder, State::missing, source_named(path_)});
        }
    }

private:
    void give(Intake& intake, const utils::OpenFolder& folder,
              const std::vector<std::string>& names) const {
        bool gives = false;
        bool has_files = false;
        for (const std::string& name : names) {
            const std::string path = utils::path_in(path_, name);
            if (!name.ends_with(".yaml")) {
                advise(intake, path);
                continue;
            }
            std::string text;
            try {
                text = folder.read(name, options_.most_bytes);
            } catch (const FileError& error) {
                if (error.kind() == FileError::Kind::no_file) {
                    intake.add_fault(FaultKind::unusable_source, "", path,
                                     intake.ignoring() + utils::one_line(path) + ": it is no file");
                } else {
                    add_unreadable(intake, path, error);
                    has_files = true;
                }
                continue;
            }
            has_files = true;
            if (intake.take_yaml(text, path)) gives = true;
        }
        // One of which all files are empty is neither.
        if (gives || !has_files)
            intake.add_giver(
                {Giver::Kind::folder, gives ? State::gives : State::empty, source_named(path_)});
    }

    // Advises of a file whose name ends in nearly what names must end in.
    static void advise(Intake& intake, const std::string& path) {
        std::string end = path.substr(path.rfind('.') + 1);
        for (char& c : end) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        if (end == "yml" || end == "yaml")
            intake.add_unread(path, R"(: names must end in ".yaml")");
    }

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
