// Texts: their characters, their quoted form, and the flags and lists that they spell.
#include <random>

#include <gtest/gtest.h>

#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/text_values.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::utils {
namespace {

// How the parts of a text are shown between single quotes, in any order.
const std::pair<std::string, std::string> shown_parts[] = {
    {"'", R"(\')"},
    {"\"", "\""},
    {"\\", R"(\\)"},
    {"\t\n\r", R"(\t\n\r)"},
    {std::string(1, '\0'), R"(\x00)"},
    {" ~\x1f\x7f", R"( ~\x1f\x7f)"},
    {"é日本\U0001f600", "é日本\U0001f600"},
    {"\u0080\u00a0\u00ad", R"(\x80\xa0\xad)"},
    {"\u0378\u200b\u2028\uffff", R"(\u0378\u200b\u2028\uffff)"},
    {"\U00010000\U000e0001\U0010ffff", "\U00010000\\U000e0001\\U0010ffff"},
    {"\xff\x80", R"(\udcff\udc80)"},
    {"\xc1\xbf", R"(\udcc1\udcbf)"},  // overlong
    {"\xe0\x9f\xbf", R"(\udce0\udc9f\udcbf)"},
    {"\xf0\x8f\xbf\xbf", R"(\udcf0\udc8f\udcbf\udcbf)"},
    {"\xed\xa0\x80", R"(\udced\udca0\udc80)"},            // a surrogate
    {"\xf4\x90\x80\x80", R"(\udcf4\udc90\udc80\udc80)"},  // beyond U+10FFFF
    {"\xe2\x82", R"(\udce2\udc82)"},                      // truncated
};

TEST(Quoted, EscapesWhatCannotBeShownWhereverItStands) {
    std::mt19937 random(20261122);
    for (int round = 0; round < 5000; ++round) {
        std::string text;
        std::string shown;
        std::string line;
        for (auto parts = random() % 90; parts > 0; --parts) {
            const auto& [part, escaped] = shown_parts[random() % std::size(shown_parts)];
            const bool plain = random() % 8 != 0;
            text += plain ? "a" : part;
            shown += plain ? "a" : escaped;
            line += plain ? "a" : part == "'" || part == "\\" ? part : escaped;
        }
        const bool double_quotes = text.find('\'') != text.npos && text.find('"') == text.npos;
        for (std::size_t at = 0; double_quotes && (at = shown.find("\\'", at)) != shown.npos; ++at)
            shown.erase(at, 1);
        shown = double_quotes ? '"' + shown + '"' : '\'' + shown + '\'';
        ASSERT_EQ(quoted_text(text), shown);
        ASSERT_EQ(one_line(text), line);
        if (prefix_size(shown, 80) < shown.size())
            shown = shown.substr(0, prefix_size(shown, 77)) + "...";
        ASSERT_EQ(shown_text(text), shown);
    }
}

TEST(Unicode, KnowsWhatIsPrintableAndWhiteSpace) {
    int printable = 0;
    int white = 0;
    for (char32_t code = 0; code <= 0x110000; ++code) {
        printable += is_printable(code) ? 1 : 0;
        white += is_white_space(code) ? 1 : 0;
    }
    EXPECT_EQ(printable, 148'998)
        << "letters, marks, digits, punctuation and symbols of Unicode 15.0, and the space";
    EXPECT_EQ(white, 25);
    EXPECT_EQ(trimmed("\u3000 \ta b\u00a0\u2029\x85"), "a b\u00a0\u2029\x85")
        << "a stray byte is no white space";
    EXPECT_EQ(trimmed("\u2003\u1680"), "");
}

TEST(TextValues, ReadFlags) {
    for (const char* text : {"true", "YES", "On", "y", "T", " 1\n", "\u00a0yes\u3000"})
        EXPECT_TRUE(parse_bool(text)) << text;
    for (const char* text : {"FALSE", "no", "oFf", "N", "f", "\t0 "})
        EXPECT_FALSE(parse_bool(text)) << text;
    const std::pair<std::string, std::string> refused[] = {
        {"", "''"},
        {"2", "'2'"},
        {"tru", "'tru'"},
        {"true!", "'true!'"},
        {"y es", "'y es'"},
        {"it's", "\"it's\""},
        {std::string(10'000'000, 'y'), "'" + std::string(76, 'y') + "..."},
        {"\u017f", "'\u017f'"}};
    for (const auto& [text, shown] : refused) {
        try {
            (void)parse_bool(text);
            ADD_FAILURE() << shown;
        } catch (const ValueError& error) {
            EXPECT_EQ(error.what(),
                      shown + " is not one of true/false, yes/no, on/off, y/n, t/f, 1/0");
        }
    }
}

TEST(TextValues, SplitLists) {
    using Texts = std::vector<std::string>;
    const std::pair<const char*, Texts> cases[] = {{"", {}},
                                                   {" , ,", {}},
                                                   {"a", {"a"}},
                                                   {" a , b c,,\td\u00a0,", {"a", "b c", "d"}},
                                                   {"'a,b'", {"'a", "b'"}}};
    for (const auto& [text, items] : cases) EXPECT_EQ(split_csv(text), items) << text;
}

}  // namespace
}  // namespace velmora::utils
