#include "velmora/yaml/yaml.hpp"

#include <string>

#include "velmora/utils/read_file.hpp"
#include "velmora/yaml/parse.hpp"

namespace velmora::yaml {

Error::Error(std::string_view file, std::size_t line, std::size_t column, std::string_view what)
    : ValueError(std::string(file)
                     .append(":" + std::to_string(line) + ":" + std::to_string(column) + ": ")
                     .append(what)),
      file_size_(file.size()),
      reason_offset_(message().size() - what.size()),
      line_(line),
      column_(column) {}

Error::Error(std::string_view file, std::string_view what)
    : ValueError(std::string(file).append(": ").append(what)),
      file_size_(file.size()),
      reason_offset_(message().size() - what.size()) {}

config::ConfigValue load(std::string_view text, std::string_view name) {
    return parse(source_of(text, name), nullptr);
}

config::ConfigValue load_file(const std::filesystem::path& path) {
    // What is one byte too long, behind a byte order mark, is refused whatever follows.
    constexpr std::size_t enough = most_bytes + 4;
    const std::string name = path.string();
    std::string text;
    try {
        text = utils::read_file(name, enough);
    } catch (const utils::FileError& error) {
        throw Error(name, std::string("cannot be read: ") + error.what());
    }
    return load(text, name);
}

}  // namespace velmora::yaml
