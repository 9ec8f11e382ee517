// Takes what layers give, judges it and keeps it. Private.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/app/declaration_data.hpp"
#include "velmora/app/document.hpp"
#include "velmora/app/layer.hpp"
#include "velmora/app/values_data.hpp"
#include "velmora/yaml/located.hpp"
#include "velmora/yaml/yaml.hpp"

namespace velmora::app {

using SourceName = std::shared_ptr<const std::string>;

inline SourceName source_named(std::string name) {
    return std::make_shared<const std::string>(std::move(name));
}

class Intake {
public:
    /// `alone` when the one layer is a document.
    Intake(std::shared_ptr<const Declaration::Data> declaration, bool alone);

    const Declaration::Data& declaration() const noexcept { return *declaration_; }

    /// What is given from now on comes from a layer that goes over those before.
    void begin_layer(OnFault on_fault) noexcept {
        on_fault_ = on_fault;
        ++layers_;
    }

    /// Says what there is of something that may give values; its layer is the present one.
    void add_giver(Giver giver);
    /// A mapping of sections; whether it has any. `document` is null when it stands in none.
    bool take_document(const config::ConfigValue& root, const std::string& name,
                       std::shared_ptr<const Document> document);
    /// The same of a YAML text.
    bool take_yaml(const std::string& text, const std::string& name);
    /// Says that a source cannot be read, whose values could be those of any key, or of the one at
    /// a position.
    void add_unreadable(const std::string& source, const std::string& why);
    void add_unreadable(std::size_t key, const std::string& source, const std::string& why);

    struct TextOptions {
        std::string note = {};  ///< Goes with its fault.
        Privacy privacy = Privacy::open;
        bool doubt_quotes = false;  ///< Whether quotes around it are worth advice.
    };
    /// A text for the key at a position.
    void take_text(std::size_t key, const std::string& text, const SourceName& source,
                   const TextOptions& options);
    /// A text that the key at a position does not take from there.
    void refuse_text(std::size_t key, const std::string& text, const SourceName& source,
                     const std::string& why, Privacy privacy = Privacy::open);
    /// Says that the key at a position is given by a name that it had before; `given` says that it is
    /// by its own as well. `shown_source` is what messages call the source.
    Fault& add_old_name(std::size_t key, const std::string& old, const std::string& source,
                        const std::string& shown_source, bool given);
    /// Whether it is worth to look for what an unknown name was meant to be, as for many it is not.
    bool may_hint() noexcept { return hints_++ < most_hints; }
    /// "Ignoring ", or "Refusing " when the layer does.
    std::string ignoring() const;

    /// A fault of the layer, an error when the layer refuses.
    Fault& add_fault(FaultKind kind, std::string key, std::string source, std::string message);
    /// A fault that is an error always.
    Fault& add_error(FaultKind kind, std::string key, std::string source, std::string message);

    /// What is worth knowing although the value holds; it never stands in the way.
    Fault& add_advice(FaultKind kind, std::string key, std::string source, std::string message);
    /// Advice that something is not read whose name is nearly one that is; `why` begins with a
    /// punctuation mark.
    Fault& add_unread(const std::string& what, const std::string& why);

    /// All values and faults, those of required keys that have none if they are `required`. Places
    /// can still be asked for.
    Values::Data finish(bool required = true);
    /// Has the faults say which values hold in place of refused ones.
    void say_what_holds(Values::Data& data) const;

    /// Says that a fault is where the value stands that holds for the key at a position.
    void place_at_held(std::size_t key, Fault& fault) const;

private:
    struct Source;
    struct Unknown;

    void take_section(const Source& in, std::size_t section, const config::Mapping& top,
                      const config::Mapping::Entry& entry, std::vector<Unknown>& unknown);
    void take_value(const Source& in, std::size_t key, const config::Mapping& section,
                    const config::Mapping::Entry& entry);
    void add_unknown(const Source& in, const Unknown& unknown);
    void add_unreadable(const std::string& text, const std::string& name, const yaml::Error& error);
    std::string named(const Source& in) const;
    std::string shown(std::size_t key, const config::ConfigValue& value) const;
    std::string keeping(const Values::Data& data, std::size_t key) const;
    void add_missing(std::size_t key);
    /// What might have given a key a value, and is empty; nothing when there is none.
    std::string where_empty(std::size_t key) const;

    std::shared_ptr<const Declaration::Data> declaration_;
    Values::Data values_;
    /// The keys whose values were refused, by the positions of their faults.
    std::vector<std::pair<std::size_t, std::size_t>> refused_;
    /// Where the values stand that hold.
    std::vector<std::pair<std::shared_ptr<const Document>, yaml::Span>> places_;
    /// By key, whether it may be given where it could not be read.
    std::vector<bool> unread_;
    bool alone_;
    static constexpr std::size_t most_hints = 20;
    std::size_t hints_ = 0;
    std::size_t layers_ = 0;
    OnFault on_fault_ = OnFault::warn;
};

}  // namespace velmora::app
