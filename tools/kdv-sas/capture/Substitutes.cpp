#include "capture/Substitutes.h"

#include "capture/ByteReplacer.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <string_view>
#include <sys/random.h>
#include <system_error>
#include <vector>

namespace KdvSas {
namespace {

constexpr std::uint64_t close = 256; // names of one thing are not farther apart
constexpr unsigned keptLowBits = 4;  // which of the ports of a thing
constexpr int attempts = 200;

// How many bits at the front tell the kind and the maker.
unsigned keptHighBits(std::uint64_t address)
{
    switch (address >> 60) {
    case 5:
    case 6:
        return 28;
    case 0: // EUI-64
        return 24;
    default:
        return 4;
    }
}

std::uint64_t makerOf(std::uint64_t address) { return address >> (64 - keptHighBits(address)); }

struct Group { // names that are close to each other
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    std::vector<std::uint64_t> members;
};

// Draws places for the groups of one maker in their order. Units are of the kept low bits; the groups' own lengths are
// taken out before the draw and put back after it, so that they cannot overlap.
void placeGroups(const std::vector<Group>& groups, const Random& random, std::map<std::uint64_t, std::uint64_t>& to)
{
    constexpr std::uint64_t unit = std::uint64_t{1} << keptLowBits;
    const unsigned freeBits = 64 - keptHighBits(groups.front().first);
    const std::uint64_t start = makerOf(groups.front().first) << freeBits;
    std::uint64_t needed = 0;
    std::vector<std::uint64_t> lengths;
    for (const Group& group : groups) {
        lengths.push_back((group.last - (group.first & ~(unit - 1)) + close) / unit + 1);
        needed += lengths.back();
    }
    const std::uint64_t units = (freeBits == 64 ? 0 : std::uint64_t{1} << freeBits) / unit;
    const std::uint64_t room = units > needed ? units - needed : 1;
    std::vector<std::uint64_t> places;
    for (std::size_t i = 0; i < groups.size(); ++i)
        places.push_back(random() % room);
    std::sort(places.begin(), places.end());
    std::uint64_t before = 0;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const std::uint64_t first = start + (places[i] + before) * unit;
        for (const std::uint64_t member : groups[i].members)
            to[member] = first + (member - (groups[i].first & ~(unit - 1)));
        before += lengths[i];
    }
}

std::map<std::uint64_t, std::uint64_t> drawAddresses(const std::set<std::uint64_t>& addresses, const Random& random)
{
    std::map<std::uint64_t, std::uint64_t> drawn;
    std::vector<Group> groups; // of one maker
    for (const std::uint64_t address : addresses) {
        if (!groups.empty() && (makerOf(groups.front().first) != makerOf(address) ||
                                keptHighBits(groups.front().first) != keptHighBits(address))) {
            placeGroups(groups, random, drawn);
            groups.clear();
        }
        if (groups.empty() || address - groups.back().last >= close)
            groups.push_back({address, address, {address}});
        else
            groups.back().members.push_back(groups.back().last = address);
    }
    if (!groups.empty()) placeGroups(groups, random, drawn);
    return drawn;
}

bool isHexDigits(const std::string& text)
{
    return std::all_of(text.begin(), text.end(),
                       [](unsigned char letter) { return std::isalnum(letter) == 0 || std::isxdigit(letter) != 0; });
}

// What a letter may become. Where all texts of a kind are taken, any letter has to do.
enum class Choice : std::uint8_t { Hex, SameKind, Any };

char drawLetter(char like, Choice choice, const Random& random)
{
    const auto letter = static_cast<unsigned char>(like);
    const auto from = [&random](std::string_view letters) { return letters[random() % letters.size()]; };
    constexpr std::string_view all = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const std::size_t letters = choice == Choice::Hex ? 6 : 26;
    if (std::isalnum(letter) == 0) return like;
    if (choice == Choice::Any) return from(all);
    if (std::isdigit(letter)) return from(all.substr(0, 10));
    return from(all.substr(std::isupper(letter) ? 10 : 36, letters));
}

// What the names already drawn make of the text stays; the rest is drawn.
std::string drawText(const std::string& text, const std::string& known, const std::vector<bool>& kept, Choice choice,
                     const Random& random)
{
    std::string drawn = known;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!kept[at]) drawn[at] = drawLetter(text[at], choice, random);
    }
    return drawn;
}

