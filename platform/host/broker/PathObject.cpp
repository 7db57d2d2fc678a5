#include "broker/PathObject.h"

#include "broker/CollectingSink.h"
#include "broker/ObjectMaking.h"

#include <cstring>

namespace KDV::Host {
namespace {

constexpr std::uint32_t usualKeys = 4;

// Names of the schema need no copy: the repository outlives every object.
std::string_view kept(Memory& memory, std::string_view text, const std::string* known)
{
    if (known && (text.data() == known->data() || *known == text) && text.size() == known->size()) return *known;
    return text.empty() ? std::string_view("", 0) : memory.copy(text);
}

} // namespace

PathObject* makePath(const Placement& at, const ClassInfo* info, std::string_view nameSpace, std::string_view className)
{
    auto* object = place<PathObject>(at, ObjectKind::ObjectPath, &at.broker->tables().path);
    object->memory = at.memory;
    object->classInfo = info;
    object->host = std::string_view("", 0);
    object->nameSpace = kept(*at.memory, nameSpace, info ? &info->nameSpace().name() : nullptr);
    object->className = kept(*at.memory, className, info ? &info->name() : nullptr);
    object->lentHost = object->lentNameSpace = object->lentClassName = nullptr;
    object->keys = at.memory->array<KeyBinding>(usualKeys);
    object->keyCount = 0;
    object->keyCapacity = usualKeys;
    return object;
}

PathObject* copyOf(const Placement& at, const PathObject& from)
{
    PathObject* object = makePath(at, from.classInfo, from.nameSpace, from.className);
    if (!from.host.empty()) object->host = at.memory->copy(from.host);
    if (from.keyCount > object->keyCapacity) {
        object->keys = at.memory->array<KeyBinding>(from.keyCount);
        object->keyCapacity = from.keyCount;
    }
    const Placement inside = Placement::inside(object->head, at.memory);
    for (const KeyBinding& key : from) {
        KeyBinding& copy = object->keys[object->keyCount++];
        copy.name = kept(*at.memory, key.name, key.property ? &key.property->name : nullptr);
        copy.property = key.property;
        copy.lentName = nullptr;
        copy.data = copyData(inside, key.data);
    }
    return object;
}

CMPIData& bindKey(PathObject& path, std::string_view name, const PropertyInfo* property)
{
    for (std::uint32_t i = 0; i < path.keyCount; ++i)
        if (property && path.keys[i].property ? path.keys[i].property == property : sameName(path.keys[i].name, name))
            return path.keys[i].data;
    if (path.keyCount == path.keyCapacity) {
        auto* grown = path.memory->array<KeyBinding>(path.keyCapacity * 2);
        std::memcpy(static_cast<void*>(grown), path.keys, path.keyCount * sizeof(KeyBinding));
        path.keys = grown;
        path.keyCapacity *= 2;
    }
    KeyBinding& key = path.keys[path.keyCount++];
    key.name = kept(*path.memory, name, property ? &property->name : nullptr);
    key.property = property;
    key.lentName = nullptr;
    return key.data;
}

const KeyBinding* PathObject::findKey(std::string_view name) const noexcept
{
    for (const KeyBinding& key : *this)
        if (sameName(key.name, name)) return &key;
    return nullptr;
}

void PathObject::setHost(std::string_view text)
{
    host = kept(*memory, text, nullptr);
    lentHost = nullptr;
}

void PathObject::setNameSpace(std::string_view text)
{
    nameSpace = memory->copy(text);
    lentNameSpace = nullptr;
    classInfo = head.broker->repository().find(nameSpace, className);
}

void PathObject::addTextKey(std::string_view name, std::string_view value)
{
    CMPIData data{CMPI_string, CMPI_goodValue, {}};
    data.value.string = makeString(Placement::inside(head, memory), value);
    bindKey(*this, name, classInfo ? classInfo->findProperty(name) : nullptr) = data;
}

void PathObject::addKey(std::string_view name, const CMPIValue& value, CMPIType type)
{
    CMPIData data = nullData(type);
    copyValue(Placement::inside(head, memory), &value, type, data);
    bindKey(*this, name, classInfo ? classInfo->findProperty(name) : nullptr) = data;
}

namespace {

bool parseInteger(std::string_view digits, bool& negative, std::uint64_t& magnitude)
{
    negative = !digits.empty() && digits.front() == '-';
    if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) digits.remove_prefix(1);
    unsigned base = 10;
    if (digits.size() > 2 && digits[0] == '0' && lowerCase(digits[1]) == 'x') {
        base = 16;
        digits.remove_prefix(2);
    }
    if (digits.empty()) return false;
    magnitude = 0;
    for (char c : digits) {
        const char low = lowerCase(c);
        const unsigned digit = low >= '0' && low <= '9'   ? static_cast<unsigned>(low - '0')
                               : low >= 'a' && low <= 'f' ? static_cast<unsigned>(low - 'a' + 10)
                                                          : 16u;
        if (digit >= base || magnitude > (UINT64_MAX - digit) / base) return false;
        magnitude = magnitude * base + digit;
    }
    return !negative || magnitude <= (1ull << 63);
}

bool fitsType(CMPIType type, bool negative, std::uint64_t magnitude)
{
    const unsigned bits = 8u << ((type >> 4) & 3);
    if ((type & 0xc0) == 0x80) return (!negative || magnitude == 0) && (bits == 64 || magnitude < (1ull << bits));
    const std::uint64_t limit = 1ull << (bits - 1);
    return negative ? magnitude <= limit : magnitude < limit;
}

} // namespace

bool PathObject::addNumericKey(std::string_view name, std::string_view digits)
{
    bool negative = false;
    std::uint64_t magnitude = 0;
    if (!parseInteger(digits, negative, magnitude)) return false;
    const PropertyInfo* property = classInfo ? classInfo->findProperty(name) : nullptr;
    const bool integer = property && (property->type & ~0xf0) == 0 && (property->type & 0x80) != 0;
    CMPIType type = negative ? CMPI_sint64 : CMPI_uint64;
    if (integer && !fitsType(property->type, negative, magnitude)) return false;
    if (!integer && !fitsType(type, negative, magnitude)) return false;
    if (integer && head.broker->profile() != Profile::Sfcb) // which leaves numbers of clients 64 bits wide
        type = property->type;
    CMPIValue wide{};
    wide.uint64 = negative ? 0 - magnitude : magnitude;
    addKey(name, wide, type); // narrower members hold the low bytes, which come first on every machine we build for
    return true;
}

namespace {

void appendQuoted(std::string& out, std::string_view text)
{
    out += '"';
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    out += '"';
}

} // namespace

std::string PathObject::text() const
{
    std::string out;
    if (!host.empty()) {
        out.append("//").append(host);
        if (!nameSpace.empty()) out += '/';
    }
    if (!nameSpace.empty() || !host.empty()) out.append(nameSpace).append(":");
    out.append(className);
    char separator = '.';
    for (const KeyBinding& key : *this) {
        out += separator;
        separator = ',';
        out.append(key.name).append("=");
        if (!isNull(key.data) && key.data.type == CMPI_string)
            appendQuoted(out, textOf(key.data.value));
        else if (!isNull(key.data) && key.data.type == CMPI_ref)
            appendQuoted(out, PathObject::of(key.data.value.ref).text());
        else
            out += valueText(key.data);
    }
    return out;
}

} // namespace KDV::Host
