// The layer of credentials: files that are named after keys.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "velmora/app/source.hpp"
#include "velmora/utils/nearest_name.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/read_file.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

namespace {

using utils::FileError;
using State = Giver::State;

class OfCredentials final : public detail::Source {
public:
    explicit OfCredentials(CredentialsOptions options)
        : Source(options.on_fault), directory_(std::move(options.directory)) {
        const char* const given = std::getenv("CREDENTIALS_DIRECTORY");
        if (directory_.empty() && given != nullptr) directory_ = given;
    }

    void give(Intake& intake) const override {
        if (directory_.empty()) return;
        try {
            give(intake, utils::OpenFolder(directory_));
        } catch (const FileError& error) {
            if (error.kind() == FileError::Kind::missing) {
                intake.add_giver({Giver::Kind::folder, State::missing, source_named(directory_)});
            } else if (error.kind() == FileError::Kind::no_folder) {
                intake.add_unreadable(directory_, "is no directory of credentials");
            } else {
                intake.add_unreadable(directory_, std::string("cannot be read: ") + error.what());
            }
        }
    }

private:
    struct Turn {
        Intake& intake;
        const utils::OpenFolder& folder;
        std::size_t key;
        Giver giver = {.kind = Giver::Kind::credential,
                       .state = State::missing,
                       .source = nullptr,
                       .part = key};
        bool unread = false;
    };

    void give(Intake& intake, const utils::OpenFolder& folder) const {
        const std::vector<std::string> names = folder.names();
        const auto is_there = [&names](const std::string& name) {
            return std::binary_search(names.begin(), names.end(), name);
        };
        const auto& keys = intake.declaration().keys();
        bool gives = false;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            Turn turn = {intake, folder, i};
            if (is_there(keys[i].label())) take(turn, keys[i].label(), false);
            for (const std::string& old : keys[i].traits().formerly) {
                const std::string label = keys[i].old_label(old);
                if (is_there(label)) take(turn, label, true);
            }
            gives = gives || turn.giver.state == State::gives;
            if (!turn.unread) intake.add_giver(std::move(turn.giver));
        }
        if (gives) intake.add_giver({Giver::Kind::folder, State::gives, source_named(directory_)});
        advise(intake, names);
    }

    void take(Turn& turn, const std::string& label, bool old) const {
        const SourceName path = source_named(utils::path_in(directory_, label));
        std::string text;
        try {
            text = utils::without_line_end(turn.folder.read(label, most_file_bytes));
        } catch (const FileError& error) {
            if (error.kind() == FileError::Kind::missing) return;  // A link to nowhere.
            turn.intake.add_unreadable(turn.key, *path,
                                       std::string("cannot be read: ") + error.what());
            turn.unread = true;
            return;
        }
        const bool given = turn.giver.state == State::gives;
        if (text.empty()) {
            if (!given) turn.giver.state = State::empty;
            if (!given) turn.giver.source = path;
            return;
        }
        if (old) turn.intake.add_old_name(turn.key, *path, *path, directory_, given);
        if (given) return;
        turn.giver.state = State::gives;
        turn.giver.source = path;
        turn.intake.take_text(turn.key, text, path, {.privacy = Privacy::secret});
    }

    // Advises of files whose names are nearly those of keys.
    void advise(Intake& intake, const std::vector<std::string>& names) const {
        const Declaration::Data& declaration = intake.declaration();
        std::vector<std::string_view> labels;
        for (const JudgedKey& key : declaration.keys()) labels.emplace_back(key.label());
        for (const std::string& name : names) {
            const bool known = declaration.find_key(name) != Declaration::Data::none ||
                               declaration.find_old_key(name) != Declaration::Data::none;
            if (known || !intake.may_hint()) continue;
            const std::string near = utils::did_you_mean(name, labels);
            if (near.empty()) continue;
            intake.add_unread(utils::path_in(directory_, name), near);
        }
    }

    std::string directory_;
};

}  // namespace

Layer credentials(CredentialsOptions options) {
    return Layer(std::make_shared<const OfCredentials>(std::move(options)));
}

}  // namespace velmora::app
