// A small file that is replaced as a whole or not at all: the new content is written beside it, brought to disk and
// renamed over it. One writer at a time; what the kernel refuses is std::system_error with the file's name.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace KDV::Host {

class StateFile {
public:
    static constexpr std::size_t maxSize = 16u << 20;

    explicit StateFile(std::filesystem::path file) : _file(std::move(file)) {}

    const std::filesystem::path& path() const noexcept { return _file; }
    // None if there is no such file. A file larger than maxSize is std::runtime_error.
    std::optional<std::string> read() const;
    void write(std::string_view content) const;
    // Renames the file to the first free "<name>.broken-N" and returns that.
    std::filesystem::path putAside() const;

    // Called when the new content is on disk under its temporary name, before it gets its own; for tests.
    void setBeforeRename(std::function<void()> call) { _beforeRename = std::move(call); }

private:
    std::filesystem::path _file;
    std::function<void()> _beforeRename;
};

} // namespace KDV::Host
