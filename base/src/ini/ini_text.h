// Storage for the texts of an ini file: many small ones, kept until all go.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace rkb {

// For one thread at a time. May throw std::bad_alloc and then changes nothing.
class ini_text_t {
public:
    ini_text_t() = default;

    // With room for `size` bytes in all.
    explicit ini_text_t(size_t size)
        : m_next(new_block(size))
        , m_left(size)
    {
    }

    // Copies `text`; the copy stays where it is as long as the storage lives, moved or not.
    std::string_view keep(std::string_view text);

    // The bytes kept in all.
    size_t size() const { return m_size; }

private:
    // Blocks grow with what is kept, to this size.
    static constexpr size_t min_block = 512;
    static constexpr size_t max_block = 65'536;

    char* take_from_new_block(size_t count);
    char* new_block(size_t size);

    std::vector<std::unique_ptr<char[]>> m_blocks;
    char* m_next = nullptr; // in the block that is being filled
    size_t m_left = 0;
    size_t m_size = 0;
};

} // namespace rkb
