#include "velmora/app/traits.hpp"

#include <utility>

#include "velmora/config/record.hpp"

namespace velmora::app {

namespace {

template <class T>
config::FieldDetails with(config::FieldDetails details, std::string_view key, T descriptor) {
    details.metadata = details.metadata.with(
        key, config::Descriptor(std::make_shared<const T>(std::move(descriptor))));
    return details;
}

KeyTraits traits_of(const config::FieldDetails& key) {
    const auto traits = key.metadata[_KEY_TRAITS].get_if<KeyTraits>();
    return traits != nullptr ? *traits : KeyTraits();
}

}  // namespace

config::FieldDetails with_traits(config::FieldDetails key, KeyTraits traits) {
    return with(std::move(key), _KEY_TRAITS, std::move(traits));
}

config::FieldDetails required(config::FieldDetails key) {
    KeyTraits traits = traits_of(key);
    traits.required = true;
    return with_traits(std::move(key), std::move(traits));
}

config::FieldDetails optional(config::FieldDetails key) {
    KeyTraits traits = traits_of(key);
    traits.optional = true;
    return with_traits(std::move(key), std::move(traits));
}

config::FieldDecl raw(const std::string& name, config::detail::Doc doc, RawOptions options) {
    const config::RecordType kind(name, {});
    return {name, kind,
            with(config::section(kind, std::move(doc), {.restart = options.restart}),
                 _SECTION_TRAITS, SectionTraits{.raw = true, .secret = options.secret})};
}

}  // namespace velmora::app
