#include "base/src/ini/ini_reader.h"

#include "base/src/ini/ini_line.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace rkb {

ini_reader_t::ini_reader_t(const char* path)
    : m_file(open(path, O_RDONLY | O_CLOEXEC))
    , m_buffer(std::make_unique_for_overwrite<char[]>(block_size))
{
}

ini_reader_t::~ini_reader_t()
{
    if (m_file >= 0)
        close(m_file);
}

bool ini_reader_t::next(std::string_view& line)
{
    return take_line(line, m_begin) || next_after_reading(line);
}

bool ini_reader_t::next_after_reading(std::string_view& line)
{
    for (;;) {
        if (m_end == m_capacity) {
            if (m_begin == 0 && ini_line_is_unprintable(m_buffer[0]))
                return take_rest(line);
            make_room();
        }
        const size_t count = read_more();
        if (count == 0)
            return m_at_end && take_rest(line);
        // Only the new bytes are searched, so that a long line in small pieces stays linear.
        if (take_line(line, m_end - count))
            return true;
    }
}

bool ini_reader_t::take_line(std::string_view& line, size_t search_from)
{
    const char* const begin = &m_buffer[m_begin];
    const void* const found = memchr(&m_buffer[search_from], '\n', m_end - search_from);
    if (!found)
        return false;
    line = {begin, static_cast<size_t>(static_cast<const char*>(found) - begin)};
    m_begin += line.size() + 1;
    return true;
}

bool ini_reader_t::take_rest(std::string_view& line)
{
    line = {&m_buffer[m_begin], m_end - m_begin};
    m_begin = m_end;
    return !line.empty();
}

void ini_reader_t::make_room()
{
    const size_t kept = m_end - m_begin;
    if (kept > m_capacity / 2) {
        auto larger = std::make_unique_for_overwrite<char[]>(m_capacity * 2);
        memcpy(larger.get(), &m_buffer[m_begin], kept);
        m_buffer = std::move(larger);
        m_capacity *= 2;
    } else {
        memmove(m_buffer.get(), &m_buffer[m_begin], kept);
    }
    m_begin = 0;
    m_end = kept;
}

size_t ini_reader_t::read_more()
{
    ssize_t count = 0;
    do
        count = read(m_file, &m_buffer[m_end], m_capacity - m_end);
    while (count < 0 && errno == EINTR);
    m_at_end = count == 0;
    const auto added = static_cast<size_t>(std::max<ssize_t>(count, 0));
    m_end += added;
    return added;
}

} // namespace rkb
