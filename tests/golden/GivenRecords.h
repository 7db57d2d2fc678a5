// The records that a golden case describes, built field by field. Every byte that no line sets is garbage, so that a
// class that reads a field which its file does not give shows it. Lives as long as the objects that point at it.
#pragma once

#include "RowsFile.h"
#include "logger/Logger.h"
#include "machine/TestMachine.h"
#include "sasdata/SasPhysicalDrive.h"

#include <memory>

namespace KDV::Test {

class GivenRecords {
public:
    explicit GivenRecords(const Logger& logger);

    // Throws std::runtime_error for a field that there is not and a value that does not fit.
    //   hba.F, drive.F, box.F, volume.F   a field of the record, a number or a quoted text
    //   rebuilding 0 or 1                 the mark of the drive's device object
    //   poolKind N                        the kind that capabilities are made for
    //   drives 2:100, 3:50                the adapter's drives, as usage and size, in place of those before
    //   adapters 2, 3                     the list of adapters by their array system status, in place of those before
    void set(const GoldenSetting& setting);

    SasHbaRecord* hba;
    SasLogicalDriveRecord* volume;
    SasStorageBoxRecord* box;
    SasPhysicalDriveRecord* drive;
    SasPhysicalDrive* driveObject;
    std::uint32_t poolKind = 0xEEEEEEEE;
    SasHbaRecord* adapters = nullptr;

private:
    void setDrives(const std::string& list);
    void setAdapters(const std::string& list);

    std::unique_ptr<SasPhysicalDrive> _driveObject;
    TestMachine _machine;
};

} // namespace KDV::Test
