#include "base/src/ini/ini_text.h"

#include <algorithm>
#include <cstring>

namespace rkb {

std::string_view ini_text_t::keep(std::string_view text)
{
    if (text.empty())
        return {};
    char* copy = m_next;
    if (text.size() <= m_left) {
        m_next += text.size();
        m_left -= text.size();
    } else {
        copy = take_from_new_block(text.size());
    }
    memcpy(copy, text.data(), text.size());
    m_size += text.size();
    return {copy, text.size()};
}

char* ini_text_t::take_from_new_block(size_t count)
{
    const size_t size = std::clamp(m_size, min_block, max_block);
    // A long text gets a block of its own, so that little of the block in use goes to waste.
    if (count > size / 4)
        return new_block(count);
    char* const block = new_block(size);
    m_next = block + count;
    m_left = size - count;
    return block;
}

char* ini_text_t::new_block(size_t size)
{
    m_blocks.push_back(std::make_unique_for_overwrite<char[]>(size));
    return m_blocks.back().get();
}

} // namespace rkb
