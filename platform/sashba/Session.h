// What belongs to one root: its record tree and the source behind it. Sessions are found by the address of their root,
// never end and so keep every record readable for the life of the process; lists that are created anew for a root find
// their records again, zeroed. The table of sessions has its own lock; a session itself is used under the provider's
// mutex. Throws std::bad_alloc only.
#pragma once

#include "sashba/RecordTree.h"
#include "sashba/source/Source.h"

#include <memory>

namespace KDV {

class Session {
public:
    static Session& createFor(const SasDataRoot* root);
    static Session* of(const SasDataRoot* root); // null for a root that no lists were created for

    // Starts over: no record is linked until the source has loaded.
    void begin(std::unique_ptr<Source> source);
    void refresh();

    SasHbaRecord* head() const noexcept { return _tree.head(); }

private:
    RecordTree _tree;
    std::unique_ptr<Source> _source; // null: nothing was chosen
};

} // namespace KDV
