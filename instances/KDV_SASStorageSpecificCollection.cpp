#include "instances/KDV_SASStorageSpecificCollection.h"

#include "common/KDVUtil.h"
#include "instances/CimValues.h"
#include "instances/DevicePath.h"
#include "instances/HbaText.h"
#include "instances/Rows.h"

using namespace CmpiCpp;
namespace KDV {
namespace {

constexpr char className[] = "KDV_SASStorageSpecificCollection";

constexpr char instanceId[] = "KDV_SASStorageSpecificCollection-1";

// The worst of the array system states; without any HBA all is well.
std::uint16_t groupStatus(const SasHbaRecord* hbas)
{
    operationalStatus worst = OperationalStatusOK;
    for (const SasHbaRecord* hba = hbas; hba; hba = hba->next.get())
        worst = KDVUtil::updateWorst(worst, operationalStatus{arraySystemStatus[hba->arraySystemStatus]});
    return worst;
}

const char* statusText(std::uint16_t status)
{
    switch (status) {
    case OperationalStatus::OK:
        return "SAS HBA controllers and the attached storage are operating properly.";
    case OperationalStatus::Degraded:
        return "One or more SAS HBAs, physical drives, logical drives, or storage enclosures are in degraded "
               "condition.";
    case OperationalStatus::Error:
        return "One or more SAS HBA failures or logical drive failures have occurred, or one or more storage "
               "enclosures are in critical condition.";
    default:
        return "One or more SAS HBAs, physical drives, logical drives, or storage enclosures are in unknown condition.";
    }
}

} // namespace

KDV_SASStorageSpecificCollection::KDV_SASStorageSpecificCollection(const Logger& logger, const std::string& nameSpace,
                                                                   const SasHbaRecord* hbas)
    : CmpiManagedInstance(className), _nameSpace(nameSpace), _log(logger, className), _hbas(hbas)
{
}

KDV_SASStorageSpecificCollection::~KDV_SASStorageSpecificCollection() = default;

CmpiObjectPath KDV_SASStorageSpecificCollection::getPath() const
{
    _log.info("getPath()");
    CmpiObjectPath path = hostPath(_nameSpace, className);
    path.addKey("InstanceID", instanceId);
    return path;
}

CmpiInstance KDV_SASStorageSpecificCollection::getInstance()
{
    _log.info("getInstance()");
    const std::uint16_t status = groupStatus(_hbas);
    PropertyRows row(*this);
    row.string("Caption", "SAS HBA Consolidated Status");
    row.string("Description", "A consolidated OperationalStatus for all ZTSAS_ArraySystem instances");
    row.string("ElementName", "SAS HBA Consolidated Status");
    row.string("InstanceID", instanceId);
    row.uint16Array("GroupOperationalStatus", {status});
    row.stringArray("GroupStatusDescriptions", {statusText(status)});
    return row.instance();
}

} // namespace KDV
