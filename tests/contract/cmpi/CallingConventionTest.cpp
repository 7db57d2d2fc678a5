// The layout of the binary interface is asserted in AbiLayout.cpp while it compiles. What no layout shows is how the
// structs travel by value, so they are sent through function tables here, and texts through a value pointer.
#include "cmpi/ProviderTables.h"

#include <cstring>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

std::string seen;

CMPIStatus setProperty(const CMPIInstance*, const char* name, const CMPIValue* value, CMPIType type)
{
    seen = std::string(name) + "=" +
           (type == CMPI_chars ? reinterpret_cast<const char*>(value) : std::to_string(value->uint64));
    return {CMPI_RC_ERR_TYPE_MISMATCH, nullptr};
}

CMPIData getProperty(const CMPIInstance* self, const char*, CMPIStatus* status)
{
    CMPIData data{};
    data.type = CMPI_uint64;
    data.state = CMPI_keyValue;
    data.value.uint64 = 0x0123456789abcdefu;
    status->rc = CMPI_RC_ERR_NO_SUCH_PROPERTY;
    status->msg = reinterpret_cast<CMPIString*>(const_cast<CMPIInstance*>(self));
    return data;
}

CMPIStatus takeData(CMPIPropertyMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*, const char* name,
                    CMPIData data)
{
    seen = std::string(name) + "=" + std::to_string(data.value.sint64);
    return {CMPI_RC_OK, nullptr};
}

CMPIInstanceFT instanceTable()
{
    CMPIInstanceFT table{};
    table.getProperty = getProperty;
    table.setProperty = setProperty;
    return table;
}

} // namespace

TEST(CmpiCallingConvention, StatusComesBackByValueWithBothMembers)
{
    const CMPIInstanceFT table = instanceTable();
    const CMPIInstance instance{nullptr, &table};
    CMPIValue value{};
    value.uint64 = 42;
    const CMPIStatus status = instance.ft->setProperty(&instance, "Size", &value, CMPI_uint64);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_TYPE_MISMATCH);
    EXPECT_EQ(status.msg, nullptr);
    EXPECT_EQ(seen, "Size=42");
}

TEST(CmpiCallingConvention, TextsTravelInPlaceOfTheValuePointer)
{
    const CMPIInstanceFT table = instanceTable();
    const CMPIInstance instance{nullptr, &table};
    const char* text = "fan 1";
    instance.ft->setProperty(&instance, "Name", reinterpret_cast<const CMPIValue*>(text), CMPI_chars);
    EXPECT_EQ(seen, "Name=fan 1");
}

TEST(CmpiCallingConvention, DataTravelsByValueInBothDirections)
{
    const CMPIInstanceFT table = instanceTable();
    const CMPIInstance instance{nullptr, &table};
    CMPIStatus status{CMPI_RC_OK, nullptr};
    CMPIData data = instance.ft->getProperty(&instance, "Size", &status);
    EXPECT_EQ(data.type, CMPI_uint64);
    EXPECT_EQ(data.state, CMPI_keyValue);
    EXPECT_EQ(data.value.uint64, 0x0123456789abcdefu);
    EXPECT_EQ(status.rc, CMPI_RC_ERR_NO_SUCH_PROPERTY);
    EXPECT_EQ(static_cast<const void*>(status.msg), static_cast<const void*>(&instance));

    CMPIPropertyMIFT properties{};
    properties.setProperty = takeData;
    CMPIPropertyMI provider{nullptr, &properties};
    data.value.sint64 = -7;
    const CMPIStatus done = provider.ft->setProperty(&provider, nullptr, nullptr, nullptr, "Delta", data);
    EXPECT_EQ(done.rc, CMPI_RC_OK);
    EXPECT_EQ(seen, "Delta=-7");
}

TEST(CmpiCallingConvention, ReturnCodesOutsideTheListSurvive)
{
    const CMPIStatus status{static_cast<CMPIrc>(4711), nullptr};
    const CMPIStatus copy = status;
    EXPECT_EQ(static_cast<int>(copy.rc), 4711);
    static_assert(std::is_same_v<std::underlying_type_t<CMPIrc>, int>);
}
