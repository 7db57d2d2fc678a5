#include "instances/KDV_SASProduct.h"

#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Joined.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASProduct";

std::string identifyingNumber(std::uint32_t hbaNumber) { return joined({className, "-", hbaNumber}); }

} // namespace

KDV_SASProduct::KDV_SASProduct(const Logger& logger, const std::string& nameSpace, const SasHbaRecord* hba)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hba(hba),
      _hbaNumber(hba->hbaNumber), _modelText(controllerModelText(hba->modelCode)),
      _slotText(controllerSlotText(hba->slotNumber))
{
    keysReadFrom(&hba->firmwareVersion, sizeof hba->firmwareVersion);
}

KDV_SASProduct::~KDV_SASProduct() = default;

CmpiObjectPath KDV_SASProduct::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("IdentifyingNumber", identifyingNumber(_hbaNumber));
    path.addKey("Name", _modelText);
    path.addKey("Vendor", "ZT");
    path.addKey("Version", FieldText(_hba->firmwareVersion).c_str());
    return path;
}

CmpiInstance KDV_SASProduct::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row(*this);
    row.string("ElementName", hbaElementText(_modelText, _slotText));
    row.string("IdentifyingNumber", identifyingNumber(_hbaNumber));
    row.string("Name", _modelText);
    row.string("Vendor", "ZT");
    row.string("Version", _hba->firmwareVersion);
    return row.instance();
}

} // namespace KDV
