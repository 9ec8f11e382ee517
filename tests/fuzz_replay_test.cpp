// Runs the fuzzer's body over its committed corpus.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

TEST(FuzzCorpus, HoldsNoFailure) {
    int inputs = 0;
    for (const auto& file : std::filesystem::directory_iterator(VELMORA_CORPUS)) {
        std::ifstream in(file.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++inputs;
    }
    EXPECT_GE(inputs, 10);
}

}  // namespace
