#include "velmora/yaml/yaml.hpp"

#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "folder.hpp"
#include "support.hpp"
#include "velmora/utils/read_file.hpp"

namespace velmora::yaml {
namespace {

using config::ConfigValue;
using config::List;
using config::Mapping;
using test::repeated;
using Cases = std::vector<std::pair<std::string, std::string>>;

// What a text is read as, or the error in it.
std::string result_of(std::string_view text) {
    try {
        return display(load(text, "f"));
    } catch (const Error& error) {
        return error.message();
    }
}

void check(const Cases& cases) {
    for (const auto& [text, result] : cases) EXPECT_EQ(result_of(text), result) << text;
}

TEST(Load, ReadsPlainScalarsByTheCoreSchema) {
    check({
        {"", "None"},
        {"---\n...\n# end", "None"},
        {"[~, null, Null, NULL, nULL]", "[None, None, None, None, 'nULL']"},
        {"[true, True, TRUE, false, False, FALSE]", "[True, True, True, False, False, False]"},
        {"[yes, on, tRUE, <<]", "['yes', 'on', 'tRUE', '<<']"},
        {"[9, -0, +7, 007, 0o17, 0xfF]", "[9, 0, 7, 7, 15, 255]"},
        {"[0o8, -0x1, 0x, 1_0, 0b1, 1:2]", "['0o8', '-0x1', '0x', '1_0', '0b1', '1:2']"},
        {"-123456789012345678901234567890", "-123456789012345678901234567890"},
        {"0x004b3b4ca85a86c47a098a224000000007", "100000000000000000000000000000000000007"},
        {"0o2000000000000000000000", "18446744073709551616"},
        {"0o" + repeated("0", 4095) + "7", "7"},
        {"[1., .5, -1e3, 1.e+3, +1.5E-1]", "[1.0, 0.5, -1000.0, 1000.0, 0.15]"},
        {"[., .e1, 1e, 1.5.0, inf, +-1.0]", "['.', '.e1', '1e', '1.5.0', 'inf', '+-1.0']"},
        {"[.inf, -.Inf, +.INF, .nan, .NaN, .NAN, -.nan, .iNF]", "[inf, -inf, inf, nan, nan, nan, '-.nan', '.iNF']"},
        {"[1e400, -1e400, 1e-400, 1e99999999999999999999]", "[inf, -inf, 0.0, inf]"},
        {"[!!str 5, !!int '5', !!float 1, !!bool \"true\", !!null '', ! 5, !!str ]",
         "['5', 5, 1.0, True, None, '5', '']"},
        {"!!str", "''"},
        {"!!seq [!!map {}, ! {}, !<tag:yaml.org,2002:str> 1]", "[{}, {}, '1']"},
    });
}

TEST(Load, ReadsScalarsInEveryStyle) {
    check({
        {"['1', \"true\", '', 'it''s']", R"(['1', 'true', '', "it's"])"},
        {R"("\0\a\b\e\f\n\r\t\v\	\ \/\"\\\_\N\L\P\x41\u00e9\u20ac\U0001f600\U0010ffff")",
         R"('\x00\x07\x08\x1b\x0c\n\r\t\x0b\t /"\\\xa0\x85\u2028\u2029Aé€😀\U0010ffff')"},
        {R"("\x7f\x80\u07ff\u0800\uffff\U00010000")", "'\\x7f\\x80\u07ff\u0800\\uffff\U00010000'"},
        {"a: 'x \n\n\n  y\t\n  z \n  '", R"({'a': 'x\n\ny z '})"},
        {"\"x\\t \n y \\\n\n\n z\\\n  \\ \\\\\"", R"('x\t y \n\nz \\')"},
        {"'x\n\n\n'", R"('x\n\n')"},
        {"a: b \t\n  c # d\ne:\n\n\n f:g,#h\n\n\n  - i", R"({'a': 'b c', 'e': 'f:g,#h\n\n- i'})"},
        {"[a b\n c?, -d, ?e, :f, /i?j=k]", "['a b c?', '-d', '?e', ':f', '/i?j=k']"},
        {"- |-\n  null\n-  |+ # c\n  x\n\n- >+\n\n\n- >\n\n- |\n  1", R"(['null', 'x\n\n', '\n\n', '', '1'])"},
        {"a: >\n\n  b\n  c\n\n  d\n   e\n  f\n\n\n# g", R"({'a': '\nb c\nd\n e\nf\n'})"},
        {"a:\n - |1\n   b\n  \tc\n - >2-\n    d\n - |9\n" + repeated(" ", 11) + "e",
         R"({'a': [' b\n\tc\n', ' d', ' e']})"},
        {"--- # c\n&a !!str |\n#a\n%b: [", R"('#a\n%b: [')"},
        {"- |+\n   ", R"(['\n'])"},
        {"--- >-\n#a\n[", "'#a ['"},
        {"[&a'b 1, *a'b ]", "[1, 1]"},
    });
}

TEST(Load, ReadsEveryStructure) {
    check({
        {"a:\n- b\n-\n  - c: d\n    e:\nf:\n g: h", "{'a': ['b', [{'c': 'd', 'e': None}]], 'f': {'g': 'h'}}"},
        {"- - a\n  -\n- ? b\n  : - c\n  ? d\n-   e: f", "[['a', None], {'b': ['c'], 'd': None}, {'e': 'f'}]"},
        {"? |\n a\n: b\n[c]: d\n\"e\" : f\n:\n- g", R"({'a\n': 'b', ['c']: 'd', 'e': 'f', None: ['g']})"},
        {"{a: b, \"c\":d, e, 'f' :, ? g : h, ? , {i: j}: k,}",
         "{'a': 'b', 'c': 'd', 'e': None, 'f': None, 'g': 'h', None: None, {'i': 'j'}: 'k'}"},
        {"[a: b, {c: d}: e, {f: g}, {}, [h]:i, ? j, : k, &l {m: n}, &o {}: p]",
         "[{'a': 'b'}, {{'c': 'd'}: 'e'}, {'f': 'g'}, {}, {['h']: 'i'}, {'j': None}, "
         "{None: 'k'}, {'m': 'n'}, {{}: 'p'}]"},
        {"&m\n!!map\n&k a: !!str\nb: &n # c\n\n  - d\ne: [*k, *n, !!str , &p: ]\n*n : *p:",
         "{'a': '', 'b': ['d'], 'e': ['a', ['d'], '', None], ['d']: None}"},
        {"a: [\n  1,\n  2\n]\nb:\t{ # c\n}\n\t\nc: \t1\n\t# d\ne: 2", "{'a': [1, 2], 'b': {}, 'c': 1, 'e': 2}"},
        {"\xef\xbb\xbf# c\n%YAML 1.3 # c\n%TAG !az09AZ-! tag:yaml.org,2002:\n%YAMLS 2\n--- # c\n"
         "a: !az09AZ-!str 1\n... # c\n...\n",
         "{'a': '1'}"},
        {" \t#a\n---\t1\n...\t#b\n \t\n", "1"},
        {"a: |\r\n  b\r\n  c\rd: \"e\r\n  f\" # g\rh: \xc3\xa9", R"({'a': 'b\nc\n', 'd': 'e f', 'h': 'é'})"},
        {"\"\x7f\xc2\x80\xef\xbf\xbe\": \xc2\x85", R"({'\x7f\x80\ufffe': '\x85'})"},
        {repeated("é", 1024) + ": 1\n? " + repeated("k", 1025) + "\n: 2",
         "{'" + repeated("é", 1024) + "': 1, '" + repeated("k", 1025) + "': 2}"},
    });
}

TEST(Load, SharesWhatAliasesName) {
    const ConfigValue value = load("a: &x [&t 1, *t]\nb: *x\nc: &x {}\nd: [*x]");
    EXPECT_EQ(display(value), "{'a': [1, 1], 'b': [1, 1], 'c': {}, 'd': [{}]}");
    EXPECT_TRUE(value.find("a")->get<List>().same_as(value.find("b")->get<List>()));

    const ConfigValue loop = load("&a {b: &b [*a, *b, &c [*b]], c: *c, d: &d [&d 1], e: *d}");
    EXPECT_EQ(display(loop),
              "{'b': [{...}, [...], [[...]]], 'c': [[{...}, [...], [...]]], "
              "'d': [1], 'e': 1}");
    EXPECT_TRUE(loop.find("b")->get<List>()[0].get<Mapping>().same_as(loop.get<Mapping>()));
}

// Every fault with texts that have it and the places where.
TEST(Load, SaysWhereAndWhatIsWrong) {
    const std::pair<std::string, Cases> faults[] = {
        {"a quote above is not closed",
         {{"a: \"b\nc: d", "2:1"}, {"a: 'b\n\tc'", "2:1"}, {"- |\n  a\n- \"\\\n\"", "4:1"}}},
        {"this quote is never closed", {{"- \"b\n\n", "1:3"}, {"a: 'b  ", "1:4"}}},
        {"a backslash that begins no", {{"\"\\\xc3\xa9\"", "1:2"}}},
        {"two hexadecimal digits", {{R"("\x4")", "1:4"}, {R"("\u+123")", "1:4"}}},
        {"no character has this number", {{R"("\ud800")", "1:4"}, {R"("\udfff")", "1:4"}, {R"("\U00110000")", "1:4"}}},
        {"a comment needs a space", {{"\"x\"#c", "1:4"}, {"[a]#c", "1:4"}, {"[[a]#\n]", "1:5"}}},
        {"indent the lines", {{"a: [\nb]", "2:1"}, {"a: [b,\n\t]", "2:2"}}},
        {"indent the lines", {{"a: [b\n, c ]", "2:1"}, {"  a: [b\n ]", "2:2"}}},
        {"nothing is before", {{"[a,, b]", "1:4"}, {"[,]", "1:2"}, {"{,}", "1:2"}, {"{a: 1,, b: 2}", "1:7"}}},
        {"a ',' or the closing",
         {{"[a, b", "1:6"},
          {"{a: 1 b: 2}", "1:8"},
          {"[a\n: b]", "2:1"},
          {"[a\n b: c]", "2:3"},
          {"[a{b}]", "1:3"},
          {"[a[b]]", "1:3"}}},
        {"a ',' or the closing", {{"{\"a\"\n: 1}", "1:2"}, {"[\"a\nb\": c]", "2:3"}}},
        {"this bracket closes none", {{"[a]]", "1:4"}, {"a: ]", "1:4"}, {"- }", "1:3"}}},
        {"a ': ' cannot be here", {{"a: 1\nb: \xc3\xa9: x", "2:5"}, {"a: 1\n b: 2", "2:3"}, {"? a\n : b", "2:2"}}},
        {"a ': ' cannot be here", {{"--- a: b", "1:6"}, {"\"a\nb\": c", "2:3"}}},
        {"a '- ' cannot be here", {{"a: - b", "1:4"}, {"&a - b", "1:4"}}},
        {"a text among the keys", {{"a: 1\nb", "2:1"}, {"a: 1\n? b\n:\nc", "4:1"}}},
        {"this is no 'key: value'", {{"a: \"b\" c", "1:8"}, {"a: >\n  b\n c", "3:2"}, {"a:\n  b:\n - c", "3:2"}}},
        {"this line belongs to", {{"- a\nb: c", "2:1"}, {" a: 1\nb: 2", "2:1"}, {"a:\n: b", "2:1"}}},
        {"a tab cannot indent", {{"-\t- a", "1:3"}, {"- \ta: b", "1:4"}, {"a: |\n\t\nb:", "2:1"}}},
        {"a line that begins with '%'", {{"%abc\n...\n---", "1:1"}, {"# c\n%x\n%y\na: 2", "2:1"}}},
        {"a text cannot begin with ", {{"a: %b", "1:4"}, {"- @b", "1:3"}, {"- `b", "1:3"}, {"[-, a]", "1:2"}}},
        {"", {{"[|b]", "1:2"}, {"[>b]", "1:2"}, {"a: ? b", "1:4"}, {"a:\n\tb: 1", "2:3"}, {"- a\n\t- b", "2:2"}}},
        {"only a digit", {{"a: |b", "1:5"}, {"a: |0", "1:6"}, {"a: |#c", "1:5"}, {"a: |12", "1:6"}, {"|+-", "1:3"}}},
        {"a blank line above has more spaces than the text", {{"a: |\n   \n  b", "3:3"}}},
        {"a digit behind '|' or '>' needs a key or a '-' before it", {{"|1\n a", "1:1"}}},
        {"a key has at most 1024 characters", {{repeated("k", 1025) + ": 1", "1:1"}}},
        {"no anchor of this name is before it", {{"- *a", "1:3"}}},
        {"a second anchor or tag", {{"&a &b c", "1:4"}, {"!!str\n!!map\na: b", "2:1"}}},
        {"an alias takes no anchor and no tag", {{"- &a *a", "1:6"}, {"- &a b\n- !!str *a", "2:9"}}},
        {"a name must be behind", {{"- & b", "1:5"}, {"!!str, a", "1:6"}, {"!! a", "1:4"}}},
        {"no '%TAG' line says what this tag begins with", {{"!x!y a", "1:1"}}},
        {"a tag must be between '!<' and '>'", {{"!<!> a", "1:1"}, {"!<> a", "1:1"}}},
        {"this is no !!", {{"!!int a", "1:1"}, {"- !!int", "1:3"}, {"- !!float 0x1", "1:3"}}},
        {"a scalar cannot be tagged so: remove the tag", {{"- !!seq a", "1:3"}, {"- !str a", "1:3"}}},
        {"a mapping cannot be tagged so", {{"- !!str {}", "1:3"}}},
        {"this key is there twice",
         {{"a: 1\n\xc3\xa9: 2\n  \n\"a\": 3", "4:1"},
          {"{1: a, [\xc3\xa9]: a, [\xc3\xa9]: b}", "1:16"},
          {"{1.0: a, 0x1: b}", "1:10"}}},
        {"a key with a value in it that contains itself", {{"&a {? [*a] : 1}", "1:7"}}},
        {"a second document", {{"a\n---\n", "2:1"}}},
        {"text behind the end of the document", {{"a\n...\nb", "3:1"}, {"a\n... b", "2:5"}}},
        {"'%YAML' takes one",
         {{"%YAML 1.2\n%YAML 1.2\n---", "2:1"},
          {"%YAML 2.0\n---", "1:1"},
          {"%YAML 1.\n---", "1:1"},
          {"%YAML 1.2x\n---", "1:1"}}},
        {"'%TAG' takes a",
         {{"%TAG ! a\n%TAG ! a\n---", "2:1"}, {"%TAG !a b\n---", "1:1"}, {"%TAG !a! b c\n---", "1:1"}}},
        {"an integer in base 8 or 16", {{"0x" + repeated("1", 4097), "1:1"}}},
        {"a byte that is no UTF-8", {{"a:\n- \xc3\xa9\xff", "2:4"}}},
        {R"(the control character '\x00')", {{std::string("a\0b", 3), "1:2"}}},
        {R"(the control character '\x1f')", {{"a\x1f", "1:2"}}},
        {"this character may only",
         {{"[\x7f, \"\"]", "1:2"},
          {"a\x7f", "1:2"},
          {"a\u0080", "1:2"},
          {"a\u009f", "1:2"},
          {"a\ufffe", "1:2"},
          {"\ufeff\ufeffa", "1:1"},
          {"'\x7f' : \xef\xbf\xbf", "1:7"}}},
    };
    for (const auto& [message, cases] : faults) {
        for (const auto& [text, place] : cases) {
            const std::string expected = "f:" + place + ": " + message;
            EXPECT_EQ(result_of(text).substr(0, expected.size()), expected) << text;
        }
    }
}

TEST(Load, RefusesDeepNesting) {
    const auto nested = [](int levels) { return repeated("[", levels) + repeated("]", levels); };
    EXPECT_EQ(result_of(nested(400)), nested(400));
    EXPECT_NE(result_of(nested(401)), nested(401));
    for (const auto* part : {"[", "{", "- ", "? ", "[a: ", "{a: ", "- ? ", "[? "}) {
        EXPECT_TRUE(result_of(repeated(part, 100'000)).ends_with("more than 400 levels deep")) << part;
    }
}

// Each would take minutes or all memory if nothing stopped it.
TEST(Load, TakesLittleTimeAndMemory) {
    std::string loops = "&a [", alike, keys, doubled = "- &a0 [1]\n", dense;
    const std::string shared = "- &a [" + repeated("1,", 999) + "]\n" + repeated("- *a\n", 1000);
    const std::string text = "- &a " + repeated("x", 1'000'000) + "\n" + repeated("- *a\n", 65);
    for (int i = 0; i < 20'000; ++i) {
        const std::string n = std::to_string(i);
        loops += "&b [*a], *b, ";
        alike += "? [0, 0, 0, 0, " + n + ", 0, 0, 0, 0]\n";
        keys += "? {a: [" + n + "]}\n";
        if (i < 40) doubled += "- &a" + std::to_string(i + 1) + " [*a" + n + ", *a" + n + "]\n";
        if (i < 30) dense += "&a" + n + " [*a0, *a" + n + ", ";
    }
    EXPECT_EQ(load(shared).get<List>().size(), 1001U);
    EXPECT_EQ(load(repeated("- &a [*a]\n", 1000)).get<List>().size(), 1000U);
    EXPECT_EQ(load(keys).get<Mapping>().size(), 20'000U);
    const std::string many = "aliases that stand for more than a million values in all";
    for (const auto& each : {shared + "- *a", text, doubled, dense + repeated("]", 30)})
        EXPECT_TRUE(result_of(each).ends_with(many)) << result_of(each);
    const std::string cycles = "too many lists or mappings that are keys or contain themselves";
    for (const auto& each : {loops + "]", alike}) EXPECT_TRUE(result_of(each).ends_with(cycles)) << result_of(each);
}

TEST(LoadFile, ReadsAFileOrSaysWhyNot) {
    const test::Folder folder;
    const std::string directory = folder.path(""), name = folder.path("a.yaml");
    const auto error_in_file = [](const std::string& file) -> Error {
        try {
            load_file(file);
        } catch (const Error& error) {
            return error;
        }
        return Error("", "none");
    };
    std::ofstream(name) << "a: [1\n";
    const Error error = error_in_file(name);
    EXPECT_TRUE(error.message().starts_with(name + ":1:6: a ',' or"));
    EXPECT_EQ(error.file(), name);
    EXPECT_EQ(error.line(), 1U);
    EXPECT_EQ(error.column(), 6U);
    std::ofstream(name) << "a: " << std::string(100'000, 'x');
    EXPECT_EQ(load_file(name), ConfigValue(Mapping{{"a", std::string(100'000, 'x')}}));
    EXPECT_EQ(utils::read_file(name, 50'000), "a: " + std::string(49'997, 'x'));
    folder.remove("a.yaml");
    const Error missing = error_in_file(name);
    EXPECT_EQ(missing.message(), name + ": cannot be read: No such file or directory");
    EXPECT_EQ(missing.file(), name);
    EXPECT_EQ(missing.line() + missing.column(), 0U);
    EXPECT_EQ(error_in_file(directory).message(), directory + ": cannot be read: Is a directory");
}

}  // namespace
}  // namespace velmora::yaml
