#include "instances/KDV_SASArraySystemLocation.h"

#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASArraySystemLocation";

std::string slotNumberText(const SasHbaRecord& hba) { return joined({hba.slotNumber}); }

std::string locationName(const SasHbaRecord& hba) { return joined({"PCISLOT-", hba.slotNumber}); }

} // namespace

KDV_SASArraySystemLocation::KDV_SASArraySystemLocation(const Logger& logger, const std::string& nameSpace,
                                                       const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber), _modelText(controllerModelText(hba->modelCode)),
      _slotText(controllerSlotText(hba->slotNumber))
{
    keysReadFrom(&hba->slotNumber, sizeof hba->slotNumber);
}

KDV_SASArraySystemLocation::~KDV_SASArraySystemLocation() = default;

CmpiObjectPath KDV_SASArraySystemLocation::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("Name", locationName(*_hba));
    path.addKey("PhysicalPosition", slotNumberText(*_hba));
    return path;
}

CmpiInstance KDV_SASArraySystemLocation::getInstance()
{
    _log.info("getInstance()");
    const std::string elementText = hbaElementText(_modelText, _slotText);
    PropertyRows row(*this);
    row.string("Caption", elementText);
    row.string("ElementName", elementText);
    row.string("Description", elementText);
    row.string("Name", locationName(*_hba));
    row.string("PhysicalPosition", slotNumberText(*_hba));
    row.string("ElementLocationTag", slotNumberText(*_hba));
    row.uint16("ElementLocationTagDesc", LocationTag::Slot);
    row.stringArray("LocationInformation", {slotNumberText(*_hba)});
    row.uint16Array("LocationInfoDesc", {3}); // Slot Number
    return row.instance();
}

} // namespace KDV
