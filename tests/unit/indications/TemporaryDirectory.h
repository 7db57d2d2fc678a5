// A directory of a test's own, removed with it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

class TemporaryDirectory {
public:
    TemporaryDirectory()
    {
        std::string name = (std::filesystem::temp_directory_path() / "kdv-indications-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("no temporary directory");
        _path = name;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        std::filesystem::permissions(_path, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    const std::filesystem::path& path() const { return _path; }

private:
    std::filesystem::path _path;
};
