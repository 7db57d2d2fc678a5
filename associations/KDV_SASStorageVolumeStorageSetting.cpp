#include "associations/KDV_SASStorageVolumeStorageSetting.h"

using namespace CmpiCpp;
namespace KDV {
namespace {
constexpr char className[] = "KDV_SASStorageVolumeStorageSetting";
}

using Link = KDV_SASStorageVolumeStorageSetting;

Link::KDV_SASStorageVolumeStorageSetting(const Logger& logger, const std::string& nameSpace,
                                         const CmpiManagedInstance* volume, const CmpiManagedInstance* setting)
    : CmpiManagedInstanceAssociation(className), _nameSpace(nameSpace), _log(logger, className), _volume(volume),
      _setting(setting)
{
    joins(ends().first, ends().second);
}

Link::~KDV_SASStorageVolumeStorageSetting() = default;

TwoEnds Link::ends() const { return {{"ManagedElement", _volume}, {"SettingData", _setting}}; }

CmpiObjectPath Link::getPath() const
{
    _log.info("getPath()");
    return ends().path(_nameSpace, className);
}

CmpiInstance Link::getInstance()
{
    _log.info("getInstance()");
    PropertyRows row = ends().rows(*this);
    // 1 Is Current and 1 Is Default: numbers of a value map, not booleans.
    row.uint16("IsCurrent", 1);
    row.uint16("IsDefault", 1);
    return row.instance();
}

CmpiObjectPath Link::getAssociatedPath(const CmpiObjectPath& given) const
{
    _log.info("getAssociatedPath()");
    return ends().other(given);
}

} // namespace KDV
