// Plays the fuzzer's corpus, and fixed damages of each file, through the fuzzer's entry.
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
    std::vector<std::string> texts;
    for (const auto& entry : std::filesystem::directory_iterator(KDV_SOURCE_DIR "/tests/fuzz/cimxml/corpus")) {
        std::ifstream file(entry.path(), std::ios::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return texts;
}

int runOn(const std::string& text)
{
    return LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

} // namespace

TEST(CimxmlCorpus, EveryFileIsAnswered)
{
    const std::vector<std::string> texts = corpus();
    ASSERT_GE(texts.size(), 6u);
    for (const std::string& text : texts)
        EXPECT_EQ(runOn(text), 0);
}

TEST(CimxmlCorpus, EveryDamagedFileIsAnswered)
{
    std::mt19937 random(20240229); // fixed: a failure can be repeated
    for (const std::string& text : corpus())
        for (int turn = 0; turn < 300; ++turn) {
            std::string damaged = text.substr(0, 1 + random() % text.size());
            for (std::uint32_t hits = random() % 4; hits > 0; --hits)
                damaged[random() % damaged.size()] = static_cast<char>(random());
            EXPECT_EQ(runOn(damaged), 0);
        }
}
