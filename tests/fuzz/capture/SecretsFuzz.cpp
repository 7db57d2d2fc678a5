// Any bytes as the contents of a capture, which is then made anonymous. An input is several entries one after the
// other: a byte that says which attribute or page it is, two bytes of length, the content.
#include "capture/Anonymous.h"
#include "capture/SecretFinder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <random>

namespace {

using namespace KdvSas;
using Kind = CapturedEntry::Kind;

constexpr const char* paths[] = {"sys/d/vpd_pg80",       "sys/d/vpd_pg83",       "sys/d/vpd_pg89",
                                 "sys/d/inquiry",        "sys/d/wwid",           "sys/d/sas_address",
                                 "sys/d/serial_number",  "sys/d/unique_id",      "sys/d/model",
                                 "sys/d/size",           "pages/0:0:0:0/ses_01", "pages/0:0:0:0/ses_07",
                                 "pages/0:0:0:0/ses_0a", "pages/0:0:0:0/log_2f", "pages/0:0:0:0/smartctl.json"};

// A check that no build switches off.
void require(bool holds)
{
    if (!holds) std::abort();
}

// The last kind is a link in a box, whose name and end are the content.
CapturedEntry entryOf(std::size_t kind, std::string content)
{
    if (kind % (std::size(paths) + 1) != std::size(paths))
        return {Kind::File, paths[kind % (std::size(paths) + 1)], std::move(content)};
    return {Kind::Link, "sys/enclosure/0:0:8:0/" + content, "../0:0:8:0/" + content};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Captured captured;
    for (std::size_t at = 0; at + 3 <= size;) {
        const std::size_t length = std::min(std::size_t{data[at + 1]} << 8 | data[at + 2], size - at - 3);
        const char* content = reinterpret_cast<const char*>(data) + at + 3;
        captured.entries.push_back(entryOf(data[at], std::string(content, length)));
        at += 3 + length;
    }
    const std::vector<CapturedEntry> before = captured.entries;
    const Secrets secrets = secretsOf(before);
    makeAnonymous(captured, secrets, [engine = std::mt19937_64(1)]() mutable { return engine(); });
    require(captured.entries.size() + captured.unread.size() == before.size());
    const auto sizes = [](const std::vector<CapturedEntry>& entries) { // but of what is written anew or left out
        std::vector<std::size_t> made;
        for (const CapturedEntry& entry : entries) {
            if (entry.path != "pages/0:0:0:0/smartctl.json")
                made.insert(made.end(), {entry.path.size(), entry.content.size()});
        }
        return made;
    };
    require(sizes(captured.entries) == sizes(before));
    return 0;
}
