// Equality and fingerprints of paths. A key's value is first brought into one form whatever type the server gave it:
// one server keeps a client's number as uint64, another as sint64, and both mean the same key.
#include "cmpicpp/CmpiName.h"
#include "cmpicpp/PathKeys.h"

#include <cmath>
#include <functional>
#include <memory>
#include <string_view>

namespace CmpiCpp {

namespace {

enum class Kind : unsigned char { null, text, number, negative, boolean, character, real, dateTime, reference, other };

// The value of a key, comparable: bits for numbers, a text for texts.
struct KeyValue {
    Kind kind = Kind::other;
    std::uint64_t bits = 0;
    std::string_view text;
    const CMPIObjectPath* reference = nullptr;
};

std::uint64_t mixed(std::uint64_t value) noexcept
{
    value ^= value >> 32;
    value *= 0xd6e8feb86659fd93u;
    value ^= value >> 32;
    value *= 0xd6e8feb86659fd93u;
    return value ^ (value >> 32);
}

KeyValue signedNumber(std::int64_t number) noexcept
{
    return {number < 0 ? Kind::negative : Kind::number, static_cast<std::uint64_t>(number), {}, nullptr};
}

KeyValue unsignedNumber(std::uint64_t number) noexcept { return {Kind::number, number, {}, nullptr}; }

KeyValue realNumber(double number) noexcept
{
    // One zero and one not-a-number, so that equal values have equal bits.
    KeyValue value{Kind::real, 0, {}, nullptr};
    if (std::isnan(number))
        value.bits = ~std::uint64_t{0};
    else if (number != 0.0)
        std::memcpy(&value.bits, &number, sizeof number);
    return value;
}

KeyValue dateTimeValue(const CMPIDateTime* dateTime)
{
    KeyValue value{Kind::dateTime, 0, {}, nullptr};
    if (!dateTime) return value;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const CMPIString* text = dateTime->ft->getStringFormat(dateTime, &status);
    throwIfFailed(status, "getStringFormat");
    value.text = textOf(text);
    return value;
}

KeyValue valueOf(const PathKey& key)
{
    if (key.isNull()) return {Kind::null, 0, {}, nullptr};
    const CMPIValue& value = key.data.value;
    switch (key.data.type) {
    case CMPI_string:
    case CMPI_chars:
        return {Kind::text, 0, key.text(), nullptr};
    case CMPI_ref:
        return {Kind::reference, 0, {}, value.ref};
    case CMPI_boolean:
        return {Kind::boolean, value.boolean != 0, {}, nullptr};
    case CMPI_char16:
        return {Kind::character, value.char16, {}, nullptr};
    case CMPI_uint8:
        return unsignedNumber(value.uint8);
    case CMPI_uint16:
        return unsignedNumber(value.uint16);
    case CMPI_uint32:
        return unsignedNumber(value.uint32);
    case CMPI_uint64:
        return unsignedNumber(value.uint64);
    case CMPI_sint8:
        return signedNumber(value.sint8);
    case CMPI_sint16:
        return signedNumber(value.sint16);
    case CMPI_sint32:
        return signedNumber(value.sint32);
    case CMPI_sint64:
        return signedNumber(value.sint64);
    case CMPI_real32:
        return realNumber(static_cast<double>(value.real32));
    case CMPI_real64:
        return realNumber(value.real64);
    case CMPI_dateTime:
        return dateTimeValue(value.dateTime);
    default:
        return {};
    }
}

bool equalValues(const PathKey& left, const PathKey& right, const char* defaultNameSpace, unsigned depth)
{
    const KeyValue a = valueOf(left);
    const KeyValue b = valueOf(right);
    if (a.kind != b.kind || a.kind == Kind::other) return false;
    if (a.kind == Kind::reference)
        return depth < maximumReferenceDepth && equalPaths(a.reference, b.reference, defaultNameSpace, depth + 1);
    return a.bits == b.bits && a.text == b.text;
}

std::uint64_t valueHash(const PathKey& key, const char* defaultNameSpace, unsigned depth)
{
    const KeyValue value = valueOf(key);
    std::uint64_t hash = value.bits;
    if (value.kind == Kind::reference)
        hash = depth < maximumReferenceDepth ? fingerprintOf(value.reference, defaultNameSpace, depth + 1) : 0;
    else if (!value.text.empty())
        hash = std::hash<std::string_view>()(value.text);
    return mixed(hash + static_cast<std::uint64_t>(value.kind) * 0x9e3779b97f4a7c15u); // kinds far apart
}

bool equalNameSpaces(const char* a, const char* b, const char* defaultNameSpace) noexcept
{
    return CmpiName(*a ? a : defaultNameSpace) == CmpiName(*b ? b : defaultNameSpace);
}

// The keys of the path that is gone through again and again: on the stack for every real path.
class KeptKeys {
public:
    KeptKeys(const CMPIObjectPath* path, CMPICount count) : _keys(_few)
    {
        if (count > few) {
            _many = std::make_unique<Kept[]>(count);
            _keys = _many.get();
        }
        for (CMPICount i = 0; i < count; ++i)
            _keys[i].key = keyAt(path, i);
        _count = count;
    }

