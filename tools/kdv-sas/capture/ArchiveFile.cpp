#include "capture/ArchiveFile.h"

#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace KdvSas {
namespace {

[[noreturn]] void failed(const std::string& file, const std::string& why)
{
    throw std::runtime_error("cannot write " + file + ": " + why);
}

[[noreturn]] void failed(const std::string& file) { failed(file, std::generic_category().message(errno)); }

// Goes with the object unless it was renamed.
class UnfinishedFile {
public:
    explicit UnfinishedFile(const std::string& file) : _name(file + ".XXXXXX"), _fd(mkostemp(_name.data(), 0))
    {
        if (_fd < 0) failed(file);
    }
    ~UnfinishedFile()
    {
        if (_fd >= 0) close(_fd);
        if (!_name.empty()) unlink(_name.c_str());
    }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    int get() const noexcept { return _fd; }

    void finish(const std::string& file)
    {
        if (fsync(_fd) != 0 && errno != EINVAL) failed(file);
        const int fd = _fd;
        _fd = -1;
        if (close(fd) != 0) failed(file);
        if (std::rename(_name.c_str(), file.c_str()) != 0) failed(file);
        _name.clear();
    }

private:
    std::string _name;
    int _fd;
};

struct EndWriting {
    void operator()(archive* made) const { archive_write_free(made); }
};
struct EndEntry {
    void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};
using Writer = std::unique_ptr<archive, EndWriting>;
using Entry = std::unique_ptr<archive_entry, EndEntry>;

// A capture is the same whoever makes it when: no owner, no time.
void describe(const CapturedEntry& from, archive_entry* entry)
{
    archive_entry_clear(entry);
    archive_entry_set_pathname(entry, from.path.c_str());
    archive_entry_set_mtime(entry, 0, 0);
    switch (from.kind) {
    case CapturedEntry::Kind::File:
        archive_entry_set_filetype(entry, AE_IFREG);
        archive_entry_set_perm(entry, 0644);
        archive_entry_set_size(entry, static_cast<la_int64_t>(from.content.size()));
        break;
    case CapturedEntry::Kind::Link:
        archive_entry_set_filetype(entry, AE_IFLNK);
        archive_entry_set_perm(entry, 0777);
        archive_entry_set_symlink(entry, from.content.c_str());
        break;
    case CapturedEntry::Kind::Folder:
        archive_entry_set_filetype(entry, AE_IFDIR);
        archive_entry_set_perm(entry, 0755);
        break;
    }
}

} // namespace

void writeArchive(const std::string& file, const std::vector<CapturedEntry>& entries)
{
    UnfinishedFile unfinished(file);
    const Writer writer(archive_write_new());
    const Entry entry(archive_entry_new());
    if (!writer || !entry) throw std::bad_alloc();
    const auto need = [&](la_ssize_t result) {
        if (result < ARCHIVE_WARN) failed(file, archive_error_string(writer.get()));
    };
    need(archive_write_add_filter_gzip(writer.get()));
    need(archive_write_set_format_gnutar(writer.get())); // takes names as bytes, of any length
    need(archive_write_open_fd(writer.get(), unfinished.get()));
    for (const CapturedEntry& each : entries) {
        describe(each, entry.get());
        need(archive_write_header(writer.get(), entry.get()));
        if (each.kind == CapturedEntry::Kind::File && !each.content.empty())
            need(archive_write_data(writer.get(), each.content.data(), each.content.size()));
    }
    need(archive_write_close(writer.get()));
    unfinished.finish(file);
}

} // namespace KdvSas
