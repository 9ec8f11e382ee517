// A declared configuration, ready to be loaded from layers.
//
//     const Declaration declaration(config);   // the record type of the configuration
//     const Values now = declaration.load({file("/etc/webd.yaml"), environment()});
//     now.get<std::uint16_t>("server.port");
//
// Where a configuration is to become structs of the program's own, schema.hpp declares it from
// these.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/app/fault.hpp"
#include "velmora/app/key.hpp"
#include "velmora/app/layer.hpp"
#include "velmora/app/values.hpp"
#include "velmora/config/record_type.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"

namespace velmora::app {

class Declaration;

namespace detail {
struct BoundSection;
VELMORA_EXPORT Declaration declare(std::vector<BoundSection> sections,
                                   std::shared_ptr<void> (*make)());
using Bind = std::function<std::shared_ptr<const void>(const Values::Data&)>;
}  // namespace detail

struct LoadOptions {
    /// Is given every fault when the load has succeeded, in order; `log_fault` when it is empty.
    std::function<void(const Fault&)> report = nullptr;
};

/// Sections and their keys: the two levels that there are. A handle: copies are one declaration.
/// POSIX and exceptions are required.
class VELMORA_EXPORT Declaration {
public:
    /// Throws TypeError, as `config::sections_of` does, and with a line for all that `lint` finds.
    explicit Declaration(const config::RecordType& config_type);

    /// In the order of declaration.
    std::vector<Section> sections() const;

    /// The section of this name, or the key with this label. Throw ConfigKeyError, which names the
    /// nearest one, when there is none. The second takes constant time.
    Section section(std::string_view name) const;
    Key key(std::string_view label) const;

    /// The keys that a person means by a label, by the name of a section or by that of keys in any
    /// section, in the order of declaration. Throws ConfigKeyError when there are none.
    std::vector<Key> keys(std::string_view name) const;

    /// What is wrong with values that each are accepted; an empty text for nothing.
    using Check = std::function<std::string(const Values&)>;

    /// The declaration with a check that every load makes of what is about to hold; a load that it
    /// finds fault with fails. Earlier checks stay. `labels` are the keys that it speaks of, at
    /// least one. Throws ConfigKeyError for a label that is no key's, TypeError for a null `rule`.
    [[nodiscard]] Declaration check(std::vector<std::string> labels, Check rule) const;

    /// The values that hold when each layer goes over those before it. Throws LoadError for faults
    /// that are errors, with all others and the values in it; then nothing has been reported.
    Values load(const std::vector<Layer>& layers, const LoadOptions& options = {}) const;

    /// All that is wrong with a source looked at by itself, as a load would report it, but for what
    /// others may mend: required keys that it does not give, and checks.
    std::vector<Fault> faults_of(const Layer& layer) const;

    class Data;

private:
    friend class Loading;
    friend Declaration detail::declare(std::vector<detail::BoundSection> sections,
                                       std::shared_ptr<void> (*make)());

    /// What is made of the values of a load before they are checked, and the checks.
    struct Uses;

    Declaration(const config::RecordType& config_type, detail::Bind bind,
                const std::vector<std::string>& mistakes);

    utils::NotNull<Data> data_;
    utils::NotNull<Uses> uses_;
};

}  // namespace velmora::app
