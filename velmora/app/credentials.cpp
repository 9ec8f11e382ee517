// The layer of credentials: files that are named after keys.
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::app {

namespace {

class OfCredentials final : public detail::Source {
public:
    explicit OfCredentials(CredentialsOptions options)
        : Source(options.on_fault), directory_(std::move(options.directory)) {
        const char* const given = std::getenv("CREDENTIALS_DIRECTORY");
        if (directory_.empty() && given != nullptr) directory_ = given;
    }

    void give(Intake& intake) const override {
        if (directory_.empty()) return;
        std::error_code error;
        if (std::filesystem::exists(directory_, error) &&
            !std::filesystem::is_directory(directory_, error)) {
            intake.add_error(FaultKind::unusable_source, "", directory_,
                             utils::one_line(directory_) + ": is no directory of credentials");
            return;
        }
        const auto& keys = intake.declaration().keys();
        for (std::size_t i = 0; i < keys.size(); ++i) {
            bool given = take(intake, i, keys[i].label(), true, false);
            for (const std::string& old : keys[i].traits().formerly)
                given = take(intake, i, keys[i].old_label(old), false, given) || given;
        }
    }

private:
    // Whether there is a value in the file named `label`.
    bool take(Intake& intake, std::size_t key, const std::string& label, bool current,
              bool given) const {
        const std::string path = directory_ + "/" + label;
        if (std::error_code error; !std::filesystem::exists(path, error) && !error) return false;
        const auto text = intake.read_text(intake.declaration().keys()[key].label(), path, path);
        if (!text || text->empty()) return false;
        if (!current) intake.add_old_name(key, path, path, directory_, given);
        if (!given) intake.take_text(key, *text, source_named(path), {.secret = true});
        return true;
    }

    std::string directory_;
};

}  // namespace

Layer credentials(CredentialsOptions options) {
    return Layer(std::make_shared<const OfCredentials>(std::move(options)));
}

}  // namespace velmora::app
