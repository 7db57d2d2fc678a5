#include "kdv-sas/TableView.h"

#include "kdv-sas/PathText.h"

#include <algorithm>
#include <ostream>

namespace KdvSas {

std::string valueText(const Cim::Property& property)
{
    if (property.isNull) return "(null)";
    if (property.reference) return pathText(*property.reference);
    if (!property.isArray) return property.values.empty() ? "" : property.values.front();
    std::string text = "{";
    for (std::size_t i = 0; i < property.values.size(); ++i)
        text += (i ? ", " : "") + property.values[i];
    return text + "}";
}

void printInstance(std::ostream& out, const Cim::Instance& instance)
{
    out << pathText(instance.path.className.empty() ? Cim::Path{instance.className, "", {}} : instance.path) << "\n";
    std::size_t width = 0;
    for (const Cim::Property& property : instance.properties)
        width = std::max(width, property.name.size());
    for (const Cim::Property& property : instance.properties)
        out << "  " << property.name << std::string(width + 2 - property.name.size(), ' ') << valueText(property)
            << "\n";
    out << "\n";
}

} // namespace KdvSas
