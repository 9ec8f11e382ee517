// Sections that the application reads itself.
//
//     const Raw& listeners = now.raw("listeners");
//     const auto ports = listeners.value().get<List>();
//     for (std::size_t i = 0; i < ports.size(); ++i)
//         if (!is_port(ports[i])) std::cerr << listeners.fault(ports, i, "no port");
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "velmora/app/fault.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/yaml/located.hpp"

namespace velmora::app {

class Document;

/// What the strongest source that gives a raw section gives, unchecked. Immutable, cheap to copy.
class VELMORA_EXPORT Raw {
public:
    /// Of a section that nothing gives.
    Raw() = default;
    /// For loads. `document`, where the value stands in one, may be null.
    Raw(config::ConfigValue value, std::string source, std::shared_ptr<const Document> document,
        bool secret)
        : value_(std::move(value)),
          source_(std::move(source)),
          document_(std::move(document)),
          secret_(secret) {}

    /// Null when nothing gives it. Throws ConfigKeyError for a secret section.
    const config::ConfigValue& value() const;
    /// The same of any section.
    const config::ConfigValue& reveal() const noexcept { return value_; }
    /// The display form; "(secret)" for what a secret section is given.
    std::string shown() const;
    /// As messages name it: "/etc/webd.yaml".
    const std::string& source() const noexcept { return source_; }
    /// Knows the places in the value; null when it stands in no file.
    const yaml::LocatedValue* document() const noexcept;

    /// A warning about what is under a key or at a position in the value, for the application to
    /// report; `entry` and `index` are of `in`, which is in the value. What is not printable in the
    /// message is escaped.
    Fault fault(const config::Mapping& in, const config::Mapping::Entry& entry,
                const std::string& message) const;
    Fault fault(const config::List& in, std::size_t index, const std::string& message) const;

private:
    Fault fault_at(yaml::Span span, const std::string& message) const;

    config::ConfigValue value_;
    std::string source_;
    std::shared_ptr<const Document> document_;
    bool secret_ = false;
};

}  // namespace velmora::app
