// Plays a fuzzer's corpus, and fixed damages of each of its files, through the fuzzer's entry.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::string> corpus()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(KDV_CORPUS))
        names.push_back(entry.path().string());
    std::sort(names.begin(), names.end());
    std::vector<std::string> inputs;
    for (const std::string& name : names) {
        std::ifstream file(name, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return inputs;
}

int runOn(const std::string& input)
{
    // A copy of its own size, so that a sanitizer sees a read past the end.
    const std::vector<std::uint8_t> bytes(input.begin(), input.end());
    return LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

TEST(Corpus, EveryFileIsAnswered)
{
    const std::vector<std::string> inputs = corpus();
    ASSERT_GE(inputs.size(), 5U);
    for (const std::string& input : inputs)
        EXPECT_EQ(runOn(input), 0);
}

TEST(Corpus, EveryFileIsAnsweredWhereverItIsCut)
{
    for (const std::string& input : corpus()) {
        for (std::size_t length = 0; length < input.size(); ++length)
            EXPECT_EQ(runOn(input.substr(0, length)), 0);
    }
}

TEST(Corpus, EveryDamagedFileIsAnswered)
{
    std::mt19937 random(20240229); // fixed: a failure can be repeated
    for (const std::string& input : corpus()) {
        for (int turn = 0; turn < 400 && !input.empty(); ++turn) {
            std::string damaged = input;
            for (auto hits = 1 + random() % 6; hits > 0; --hits)
                damaged[random() % damaged.size()] = static_cast<char>(random());
            EXPECT_EQ(runOn(damaged), 0);
        }
    }
}

} // namespace
