// The lines of an ini file, read in blocks.
#pragma once

#include "base/src/util/no_copy.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace rkb {

// For one thread. Takes memory for one block, more only while a line is longer than that: then
// for the line. May throw std::bad_alloc.
class ini_reader_t : no_copy {
public:
    explicit ini_reader_t(const char* path);
    ~ini_reader_t();

    bool is_open() const { return m_file >= 0; }

    // True once next() has met the end of the file, false while there is more or after an error.
    bool is_at_end() const { return m_at_end; }

    // The next line without its "\n", valid until the next call; the last one needs none. False at
    // the end and after a read error. Of a line that is unprintable (ini_line.h) and longer than a
    // block only the start is given: its reader stops there.
    bool next(std::string_view& line);

private:
    static constexpr size_t block_size = 65'536;

    bool next_after_reading(std::string_view& line);
    bool take_line(std::string_view& line, size_t search_from);
    bool take_rest(std::string_view& line);
    void make_room();
    size_t read_more();

    int m_file;
    bool m_at_end = false;
    std::unique_ptr<char[]> m_buffer;
    size_t m_capacity = block_size;
    size_t m_begin = 0; // of what is read and not yet given out
    size_t m_end = 0;
};

} // namespace rkb
