#include "instances/Rows.h"

#include "common/KDVUtil.h"

#include <string>

using namespace CmpiCpp;
namespace KDV {

PropertyRows::PropertyRows(const CmpiManagedInstance& object)
    : _instance(makeCmpiInstance(KDVUtil::getBroker(), object.getPath()))
{
}

void PropertyRows::uint16Array(Name name, std::initializer_list<std::uint16_t> values)
{
    if (!_instance.wants(name)) return;
    CmpiArray array = emptyUint16Array(static_cast<std::uint32_t>(values.size()));
    CMPICount index = 0;
    for (const std::uint16_t value : values)
        array.setElementAt(index++, value);
    _instance.addProperty(name, array);
}

void PropertyRows::stringArray(Name name, std::initializer_list<std::string_view> texts)
{
    if (!_instance.wants(name)) return;
    CmpiArray array = makeCmpiArray(KDVUtil::getBroker(), static_cast<CMPICount>(texts.size()), CMPI_string);
    CMPICount index = 0;
    for (const std::string_view text : texts)
        array.setElementAt(index++, std::string(text));
    _instance.addProperty(name, array);
}

CmpiArray emptyUint16Array(std::uint32_t count) { return makeCmpiArray(KDVUtil::getBroker(), count, CMPI_uint16); }

} // namespace KDV
