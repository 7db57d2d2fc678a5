// A source over a fake tree, its records, and what it reported.
#pragma once

#include "FakeSysfs.h"
#include "records/Records.h"
#include "sashba/RecordTree.h"
#include "sashba/sysfs/CapturedDevice.h"
#include "sashba/sysfs/SysfsSource.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace KDV {

struct Reports {
    std::mutex lock;
    std::vector<std::string> errors, infos;
    int passesWanted = 0;
};

class LiveRecords {
public:
    // Without an opener devices are asked through the pages beside the tree.
    explicit LiveRecords(const FakeSysfs& sysfs, std::shared_ptr<DeviceOpener> opener = nullptr,
                         SysfsSettings settings = {})
    {
        settings.firstAnswers = std::chrono::seconds(60); // for tests under load; they are there in no time
        SysfsSurroundings surroundings;
        surroundings.reportError = [to = reports](const std::string& text) {
            const std::lock_guard<std::mutex> guard(to->lock);
            to->errors.push_back(text);
        };
        surroundings.reportInfo = [to = reports](const std::string& text) {
            const std::lock_guard<std::mutex> guard(to->lock);
            to->infos.push_back(text);
        };
        surroundings.requestPass = [to = reports] {
            const std::lock_guard<std::mutex> guard(to->lock);
            ++to->passesWanted;
        };
        surroundings.opener = opener ? opener : std::shared_ptr<DeviceOpener>(makeCaptureOpener(sysfs.root()));
        source = std::make_unique<SysfsSource>(sysfs.root(), settings, surroundings);
        source->load(tree);
    }

    void refresh() { source->refresh(tree); }

    template <class Record>
    static std::vector<const Record*> list(const Record* head)
    {
        std::vector<const Record*> all;
        for (; head; head = head->next.get())
            all.push_back(head);
        return all;
    }
    std::vector<const SasHbaRecord*> hbas() const { return list<SasHbaRecord>(tree.head()); }
    const SasHbaRecord& hba(std::size_t index = 0) const { return *hbas().at(index); }
    std::vector<const SasPhysicalDriveRecord*> drives(std::size_t hbaIndex = 0) const
    {
        return list<SasPhysicalDriveRecord>(hba(hbaIndex).physicalDrives.get());
    }
    std::vector<const SasStorageBoxRecord*> boxes(std::size_t hbaIndex = 0) const
    {
        return list<SasStorageBoxRecord>(hba(hbaIndex).storageBoxes.get());
    }
    std::vector<const SasLogicalDriveRecord*> volumes(std::size_t hbaIndex = 0) const
    {
        return list<SasLogicalDriveRecord>(hba(hbaIndex).logicalDrives.get());
    }
    std::vector<std::uint32_t> driveNumbers(std::size_t hbaIndex = 0) const
    {
        std::vector<std::uint32_t> numbers;
        for (const SasPhysicalDriveRecord* drive : drives(hbaIndex))
            numbers.push_back(+drive->driveNumber);
        return numbers;
    }

    std::shared_ptr<Reports> reports = std::make_shared<Reports>();
    RecordTree tree;
    std::unique_ptr<SysfsSource> source;
};

// All fields of a record as lines "name = value", so that a test can hold a whole record against its text.
std::string fieldsOf(const SasHbaRecord& hba);
std::string fieldsOf(const SasPhysicalDriveRecord& drive);
std::string fieldsOf(const SasStorageBoxRecord& box);
std::string fieldsOf(const SasLogicalDriveRecord& volume);

} // namespace KDV
