#include "instances/KDV_SASStorageEnclosureProcessor.h"

#include "instances/CimValues.h"
#include "instances/CodeMap.h"
#include "instances/DevicePath.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageEnclosureProcessor";

constexpr CodeMap<std::uint16_t, 3> boxStatus{
    {{2, OperationalStatus::OK}, {3, OperationalStatus::Degraded}, {4, OperationalStatus::Error}},
    OperationalStatus::Unknown};

// Failed is 5 for fans and power supplies and 4 for the temperature; each time the other of the two is unknown.
constexpr CodeMap<std::uint16_t, 3> fanStatus{
    {{2, BoxStatus::FanOK}, {3, BoxStatus::FanDegraded}, {5, BoxStatus::FanFailed}}, BoxStatus::FanUnknown};
constexpr CodeMap<std::uint16_t, 3> powerStatus{
    {{2, BoxStatus::PowerOK}, {3, BoxStatus::PowerDegraded}, {5, BoxStatus::PowerFailed}}, BoxStatus::PowerUnknown};
constexpr CodeMap<std::uint16_t, 3> temperatureStatus{
    {{2, BoxStatus::TemperatureOK}, {3, BoxStatus::TemperatureDegraded}, {4, BoxStatus::TemperatureFailed}},
    BoxStatus::TemperatureUnknown};

std::string boxIdentity(std::uint32_t hbaNumber, std::uint32_t boxNumber)
{
    return joined({className, "-", hbaNumber, "-", boxNumber});
}

} // namespace

KDV_SASStorageEnclosureProcessor::KDV_SASStorageEnclosureProcessor(const Logger& logger, const std::string& nameSpace,
                                                                   const SasHbaRecord* hba,
                                                                   const SasStorageBoxRecord* box)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba), _box(box),
      _hbaNumber(hba->hbaNumber), _boxNumber(box->boxNumber)
{
}

KDV_SASStorageEnclosureProcessor::~KDV_SASStorageEnclosureProcessor() = default;

CmpiObjectPath KDV_SASStorageEnclosureProcessor::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("CreationClassName", className);
    path.addKey("Name", boxIdentity(_hbaNumber, _boxNumber));
    return path;
}

CmpiInstance KDV_SASStorageEnclosureProcessor::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", _box->name);
    row.uint16Array("OperationalStatus", {boxStatus[_box->status], fanStatus[_box->fanStatus],
                                          powerStatus[_box->powerStatus], temperatureStatus[_box->temperatureStatus]});
    row.uint16("EnabledDefault", EnabledDefault::Enabled);
    row.uint16("EnabledState", EnabledState::NotApplicable);
    row.uint16("RequestedState", RequestedState::NotApplicable);
    row.string("CreationClassName", className);
    row.string("Name", boxIdentity(_hbaNumber, _boxNumber));
    row.string("NameFormat", "other"); // lower case on purpose, unlike the array system's
    row.uint16Array("Dedicated", {2}); // Other: described below
    row.stringArray("IdentifyingDescriptions", {"Other Vendor Specific Name"});
    row.stringArray("OtherDedicatedDescriptions", {"SDE"});
    row.stringArray("OtherIdentifyingInfo", {joined({_box->manufacturer, ":", _box->serialNumber})});
    return row.instance();
}

} // namespace KDV
