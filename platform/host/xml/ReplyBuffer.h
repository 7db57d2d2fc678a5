// Bytes of a reply while they are written: one growing block whose space is never cleared, so that appending is a copy
// and nothing else. Owned by the thread that serves the request; it keeps its block from request to request. Running
// out of memory is std::bad_alloc.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace KDV::Host {

class ReplyBuffer {
public:
    ReplyBuffer() = default;
    explicit ReplyBuffer(std::size_t capacity) { room(capacity); }
    ReplyBuffer(const ReplyBuffer&) = delete;
    ReplyBuffer& operator=(const ReplyBuffer&) = delete;
    ~ReplyBuffer();

    const char* data() const noexcept { return _begin; }
    std::size_t size() const noexcept { return static_cast<std::size_t>(_end - _begin); }
    bool empty() const noexcept { return _end == _begin; }
    std::string_view view() const noexcept { return {_begin, size()}; }

    // Space for at least `count` more bytes; what was written there counts after commit().
    char* room(std::size_t count)
    {
        if (static_cast<std::size_t>(_limit - _end) < count) grow(count);
        return _end;
    }
    void commit(char* end) noexcept { _end = end; }

    void append(std::string_view text)
    {
        if (text.empty()) return;
        std::memcpy(room(text.size()), text.data(), text.size());
        _end += text.size();
    }
    void append(char c)
    {
        *room(1) = c;
        ++_end;
    }
    void clear() noexcept { _end = _begin; }
    void truncate(std::size_t size) noexcept { _end = _begin + size; }
    // Gives memory back after a reply that was much larger than usual.
    void trim(std::size_t capacity) noexcept;

private:
    void grow(std::size_t count);

    char* _begin = nullptr;
    char* _end = nullptr;
    char* _limit = nullptr;
};

} // namespace KDV::Host
