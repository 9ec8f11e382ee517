// Texts: their characters, their quoted form, and the flags and lists that they spell.
#include <random>

#include <gtest/gtest.h>

#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/text_values.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::utils {
namespace {

void append_utf8(std::string& out, char32_t code) {
    const auto byte = [&](char32_t bits) { out += static_cast<char>(bits); };
    if (code < 0x80) return byte(code);
    if (code < 0x800) {
        byte(0xc0 | code >> 6U);
    } else {
        if (code < 0x10000) {
            byte(0xe0 | code >> 12U);
        } else {
            byte(0xf0 | code >> 18U);
            byte(0x80 | (code >> 12U & 0x3fU));
        }
        byte(0x80 | (code >> 6U & 0x3fU));
    }
    byte(0x80 | (code & 0x3fU));
}

// Reads a quoted form back, lone surrogates as the bytes that they stand for.
std::string unquoted(std::string_view form) {
    std::string text;
    for (std::size_t i = 1; i + 1 < form.size(); ++i) {
        if (form[i] != '\\') {
            text += form[i];
            continue;
        }
        const char letter = form[++i];
        const std::size_t digits = letter == 'x' ? 2 : letter == 'u' ? 4 : letter == 'U' ? 8 : 0;
        if (digits == 0) {
            text += letter == 't' ? '\t' : letter == 'n' ? '\n' : letter == 'r' ? '\r' : letter;
            continue;
        }
        const auto code =
            static_cast<char32_t>(std::stoul(std::string(form.substr(i + 1, digits)), nullptr, 16));
        if (code >= 0xdc80 && code <= 0xdcff) {
            text += static_cast<char>(code - 0xdc00);
        } else {
            append_utf8(text, code);
        }
        i += digits;
    }
    return text;
}

TEST(Quoted, EscapesWhatCannotBeShown) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "''"},
        {"abc", "'abc'"},
        {"it's", R"("it's")"},
        {R"(say "hi")", R"('say "hi"')"},
        {R"(it's "both")", R"('it\'s "both"')"},
        {"it's a \\", R"("it's a \\")"},
        {"a\tb\n\r\\", R"('a\tb\n\r\\')"},
        {std::string("\0\x1f\x7f", 3), R"('\x00\x1f\x7f')"},
        {"é日本\U0001f600", "'é日本\U0001f600'"},
        {"\u00a0\u00ad\u200b\u2028\u2003", R"('\xa0\xad\u200b\u2028\u2003')"},
        {"\U000e0001\U0010ffff\ufdd0\u0378", R"('\U000e0001\U0010ffff\ufdd0\u0378')"},
        {"\xff\xc3", R"('\udcff\udcc3')"},
        {"\xc0\xaf", R"('\udcc0\udcaf')"},  // overlong
        {"\xe0\x80\xaf", R"('\udce0\udc80\udcaf')"},
        {"\xf0\x80\x80\xaf", R"('\udcf0\udc80\udc80\udcaf')"},
        {"\xed\xa0\x80", R"('\udced\udca0\udc80')"},            // a surrogate
        {"\xf4\x90\x80\x80", R"('\udcf4\udc90\udc80\udc80')"},  // beyond U+10FFFF
        {"\xe2\x82", R"('\udce2\udc82')"},                      // truncated
        {"1234567\n12345678\x1f"
         "12345678\"'",
         R"('1234567\n12345678\x1f12345678"\'')"},
    };
    for (const auto& [text, form] : cases) EXPECT_EQ(quoted_text(text), form);
}

TEST(Quoted, IsPrintableAndReadsBack) {
    std::mt19937 random(20261122);
    const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (unsigned length = below(40); length > 0; --length) {
            if (below(8) == 0) {
                text += static_cast<char>(below(0x100));
            } else {
                constexpr unsigned limits[] = {0x80, 0x100, 0x3000, 0x110000};
                append_utf8(text, below(limits[below(4)]));
            }
        }
        const std::string form = quoted_text(text);
        ASSERT_EQ(unquoted(form), text) << form;
        for (std::size_t at = 0; at < form.size();) {
            const Character character = first_character(std::string_view(form).substr(at));
            ASSERT_TRUE(is_printable(character.code)) << form;
            at += character.size;
        }
        const std::string shown = shown_text(text);
        ASSERT_EQ(shown == form, prefix_size(form, shown_characters) == form.size()) << form;
        ASSERT_EQ(prefix_size(shown, shown_characters), shown.size());
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