    // Strikes one key off that equals the given one; false when none is left that does.
    bool take(const PathKey& wanted, const char* defaultNameSpace, unsigned depth)
    {
        for (CMPICount i = 0; i < _count; ++i) {
            Kept& kept = _keys[i];
            if (!kept.taken && CmpiName(kept.key.name) == CmpiName(wanted.name) &&
                equalValues(kept.key, wanted, defaultNameSpace, depth)) {
                kept.taken = true;
                return true;
            }
        }
        return false;
    }

private:
    struct Kept {
        PathKey key{};
        bool taken = false;
    };
    static constexpr CMPICount few = 6;
    Kept _few[few];
    std::unique_ptr<Kept[]> _many;
    Kept* _keys;
    CMPICount _count = 0;
};

} // namespace

std::uint64_t nameHash(const char* name) noexcept
{
    // Setting the bit that tells the cases of a letter apart in every byte folds more than letters, which only costs
    // a rare collision.
    constexpr std::uint64_t caseBits = 0x2020202020202020u;
    std::size_t length = std::strlen(name);
    std::uint64_t hash = mixed(length);
    while (length > 0) {
        std::uint64_t chunk = 0;
        const std::size_t size = length < sizeof chunk ? length : sizeof chunk;
        std::memcpy(&chunk, name, size);
        hash = mixed(hash ^ (chunk | caseBits));
        name += size;
        length -= size;
    }
    return hash;
}

bool equalPaths(const CMPIObjectPath* a, const CMPIObjectPath* b, const char* defaultNameSpace, unsigned depth)
{
    if (a == b) return true;
    const CMPICount count = keyCountOf(a);
    if (count != keyCountOf(b) || CmpiName(classNameOf(a)) != CmpiName(classNameOf(b)) ||
        !equalNameSpaces(nameSpaceOf(a), nameSpaceOf(b), defaultNameSpace))
        return false;
    KeptKeys keys(a, count);
    for (CMPICount i = 0; i < count; ++i) {
        if (!keys.take(keyAt(b, i), defaultNameSpace, depth)) return false;
    }
    return true;
}

std::uint64_t fingerprintOf(const CMPIObjectPath* path, const char* defaultNameSpace, unsigned depth)
{
    const char* nameSpace = nameSpaceOf(path);
    std::uint64_t hash = nameHash(classNameOf(path)) + 3 * nameHash(*nameSpace ? nameSpace : defaultNameSpace);
    const CMPICount count = keyCountOf(path);
    for (CMPICount i = 0; i < count; ++i) { // a sum, because the order of keys means nothing
        const PathKey key = keyAt(path, i);
        hash += mixed(nameHash(key.name) ^ valueHash(key, defaultNameSpace, depth));
    }
    return mixed(hash);
}

} // namespace CmpiCpp
