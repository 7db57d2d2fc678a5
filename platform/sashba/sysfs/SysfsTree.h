// Reading of a sysfs tree, the kernel's own or a captured one. Paths are relative to the root and never lead out of it:
// links are followed by their text alone. Whatever is not there, is of another kind than expected or vanishes while it
// is read is answered with nothing; only regular files are read, to a bounded length, without ever blocking on one.
// Stateless after it was made: any thread. Throws std::bad_alloc only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KDV {

struct TreeEntry {
    std::string name;
    std::uint64_t identity = 0; // tells a link from another one made later under the same name
};

class SysfsTree {
public:
    explicit SysfsTree(std::string root);
    ~SysfsTree();
    SysfsTree(const SysfsTree&) = delete;
    SysfsTree& operator=(const SysfsTree&) = delete;

    // A directory of a tree as a tree of its own, for reading much of it: it stays the one that it was when another
    // one takes its place. Its links do not lead out of it.
    SysfsTree(const SysfsTree& whole, const std::string& path);

    const std::string& root() const noexcept { return _root; }

    // The file as it is; longer ones are cut.
    std::optional<std::string> bytes(const std::string& path) const;

    // Without white space around it; empty when there is nothing to read.
    std::string text(const std::string& path) const;
    std::optional<std::uint64_t> number(const std::string& path) const;

    // What is in a directory, at most a few thousand entries: in the order in which it is read, and the names in
    // natural order.
    std::vector<TreeEntry> entries(const std::string& path) const;
    std::vector<std::string> names(const std::string& path) const;

    // Where a link leads; the path itself for a directory; empty when it leads out of the tree or is neither.
    std::string target(const std::string& path) const;

    // Tells a directory from another one made later at the same path; 0 when there is none. The root is "".
    std::uint64_t identity(const std::string& path) const;

private:
    std::string _root;
    int _rootFd;
};

// The last component of a path, and what is before it.
std::string lastOf(const std::string& path);
std::string parentOf(const std::string& path);

} // namespace KDV
