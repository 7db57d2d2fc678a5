// Pages as devices write them, put together from their parts. Lengths in the headers are right unless a test spoils
// them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace KDV {

inline std::string bytesOf(std::initializer_list<int> values)
{
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

inline std::string number16(std::size_t value) { return {static_cast<char>(value >> 8), static_cast<char>(value)}; }

inline std::string number64(std::uint64_t value)
{
    std::string bytes(8, '\0');
    for (std::size_t at = 8; at > 0; value >>= 8)
        bytes[--at] = static_cast<char>(value);
    return bytes;
}

inline std::string padded(std::string text, std::size_t bytes)
{
    text.resize(bytes, ' ');
    return text;
}

inline std::string logParameter(unsigned code, const std::string& data)
{
    return number16(code) + '\x03' + static_cast<char>(data.size()) + data;
}

inline std::string logPage(unsigned code, const std::string& body)
{
    return std::string(1, static_cast<char>(code)) + '\0' + number16(body.size()) + body;
}

struct SesType {
    int type;
    int elements;
};

inline std::string sesPage(int code, int second, const std::string& body, int generation = 1)
{
    return bytesOf({code, second}) + number16(body.size() + 4) + bytesOf({0, 0, 0, generation}) + body;
}

inline std::string sesConfiguration(const std::vector<SesType>& types, std::uint64_t id = 0x500a098000005080)
{
    std::string body = bytesOf({0x11, 0, static_cast<int>(types.size()), 36}) + number64(id) + padded("GLOBEX", 8) +
                       padded("SHELF 24", 16) + padded("0307", 4);
    for (const SesType& type : types)
        body += bytesOf({type.type, type.elements, 0, 0});
    return sesPage(0x01, 0, body);
}

// Elements of four bytes each; an overall element comes before those of each type.
inline std::string sesStatus(int flags, const std::vector<std::vector<std::string>>& elementsOfTypes)
{
    std::string body;
    for (const auto& elements : elementsOfTypes) {
        body += std::string(4, '\0');
        for (const std::string& element : elements)
            body += element;
    }
    return sesPage(0x02, flags, body);
}

inline std::string sesElement(int code, int second = 0, int third = 0, int fourth = 0)
{
    return bytesOf({code, second, third, fourth});
}

// The descriptor of a bay with one SAS phy, with the element's index.
inline std::string sesSlotDescriptor(int element, int slot, std::uint64_t sasAddress)
{
    const std::string phy =
        std::string(4, '\0') + number64(0x500a098000005080) + number64(sasAddress) + std::string(8, '\0');
    const std::string body = bytesOf({0, element}) + bytesOf({1, 0, 0, slot}) + phy;
    return bytesOf({0x16, static_cast<int>(body.size())}) + body;
}

} // namespace KDV
