#include "sasdata/SasStorageBox.h"

namespace KDV {

SasStorageBox::SasStorageBox(const Logger& creator, SasStorageBoxRecord* storageBoxRecord)
    : boxNumber(storageBoxRecord->boxNumber), record(storageBoxRecord), logger(creator)
{
    logger.appendLogSource(":");
    logger.appendLogSource("SASStorageBox");
    logger.info("cxtor()");
}

SasStorageBox::~SasStorageBox() { logger.info("dxtor()"); }

} // namespace KDV