// Which letters are of which kind; texts that agree in that keep their order.
std::string shapeOf(const std::string& text)
{
    std::string shape = text;
    for (char& letter : shape) {
        const auto code = static_cast<unsigned char>(letter);
        letter = static_cast<char>(std::isdigit(code)   ? '0'
                                   : std::isupper(code) ? 'A'
                                   : std::islower(code) ? 'a'
                                                        : letter);
    }
    return shape;
}

struct Alike {
    std::vector<std::string> originals, drawn;
};

// Texts of one length, of which none can have another one in it.
std::map<std::string, std::string> drawAlike(const std::set<std::string>& texts, const ByteReplacer& known,
                                             std::set<std::string>& taken, const Random& random)
{
    std::map<std::string, std::string> result;
    std::map<std::string, Alike> groups;
    for (const std::string& text : texts) {
        std::vector<bool> kept;
        const std::string inner = known.replaced(text, &kept);
        std::string drawn = inner;
        const Choice kind = isHexDigits(text) ? Choice::Hex : Choice::SameKind;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            const Choice choice = attempt >= attempts / 2 ? Choice::Any : kind;
            drawn = drawText(text, inner, kept, choice, random);
            if (taken.count(drawn) == 0) break;
        }
        taken.insert(drawn);
        if (std::find(kept.begin(), kept.end(), true) != kept.end()) {
            result.emplace(text, drawn);
            continue;
        }
        Alike& group = groups[shapeOf(text)];
        group.originals.push_back(text);
        group.drawn.push_back(drawn);
    }
    for (auto& [shape, group] : groups) {
        std::sort(group.drawn.begin(), group.drawn.end());
        for (std::size_t i = 0; i < group.originals.size(); ++i) // in order, since they come from a set
            result.emplace(group.originals[i], group.drawn[i]);
    }
    return result;
}

// The short ones first, since they may stand in the long ones.
void drawTexts(const Secrets& secrets, const Random& random, Substitutes& to)
{
    std::map<std::size_t, std::set<std::string>> byLength;
    std::set<std::string> taken;
    for (const std::set<std::string>* texts : {&secrets.texts, &secrets.words}) {
        for (const std::string& text : *texts) {
            byLength[text.size()].insert(text);
            taken.insert(text);
        }
    }
    ByteReplacer known(to);
    for (const auto& [length, texts] : byLength) {
        for (const auto& [text, drawn] : drawAlike(texts, known, taken, random)) {
            (secrets.texts.count(text) != 0 ? to.texts : to.words).emplace(text, drawn);
            if (secrets.texts.count(text) != 0) known.addText(text, drawn);
        }
    }
}

std::string bytesOf(std::uint64_t value)
{
    std::string bytes(8, '\0');
    for (std::size_t at = bytes.size(); at > 0; value >>= 8)
        bytes[--at] = static_cast<char>(value & 0xFF);
    return bytes;
}

std::uint64_t frontOf(const std::string& name)
{
    std::uint64_t value = 0;
    for (std::size_t at = 0; at < 8; ++at)
        value = value << 8 | static_cast<unsigned char>(name[at]);
    return value;
}

// Zeros where a short name stands in the field of a long one.
std::string drawnEnd(const std::string& name, const Random& random)
{
    const std::string empty(8, '\0');
    return name.compare(8, 8, empty) == 0 ? empty : bytesOf(random());
}

} // namespace

Random systemRandom()
{
    return [] {
        std::uint64_t value = 0;
        while (getrandom(&value, sizeof value, 0) != static_cast<ssize_t>(sizeof value)) {
            if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "no random numbers");
        }
        return value;
    };
}

Substitutes drawSubstitutes(const Secrets& secrets, const Random& random)
{
    Substitutes drawn;
    std::set<std::uint64_t> addresses = secrets.addresses;
    for (const std::string& name : secrets.longNames)
        addresses.insert(frontOf(name)); // volumes of one adapter differ behind it
    drawn.addresses = drawAddresses(addresses, random);
    for (const std::string& name : secrets.longNames)
        drawn.longNames[name] = bytesOf(drawn.addresses.at(frontOf(name))) + drawnEnd(name, random);
    drawTexts(secrets, random, drawn);
    return drawn;
}

} // namespace KdvSas
