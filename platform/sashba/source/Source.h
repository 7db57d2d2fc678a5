// Where the state of the machine comes from. A session makes one source when its lists are created and asks it at every
// refresh; the source brings the record tree up to date. Called under the provider's mutex, so a source never waits for
// a device or another process: it hands over what it already has. It reports its own troubles to the log, leaves the
// tree at the last good state and throws nothing but std::bad_alloc.
#pragma once

namespace KDV {

class RecordTree;

class Source {
public:
    Source() = default;
    virtual ~Source();
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    // The first filling; an empty tree means that there is no HBA.
    virtual void load(RecordTree& tree) = 0;

    virtual void refresh(RecordTree& tree) = 0;
};

} // namespace KDV
