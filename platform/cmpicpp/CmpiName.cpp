#include "cmpicpp/CmpiName.h"

namespace CmpiCpp {

namespace {

// Only ASCII letters fold, whatever the locale.
unsigned char folded(char c) noexcept
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte | 0x20) : byte;
}

} // namespace

bool operator==(const CmpiName& a, const CmpiName& b) noexcept
{
    const char* left = a.c_str();
    const char* right = b.c_str();
    if (left == right) return true;
    while (folded(*left) == folded(*right)) {
        if (*left == '\0') return true;
        ++left;
        ++right;
    }
    return false;
}

} // namespace CmpiCpp
