// Texts: their characters, their quoted form, and the flags and lists that they spell.
#include <random>

#include <gtest/gtest.h>

#include "support.hpp"
#include "velmora/utils/nearest_name.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/text_values.hpp"
#include "velmora/utils/texts.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::utils {
namespace {

// How the parts of a text are shown between single quotes, in any order.
const std::pair<std::string, std::string> shown_parts[] = {
    {"'", R"(\')"},
    {"\"", "\""},
    {"\\", R"(\\)"},
    {std::string("\t\n\r\0", 4), R"(\t\n\r\x00)"},
    {" ~\x1f\x7f", R"( ~\x1f\x7f)"},
    {"é日本\U0001f600", "é日本\U0001f600"},
    {"\u0080\u00a0\u00ad\u0378\u200b\u2028\uffff", R"(\x80\xa0\xad\u0378\u200b\u2028\uffff)"},
    {"\U00010000\U000e0001\U0010ffff", "\U00010000\\U000e0001\\U0010ffff"},
    {"\xff\x80", R"(\udcff\udc80)"},
    {"\xc1\xbf\xe0\x9f\xbf\xf0\x8f\xbf\xbf", R"(\udcc1\udcbf\udce0\udc9f\udcbf\udcf0\udc8f\udcbf\udcbf)"},  // overlong
    {"\xed\xa0\x80\xed\xbf\xbf", R"(\udced\udca0\udc80\udced\udcbf\udcbf)"},  // surrogates
    {"\xf4\x90\x80\x80", R"(\udcf4\udc90\udc80\udc80)"},                      // beyond U+10FFFF
    {"\xe2\x82", R"(\udce2\udc82)"},                                          // truncated
};

TEST(Quoted, EscapesWhatCannotBeShownWhereverItStands) {
    std::mt19937 random(20261122);
    for (int round = 0; round < 5000; ++round) {
        std::string text, shown, line;
        const bool long_runs = round % 32 == 0;
        for (auto parts = random() % (long_runs ? 20'000 : 90); parts > 0; --parts) {
            const auto& [part, escaped] = shown_parts[random() % std::size(shown_parts)];
            const bool plain = random() % (long_runs ? 5000 : 8) != 0;
            text += plain ? "a" : part;
            shown += plain ? "a" : escaped;
            line += plain ? "a" : part == "'" || part == "\\" ? part : escaped;
        }
        ASSERT_EQ(is_utf8(text), shown.find("\\udc") == shown.npos);
        const bool double_quotes = text.find('\'') != text.npos && text.find('"') == text.npos;
        for (std::size_t at = 0; double_quotes && (at = shown.find("\\'", at)) != shown.npos; ++at) shown.erase(at, 1);
        shown = double_quotes ? '"' + shown + '"' : '\'' + shown + '\'';
        ASSERT_EQ(quoted_text(text), shown);
        ASSERT_EQ(one_line(text), line);
        if (prefix_size(shown, 80) < shown.size()) shown = shown.substr(0, prefix_size(shown, 77)) + "...";
        ASSERT_EQ(shown_text(text), shown);
    }
}

TEST(Unicode, KnowsWhatIsPrintableAndWhiteSpace) {
    int printable = 0, white = 0;
    for (char32_t code = 0; code <= 0x110000; ++code) {
        printable += is_printable(code) ? 1 : 0;
        white += is_white_space(code) ? 1 : 0;
    }
    EXPECT_EQ(printable, 148'998) << "letters, marks, digits, punctuation and symbols of Unicode 15.0, and the space";
    EXPECT_EQ(white, 25);
    EXPECT_EQ(trimmed("\u3000 \ta b\u00a0\u2029\x85"), "a b\u00a0\u2029\x85") << "a stray byte is no white space";
    EXPECT_EQ(trimmed("\u2003\u1680\u2000\u200a\u2028\u202f\u205f\u3000\u00a0\u0085\t\n\v\f\r "), "");
    EXPECT_TRUE(equal_ignoring_case("AZ", "az") && !equal_ignoring_case("@[", "`{"));
    EXPECT_EQ(trimmed(std::string_view("\xe2\x80\x80").substr(1)), "\x80\x80");
}

TEST(Texts, AreTheSameNameWhenNoByteDiffers) {
    for (std::size_t size = 0; size < 20; ++size) {
        const std::string name(size, 'x'), copy = name;
        EXPECT_TRUE(same_name(name, copy) && !same_name(name, name + "x")) << size;
        for (std::size_t at = 0; at < size; ++at) {
            std::string other = name;
            other[at] = 'y';
            EXPECT_FALSE(same_name(name, other)) << other;
        }
    }
}

TEST(TextValues, ReadFlagsAndLists) {
    for (const char* text : {"true", "YES", "On", "y", "T", " 1\n", "\u00a0yes\u3000"})
        EXPECT_TRUE(parse_bool(text)) << text;
    for (const char* text : {"FALSE", "no", "oFf", "N", "f", "\t0 "}) EXPECT_FALSE(parse_bool(text)) << text;
    for (const auto& text :
         std::vector<std::string>{"", "2", "tru", "true!", "y es", " it's", "\u017f", std::string(10'000, 'y')}) {
        EXPECT_EQ(test::outcome([&] { return parse_bool(text); }),
                  "ValueError: " + shown_text(text) + " is not one of true/false, yes/no, on/off, y/n, t/f, 1/0");
    }
    EXPECT_EQ(split_csv(" a , b;c,,\td\u00a0,'e"), (std::vector<std::string>{"a", "b;c", "d", "'e"}));
    EXPECT_EQ(split_csv("\t"), std::vector<std::string>());
}

TEST(NearestName, IsASlipOfTheFingerAway) {
    const std::vector<std::string_view> known = {"port", "y", "abcxyf", "xmail", "barm", "gxid", "wful", "klxyo"};
    const std::pair<const char*, const char*> near[] = {{"prot", "port"}, {"por", "port"}, {"portt", "port"},
                                                        {"pert", "port"}, {"x", "y"},      {"abcdef", "abcxyf"}};
    for (const auto& [name, meant] : near)
        EXPECT_EQ(did_you_mean(name, known), "; did you mean '" + std::string(meant) + "'?");
    for (const char* name : {"host", "prox", "bail", "xywarm", "gicd", "wxfl", "klmno"})
        EXPECT_EQ(did_you_mean(name, known), "");
    EXPECT_EQ(did_you_mean("abcdef", {"abcxyf", "abcdeg", "abcdeh"}), "; did you mean 'abcdeg'?");
}

}  // namespace
}  // namespace velmora::utils
