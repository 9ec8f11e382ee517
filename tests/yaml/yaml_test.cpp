#include "velmora/yaml/yaml.hpp"

#include <fstream>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "velmora/config/display.hpp"

namespace velmora::yaml {
namespace {

using config::ConfigValue;
using config::List;
using config::Mapping;

std::string error_of(const auto& load_it) {
    try {
        return "no error, but " + display(load_it());
    } catch (const Error& error) {
        return error.what();
    }
}

std::string error_in(std::string_view text) {
    return error_of([&] { return load(text, "f"); });
}

TEST(Load, ReadsScalarsByTheCoreSchema) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "None"},
        {"# nothing\n", "None"},
        {"---\n...\n# end", "None"},
        {"[~, null, Null, NULL, nULL]", "[None, None, None, None, 'nULL']"},
        {"[true, True, TRUE, false, False, FALSE]", "[True, True, True, False, False, False]"},
        {"[yes, on, tRUE, <<]", "['yes', 'on', 'tRUE', '<<']"},
        {"[0, -0, +7, 007, 0o17, 0xfF]", "[0, 0, 7, 7, 15, 255]"},
        {"[0o8, -0x1, 0x, 1_0, 0b1, 1:2]", "['0o8', '-0x1', '0x', '1_0', '0b1', '1:2']"},
        {"-123456789012345678901234567890", "-123456789012345678901234567890"},
        {"0x004b3b4ca85a86c47a098a224000000007", "100000000000000000000000000000000000007"},
        {"0o2000000000000000000000", "18446744073709551616"},
        {"[1., .5, -1e3, 1.e+3, +1.5E-1]", "[1.0, 0.5, -1000.0, 1000.0, 0.15]"},
        {"[., .e1, 1e, e1, 1.5.0, inf, nan, +-1.0]",
         "['.', '.e1', '1e', 'e1', '1.5.0', 'inf', 'nan', '+-1.0']"},
        {"[.inf, -.Inf, +.INF, .nan, -.nan, .iNF]", "[inf, -inf, inf, nan, '-.nan', '.iNF']"},
        {"[1e400, -1e400, 1e-400, 1e99999999999999999999, 1e-99999999999999999999]",
         "[inf, -inf, 0.0, inf, 0.0]"},
        {"[" + std::string(400, '9') + ".0, 0." + std::string(400, '0') + "1e30]", "[inf, 0.0]"},
        {"['1', \"true\", '']", "['1', 'true', '']"},
        {"- |-\n  null\n- |\n  1", "['null', '1']"},
        {"[!!str 5, !!int '5', !!float 1, !!bool \"true\", !!null '', ! 5, !!str ]",
         "['5', 5, 1.0, True, None, '5', '']"},
        {"!!str", "''"},
        {"!!seq [!!map {}, ! {}]", "[{}, {}]"},
        {"\xef\xbb\xbf%YAML 1.2\n%TAG !t! tag:yaml.org,2002:\n---\n!t!str 1", "'1'"},
        {"a: |\r\n  b\r\n  c\rd: \"e\r\n  f\" # g\rh: \xc3\xa9",
         R"({'a': 'b\nc\n', 'd': 'e f', 'h': 'é'})"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(display(load(text)), shown) << text;
}

TEST(Load, SharesWhatAliasesName) {
    const ConfigValue value = load("a: &x [&t 1, *t]\nb: *x\nc: &x {}\nd: [*x]");
    EXPECT_EQ(display(value), "{'a': [1, 1], 'b': [1, 1], 'c': {}, 'd': [{}]}");
    const auto& mapping = value.get<Mapping>();
    EXPECT_TRUE(mapping.find("a")->get<List>().same_as(mapping.find("b")->get<List>()));

    const ConfigValue loop = load("&a {b: &b [*a, *b, &c [*b]], c: *c}");
    EXPECT_EQ(display(loop), "{'b': [{...}, [...], [[...]]], 'c': [[{...}, [...], [...]]]}");
    EXPECT_TRUE((*loop.get<Mapping>().find("b"))
                    .get<List>()[0]
                    .get<Mapping>()
                    .same_as(loop.get<Mapping>()));
}

TEST(Load, SaysWhereAndWhatIsWrong) {
    const std::pair<std::string, std::string> cases[] = {
        {"a: 1\nb: é: x", "f:2:5: illegal map value"},
        {"[1, 2", "f:1:6: end of sequence flow not found"},
        {"- *a", "f:1:3: the referenced anchor is not defined"},
        {"\"\\ud800\"", "f:1:8: invalid unicode: 55296"},
        {"a: 1\né: 2\n  \n\"a\": 3", "f:4:1: the key 'a' is there twice"},
        {"{1: a, [é]: a, [é]: b}", "f:1:16: the key ['é'] is there twice"},
        {"{1: a, 0x1: b}", "f:1:8: the key 1 is there twice"},
        {"{1: a, 1.0: b}", "f:1:8: the key 1.0 is there twice"},
        {"&a {? [*a] : 1}", "f:1:7: a key with a value in it that contains itself"},
        {"a\n---\n", "f:2:1: a second document"},
        {"a\n...\nb", "f:3:1: text behind the document"},
        {" a: 1\nb: 2", "f:2:1: text behind the document"},
        {"%x: 1\n", "f:1:1: a directive without a document that begins with '---'"},
        {"%x: 1\na: 2", "f:1:1: a directive without a document that begins with '---'"},
        {"a: 1\n%b: 2\n", "f:2:1: a directive without a document that begins with '---'"},
        {"- !!int a", "f:1:3: 'a' is no !!int"},
        {"- !!int", "f:1:3: '' is no !!int"},
        {"!!int", "f:1:1: '' is no !!int"},
        {"- !!float 0x1", "f:1:3: '0x1' is no !!float"},
        {"- !!seq a", "f:1:3: a scalar cannot be tagged '!!seq'"},
        {"- !!str {}", "f:1:3: a mapping cannot be tagged '!!str'"},
        {"- !!map []", "f:1:3: a list cannot be tagged '!!map'"},
        {"- !secret a", "f:1:3: a scalar cannot be tagged '!secret'"},
        {"0x" + std::string(4097, '1'),
         "f:1:1: an integer in base 8 or 16 has at most 4096 digits"},
        {"a:\n- \xc3\xa9\xff", "f:2:4: no UTF-8"},
        {std::string("a\0b", 3), R"(f:1:2: the control character '\x00')"},
    };
    for (const auto& [text, error] : cases) EXPECT_EQ(error_in(text), error) << text;
}

TEST(Load, RefusesDeepNesting) {
    const auto repeated = [](std::string_view part, int times) {
        std::string text;
        while (times-- > 0) text += part;
        return text;
    };
    const ConfigValue value = load(repeated("[", 400) + repeated("]", 400));
    EXPECT_EQ(display(value), repeated("[", 400) + repeated("]", 400));
    EXPECT_EQ(error_in(repeated("[", 401) + repeated("]", 401)), "f:1:401: nested too deeply");
    for (const auto* part : {"[", "{", "- ", "? ", ": ", "[a: ", "{a: ", "- ? ", "[? "}) {
        EXPECT_TRUE(error_in(repeated(part, 100'000)).ends_with("nested too deeply")) << part;
    }
}

// Each would take minutes if it took quadratic time.
TEST(Load, TakesLittleTimeWithManyAliasesAndCollectionKeys) {
    std::string plain = "- &a [1]\n", loops = "&a [", alike, keys;
    for (int i = 0; i < 20'000; ++i) {
        plain += "- *a\n";
        loops += "&b [*a], *b, ";
        alike += "? [0, 0, 0, 0, " + std::to_string(i) + ", 0, 0, 0, 0]\n";
        keys += "? {a: [" + std::to_string(i) + "]}\n";
    }
    EXPECT_EQ(load(plain).get<List>().size(), 20'001U);
    EXPECT_EQ(load(keys).get<Mapping>().size(), 20'000U);
    for (const std::string& text : {loops + "]", alike}) {
        EXPECT_TRUE(
            error_in(text).ends_with("lists or mappings that are keys or contain themselves"));
    }
}

TEST(LoadFile, ReadsAFileOrSaysWhyNot) {
    const std::filesystem::path directory = testing::TempDir();
    const std::string name = directory / "velmora_yaml_test.yaml";
    std::ofstream(name) << "a: [1\n";
    EXPECT_EQ(error_of([&] { return load_file(name); }),
              name + ":2:1: end of sequence flow not found");
    std::ofstream(name) << "a: " << std::string(100'000, 'x');
    EXPECT_EQ(load_file(name), ConfigValue(Mapping{{"a", std::string(100'000, 'x')}}));
    std::filesystem::remove(name);
    EXPECT_EQ(error_of([&] { return load_file(name); }),
              name + ": cannot be read: No such file or directory");
    EXPECT_EQ(error_of([&] { return load_file(directory); }),
              directory.string() + ": cannot be read: Is a directory");
}

}  // namespace
}  // namespace velmora::yaml
