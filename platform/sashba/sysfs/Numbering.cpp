#include "sashba/sysfs/Numbering.h"

#include <algorithm>

namespace KDV {
namespace {

constexpr std::uint32_t firstByIdentity = 1000000;
constexpr std::uint32_t lastByIdentity = 2000000000; // far from 0xFFFFFFFF, which names no drive

std::uint32_t numberByIdentity(const std::string& identity)
{
    std::uint64_t hash = 14695981039346656037U; // FNV-1a: the same in every build and process
    for (const char letter : identity)
        hash = (hash ^ static_cast<unsigned char>(letter)) * 1099511628211U;
    return firstByIdentity + static_cast<std::uint32_t>((hash ^ hash >> 32) % (lastByIdentity - firstByIdentity));
}

std::uint32_t nextByIdentity(std::uint32_t number)
{
    return number + 1 < lastByIdentity ? number + 1 : firstByIdentity;
}

} // namespace

std::optional<std::uint32_t> numberByPlace(std::uint8_t box, std::uint64_t bay)
{
    if (bay >= baysOfABox) return std::nullopt;
    return box * baysOfABox + static_cast<std::uint32_t>(bay);
}

// Told a place that nobody has a number of, where the number that was given came from a guess.
bool DriveNumbering::isBetter(const NumberWish& wish, const Given& given) const
{
    if (given.told || !wish.told || !wish.byPlace || *wish.byPlace == given.number) return false;
    return std::none_of(_present.begin(), _present.end(),
                        [&wish](const auto& entry) { return entry.second.number == *wish.byPlace; });
}

std::vector<std::optional<std::uint32_t>> DriveNumbering::assign(const std::vector<NumberWish>& wishes)
{
    std::vector<std::optional<std::uint32_t>> numbers(wishes.size());
    std::map<std::string, Given> present;
    std::set<std::uint32_t> taken;
    std::set<std::string> renumbered;
    for (std::size_t i = 0; i < wishes.size(); ++i) {
        const auto before = _present.find(wishes[i].identity);
        if (before == _present.end() || present.count(wishes[i].identity) != 0) continue;
        if (isBetter(wishes[i], before->second)) {
            renumbered.insert(wishes[i].identity);
            continue;
        }
        const Given& given = before->second;
        numbers[i] = given.number;
        present[wishes[i].identity] = {given.number,
                                       given.told || (wishes[i].told && wishes[i].byPlace == given.number)};
        taken.insert(given.number);
    }
    std::set<std::uint32_t> givenUp;
    for (const auto& [identity, given] : _present) {
        if (taken.count(given.number) == 0) givenUp.insert(given.number);
    }
    _waiting = !renumbered.empty();
    for (std::size_t i = 0; i < wishes.size(); ++i) {
        if (numbers[i] || present.count(wishes[i].identity) != 0 || renumbered.count(wishes[i].identity) != 0) continue;
        std::uint32_t number = wishes[i].byPlace.value_or(numberByIdentity(wishes[i].identity));
        if (taken.count(number) != 0) number = numberByIdentity(wishes[i].identity);
        while (taken.count(number) != 0)
            number = nextByIdentity(number);
        if (givenUp.count(number) != 0) {
            _waiting = true;
            continue;
        }
        numbers[i] = number;
        taken.insert(number);
        present[wishes[i].identity] = {number, wishes[i].told && wishes[i].byPlace == number};
    }
    _present = std::move(present);
    return numbers;
}

// A number that no name has any more is free again: two expanders turned out to be one box.
bool BoxNumbering::isTaken(std::uint8_t number) const
{
    return std::any_of(_numbers.begin(), _numbers.end(),
                       [number](const auto& known) { return known.second == number; });
}

std::optional<std::uint8_t> BoxNumbering::assign(const std::vector<std::string>& names,
                                                 std::optional<std::uint8_t> wish)
{
    std::uint8_t number = 0;
    for (const std::string& name : names) {
        const auto known = _numbers.find(name);
        if (known == _numbers.end() || _given.count(known->second) != 0) continue;
        if (number == 0 || known->second < number) number = known->second;
    }
    if (number == 0) number = wish.value_or(std::uint8_t{0});
    const bool isNew = std::none_of(names.begin(), names.end(), [this, number](const std::string& name) {
        const auto known = _numbers.find(name);
        return known != _numbers.end() && known->second == number;
    });
    if (number == 0 || (isNew && isTaken(number))) {
        number = 1;
        while (number < 255 && isTaken(number))
            ++number;
    }
    if (number == 255) return std::nullopt;
    for (const std::string& name : names) {
        const auto known = _numbers.find(name);
        if (known == _numbers.end() || _given.count(known->second) == 0) _numbers[name] = number;
    }
    _given.insert(number);
    return number;
}

} // namespace KDV
