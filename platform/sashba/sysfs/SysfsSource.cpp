#include "sashba/sysfs/SysfsSource.h"

#include "sashba/RecordTree.h"

#include <utility>

namespace KDV {

SysfsSource::SysfsSource(const std::string& root, SysfsSurroundings surroundings)
    : _sysfs(root), _surroundings(std::move(surroundings))
{
}

SysfsSource::~SysfsSource() = default;

void SysfsSource::load(RecordTree& tree)
{
    take(tree);
}

void SysfsSource::refresh(RecordTree& tree)
{
    take(tree);
}

void SysfsSource::take(RecordTree& tree)
{
    const Machine machine = _builder.build(_scan.scan(), {});
    tree.take(machine);
    reportHbas(machine);
    if (_builder.wantsAnotherPass())
        _surroundings.requestPass();
}

// One line a change, not one a refresh.
void SysfsSource::reportHbas(const Machine& machine)
{
    std::string text = "no SAS adapter found below " + _sysfs.root() +
                       ", so there is no HBA; check that its driver is loaded (ls " + _sysfs.root() +
                       "/class/scsi_host), or try a scenario: set KDV_SAS_SCENARIO to the path of a scenario file";
    if (!machine.empty()) {
        text = std::to_string(machine.size()) + " SAS adapter(s) below " + _sysfs.root() + ":";
        for (const MachineHba& hba : machine)
            text += " [" + std::string(textOf(hba.hba.image.name)) + "]";
    }
    if (text == _reported)
        return;
    _surroundings.reportInfo(text);
    _reported = text;
}

} // namespace KDV
