#include "cim/Instance.h"

#include <cstdlib>
#include <strings.h>

namespace Cim {
namespace {

const std::string nothing;

} // namespace

bool sameName(const std::string& a, const std::string& b) { return ::strcasecmp(a.c_str(), b.c_str()) == 0; }

const std::string& Path::key(const std::string& name) const
{
    for (const Key& key : keys)
        if (sameName(key.name, name)) return key.value;
    return nothing;
}

const Property* Instance::find(const std::string& name) const
{
    for (const Property& property : properties)
        if (sameName(property.name, name)) return &property;
    return nullptr;
}

std::string Instance::text(const std::string& name) const
{
    const Property* property = find(name);
    return property && !property->values.empty() ? property->values.front() : nothing;
}

unsigned long Instance::number(const std::string& name, unsigned long otherwise) const
{
    const std::string value = text(name);
    char* end = nullptr;
    const unsigned long number = std::strtoul(value.c_str(), &end, 10);
    return end == value.c_str() ? otherwise : number;
}

std::vector<unsigned long> Instance::numbers(const std::string& name) const
{
    std::vector<unsigned long> result;
    if (const Property* property = find(name))
        for (const std::string& value : property->values)
            result.push_back(std::strtoul(value.c_str(), nullptr, 10));
    return result;
}

} // namespace Cim
