#include "velmora/yaml/located.hpp"

#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "velmora/config/display.hpp"
#include "velmora/yaml/yaml.hpp"

namespace velmora::yaml {
namespace {

using config::ConfigValue;
using config::List;
using config::Mapping;

// The text as it is read, line by line.
std::string text_of(const LocatedValue& file) {
    std::string text;
    try {
        for (;;) text.append(file.line_at(text.size())) += '\n';
    } catch (const std::out_of_range&) {
        text.pop_back();
        return text;
    }
}

// The text with every part between "<" and ">", behind which its spelling stands after a "=", or with a "^" before it
// where the part has no size.
class Marked {
public:
    explicit Marked(const LocatedValue& file) : file_(file) {
        add(file.root());
        visit(file.value());
    }

    std::string text() const {
        std::string text = text_of(file_);
        for (auto mark = marks_.rbegin(); mark != marks_.rend(); ++mark) text.insert(mark->first, mark->second);
        return text;
    }

private:
    void add(const Span& span, std::string_view spelling = {}) {
        marks_[span.offset] += span.size == 0 ? "^" : "<";
        if (span.size > 0) marks_[span.offset + span.size].insert(0, spelling.empty() ? ">" : ">=").append(spelling);
    }

    void visit(const ConfigValue& value) {
        if (const auto* list = value.get_if<List>(); list != nullptr && is_new(*list)) {
            for (std::size_t i = 0; i < list->size(); ++i) {
                add(file_.item_span(*list, i), file_.spelling(*list, i));
                visit((*list)[i]);
            }
        }
        if (const auto* mapping = value.get_if<Mapping>(); mapping != nullptr && is_new(*mapping)) {
            for (const Mapping::Entry& entry : *mapping) {
                add(file_.key_span(*mapping, entry));
                visit(entry.key);
                add(file_.value_span(*mapping, entry), file_.spelling(*mapping, entry));
                visit(entry.value);
            }
        }
    }

    bool is_new(const auto& collection) { return visited_.insert(collection.identity()).second; }

    const LocatedValue& file_;
    std::map<std::size_t, std::string> marks_;
    std::set<const void*> visited_;
};

TEST(LoadLocated, TellsWherePartsStandAndHowScalarsAreSpelt) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", "^"},
        {"\n# c\n", "^\n# c\n"},
        {"--- # c\n&a 'b' # d\n...\n", "--- # c\n&a <'b'> # d\n...\n"},
        {"a: 0640\nb:  1.20 \nc: no", "^<a>: <0640>=0640\n<b>:  <1.20>=1.20 \n<c>: <no>"},
        {"- ~\n- !!int 5\n- '6'\n- &a TRUE\n- *a # b",
         "^- <~>\n- !!int <5>\n- <'6'>\n- &a <TRUE>=TRUE\n- <*a>=TRUE # b"},
        {"{a: &a !!int 5, b: *a, c: &c 0x1F, d: *c}",
         "<{<a>: &a !!int <5>, <b>: <*a>, <c>: &c <0x1F>=0x1F, <d>: <*c>=0x1F}>"},
        {"- &k a\n- *k : &l [.5]\n  b: *l", "^- &k <a>\n- ^<*k> : &l <[<.5>=.5]>\n  <b>: <*l>"},
        {"&a [*a, \"\\\"]\", 'it''s' , b c ]", "&a <[<*a>, <\"\\\"]\">, <'it''s'> , <b c> ]>"},
        {"a:\nb: # c\nc: &x\n\nd: !!str # e", "^<a>:^\n<b>:^ # c\n<c>: &x^\n\n<d>: !!str^ # e"},
        {"- \n-\n  # c\n- ? a\n  ? b\n  :\n  ? |\n   c", "^-^ \n-^\n  # c\n- ^? <a>^\n  ? <b>\n  :^\n  ? ^|\n   c^"},
        {"{a, 'b' :, c: , ? d , : e}", "<{<a>^, <'b'> :^, <c>:^ , ? <d>^ , ^: <e>}>"},
        {"a: b\n  1\nc: 'd\n  e'\nf: [g,\n  h]\ni: {\n }\n",
         "^<a>: ^b\n  1\n<c>: ^'d\n  e'\n<f>: ^[<g>,\n  <h>]\n<i>: ^{\n }\n"},
        {"- !!str |-\n    a\n- > # b", "^- !!str ^|-\n    a\n- ^> # b"},
        {"a: # b\n\n- c\n- - d\n  - e : f", "^<a>: # b\n\n^- <c>\n- ^- <d>\n  - ^<e> : <f>"},
        {"a: &m !!map # c\n  &k b: c", "^<a>: &m !!map # c\n  ^&k <b>: <c>"},
        {"[a: b, {c: d}: e, &x !!seq [f], {g: h}]",
         "<[^<a>: <b>, ^<{<c>: <d>}>: <e>, &x !!seq <[<f>]>, <{<g>: <h>}>]>"},
        {"\xef\xbb\xbf\"é\": 1\r\nü: \"ö\" \rb: c", "^<\"é\">: <1>=1\n<ü>: <\"ö\"> \n<b>: <c>"},
    };
    for (const auto& [text, marked] : cases) {
        EXPECT_EQ(Marked(load_located(text)).text(), marked);
        EXPECT_EQ(display(load_located(text).value()), display(load(text)));
    }
}

TEST(LoadLocated, CountsLinesAndCharacters) {
    const std::string characters[] = {"a", "é", "€", "😀"};
    std::mt19937 random(1);
    std::string text = "'";
    for (int line = 0; line < 60; ++line, text += '\n') {
        for (auto left = random() % (line % 3 == 0 ? 3000 : 40); left > 0; --left) text += characters[random() % 4];
    }
    text.append(255 - text.size() % 256, 'a') += "'";  // Whole blocks.
    const LocatedValue file = load_located(text, "f");
    EXPECT_EQ(file.name(), "f");
    EXPECT_EQ(text_of(file), text);
    std::size_t line = 1, column = 1, start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if ((text[i] & 0xc0) == 0x80) continue;
        const Position position = file.position(i);
        ASSERT_EQ(position.line, line) << i;
        ASSERT_EQ(position.column, column) << i;
        ASSERT_EQ(file.line_at(i), std::string_view(text).substr(start, text.find('\n', start) - start)) << i;
        ++column;
        if (text[i] == '\n') ++line, column = 1, start = i + 1;
    }
}

TEST(LoadLocated, KnowsOnlyWhatIsInItsValue) {
    const LocatedValue file = load_located("{a: [1]}");
    const auto mapping = file.value().get<Mapping>();
    const auto list = mapping.find("a")->get<List>();
    const Mapping other = mapping.copy();
    EXPECT_THROW(file.key_span(other, *other.begin()), std::out_of_range);
    EXPECT_THROW(file.value_span(mapping, *other.begin()), std::out_of_range);
    EXPECT_THROW(file.item_span(list, 1), std::out_of_range);
    EXPECT_THROW(file.spelling(list.copy(), 0), std::out_of_range);
    EXPECT_THROW(file.position(9), std::out_of_range);
}

}  // namespace
}  // namespace velmora::yaml
