// A file that is read again when it changes. Looking at an unchanged file costs one stat. A file that was written just
// before it was read could change once more without a new time stamp, so it is compared once by content. Only regular
// files of bounded size are read, and opening never blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/stat.h>

namespace KDV {

class WatchedFile {
public:
    static constexpr std::size_t mostBytes = std::size_t{64} * 1024 * 1024;

    enum class Sight {
        Same,       // nothing new since the last look
        NewText,    // text() is another than before
        Unreadable, // trouble() says why; told once until it changes
    };

    explicit WatchedFile(std::string path);

    Sight look();

    const std::string& path() const noexcept { return _path; }
    const std::string& text() const noexcept { return _text; }
    const std::string& trouble() const noexcept { return _trouble; }

    // Gives the memory of the text back once it was used.
    void forgetText() { std::string().swap(_text); }

private:
    Sight unreadable(const std::string& trouble);
    Sight readAgain();
    bool readAll(int file, std::size_t expectedBytes);

    std::string _path;
    std::string _text;
    std::string _trouble;
    struct stat _seen {};
    std::size_t _contentHash = 0;
    bool _hasContent = false;
    bool _settled = false; // the stamp tells every later change
};

} // namespace KDV
