#include "velmora/yaml/located.hpp"

#include <functional>
#include <stdexcept>
#include <utility>

#include "velmora/yaml/lines.hpp"
#include "velmora/yaml/parse.hpp"
#include "velmora/yaml/places.hpp"
#include "velmora/yaml/source.hpp"

namespace velmora::yaml {

using config::List;
using config::Mapping;

// The members that follow are made from those before.
struct LocatedValue::Data {
    Data(std::string_view text, std::string_view its_name)
        : name(its_name),
          source(source_of(text, name)),
          value(parse(source, &places)),
          lines(source.text) {
        places.finish();
    }

    Part key(const Mapping& in, const Mapping::Entry& entry) const {
        return places.part(in.identity(), 2 * index_of(in, entry));
    }
    Part value_of(const Mapping& in, const Mapping::Entry& entry) const {
        return places.part(in.identity(), 2 * index_of(in, entry) + 1);
    }
    Part item(const List& in, std::size_t index) const { return places.part(in.identity(), index); }

    std::string_view text(const Span& span) const {
        return std::string_view(source.text).substr(span.offset, span.size);
    }

    std::string name;
    Source source;
    Places places;
    config::ConfigValue value;
    Lines lines;

private:
    static std::size_t index_of(const Mapping& in, const Mapping::Entry& entry) {
        const std::less<> before;
        if (before(&entry, in.begin()) || !before(&entry, in.end()))
            throw std::out_of_range("an entry that is not in the mapping");
        return static_cast<std::size_t>(&entry - in.begin());
    }
};

LocatedValue::LocatedValue(std::shared_ptr<const Data> data) noexcept : data_(std::move(data)) {}

const config::ConfigValue& LocatedValue::value() const noexcept {
    return data_->value;
}

const std::string& LocatedValue::name() const noexcept {
    return data_->name;
}

std::string_view LocatedValue::text() const noexcept {
    return data_->source.text;
}

Span LocatedValue::root() const {
    return data_->places.root().content;
}

Span LocatedValue::key_span(const Mapping& in, const Mapping::Entry& entry) const {
    return data_->key(in, entry).content;
}

Span LocatedValue::value_span(const Mapping& in, const Mapping::Entry& entry) const {
    return data_->value_of(in, entry).content;
}

Span LocatedValue::item_span(const List& in, std::size_t index) const {
    return data_->item(in, index).content;
}

std::string_view LocatedValue::spelling(const Mapping& in, const Mapping::Entry& entry) const {
    return data_->text(data_->value_of(in, entry).spelling);
}

std::string_view LocatedValue::spelling(const List& in, std::size_t index) const {
    return data_->text(data_->item(in, index).spelling);
}

Position LocatedValue::position(std::size_t offset) const {
    return data_->lines.position(offset);
}

std::string_view LocatedValue::line_at(std::size_t offset) const {
    return data_->lines.line_at(offset);
}

LocatedValue load_located(std::string_view text, std::string_view name) {
    return LocatedValue(std::make_shared<const LocatedValue::Data>(text, name));
}

}  // namespace velmora::yaml
