// Gives the drives and boxes of one HBA their numbers. A number follows from the place where that is known: the drive
// in bay M of box N is N*1000+M, one that is directly attached has the number of its bay or port; so it is the same
// after a re-plug and after a reboot. A drive without a place gets a number made of what it is (its world-wide name).
// While a drive stays it keeps its number, but for one whose bay was only guessed when it came: when the box has told
// the bay, it goes and comes with the number that it will have after a reboot too. One thread at a time.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace KDV {

struct NumberWish {
    std::string identity; // what it is; unlike that of any other drive of the HBA
    std::optional<std::uint32_t> byPlace;
    bool told = false; // the box itself says which bay it is
};

class DriveNumbering {
public:
    // In the order of the wishes. A number that another drive had until now is given only at the next call, so that a
    // swap between two refreshes shows as a pull and an insert; until then the drive has none. Likewise one that gets
    // a better number.
    std::vector<std::optional<std::uint32_t>> assign(const std::vector<NumberWish>& wishes);

    // Some drive of the last call is waiting for its number.
    bool waiting() const noexcept { return _waiting; }

private:
    struct Given {
        std::uint32_t number = 0;
        bool told = false;
    };

    bool isBetter(const NumberWish& wish, const Given& given) const;

    std::map<std::string, Given> _present;
    bool _waiting = false;
};

class BoxNumbering {
public:
    // A box is known by several names (its enclosure's, those of its expanders), because what comes with it comes one
    // after the other; it keeps the number that any of them had, as long as the process lives. A new one gets the
    // wished number if it is free, else the lowest free one. Nothing when all are taken.
    std::optional<std::uint8_t> assign(const std::vector<std::string>& names, std::optional<std::uint8_t> wish);

    // Call before each round of assign(): in one round no two boxes have the same number, whatever their names say.
    void beginRound() { _given.clear(); }

private:
    bool isTaken(std::uint8_t number) const;

    std::map<std::string, std::uint8_t> _numbers;
    std::set<std::uint8_t> _given; // in this round
};

constexpr std::uint32_t baysOfABox = 1000;

// Nothing when the place is no plausible one.
std::optional<std::uint32_t> numberByPlace(std::uint8_t box, std::uint64_t bay);

} // namespace KDV
