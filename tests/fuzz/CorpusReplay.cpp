// Plays a fuzzer's corpus, and fixed damages of each of its files, through the fuzzer's entry. What comes is the same
// in every run, so a failure can be repeated.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr int damagesOfAFile = 400;
constexpr std::size_t cutsOfAFile = 256;

std::vector<std::string> corpus()
{
    std::vector<std::string> names;
    std::istringstream folders(KDV_CORPUS); // separated by ':'
    for (std::string folder; std::getline(folders, folder, ':');) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.is_regular_file()) names.push_back(entry.path().string());
        }
    }
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

// One damage: some bytes are others, are lost, come twice, or are those of another file.
class Damage {
public:
    std::string of(std::string text, const std::vector<std::string>& others)
    {
        for (auto hits = 1 + upTo(5); hits > 0; --hits) {
            if (text.empty()) return text;
            const std::size_t at = upTo(text.size());
            const std::size_t length = 1 + upTo(std::min<std::size_t>(text.size() - at, 64));
            switch (upTo(6)) {
            case 0:
                text.erase(at, length);
                break;
            case 1:
                text.insert(at, text.substr(at, length));
                break;
            case 2: {
                const std::string& other = others[upTo(others.size())];
                const std::size_t from = upTo(other.size() + 1);
                text.replace(at, length, other, from, length);
                break;
            }
            case 3:
                text[at] = static_cast<char>(text[at] ^ (1 << upTo(8)));
                break;
            case 4: // numbers at the end of their range
                text[at] = upTo(2) == 0 ? '\0' : '\xFF';
                break;
            default:
                text[at] = static_cast<char>(upTo(256));
                break;
            }
        }
        return text;
    }

private:
    std::size_t upTo(std::size_t limit) { return _random() % limit; } // the distributions differ between libraries

    std::mt19937 _random{20240229};
};

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
        const std::size_t step = input.size() / cutsOfAFile + 1;
        for (std::size_t length = 0; length < input.size(); length += step)
            EXPECT_EQ(runOn(input.substr(0, length)), 0);
    }
}

TEST(Corpus, EveryDamagedFileIsAnswered)
{
    const std::vector<std::string> inputs = corpus();
    Damage damage;
    for (const std::string& input : inputs) {
        for (int turn = 0; turn < damagesOfAFile; ++turn)
            EXPECT_EQ(runOn(damage.of(input, inputs)), 0);
    }
}

} // namespace
