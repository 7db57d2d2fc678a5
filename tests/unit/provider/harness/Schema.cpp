#include "harness/Schema.h"

namespace KDV::Test {

const Host::ClassRepository& schema()
{
    static const Host::ClassRepository* const repository = [] {
        auto* classes = new Host::ClassRepository;
        classes->loadFile(KDV_SOURCE_DIR "/schema/core/cim-core.mof", "root/vnr");
        classes->loadFile(KDV_SOURCE_DIR "/schema/kdv-sas.mof", "root/vnr");
        // A server's own computer system, in a namespace of its own.
        classes->loadText("class KDV_ComputerSystem { [Key] string CreationClassName; [Key] string Name; };",
                          "root/other");
        return classes;
    }();
    return *repository;
}

} // namespace KDV::Test
