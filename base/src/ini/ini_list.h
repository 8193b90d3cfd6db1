// Named records in order of appearance, found by name without a search through all of them.
#pragma once

#include "base/src/ini/ini_hash.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace rkb {

// Of a record_t is required that it has a std::string_view member `name`; the list keeps no text,
// so what the names point to must outlive it. Names are compared byte for byte. A name may stand
// in the list more than once; it is then found where it stands first. Finding and adding take
// constant time on average, whoever chose the names. For one thread at a time; concurrent finds
// are safe. Holds up to 2^32 - 2 records. Adding may throw std::bad_alloc and then changes nothing.
template <typename record_t>
class ini_list_t {
public:
    static constexpr uint32_t none = UINT32_MAX;

    const std::vector<record_t>& all() const { return m_records; }
    const record_t& operator[](uint32_t position) const { return m_records[position]; }

    // A record's name may be changed to the same text elsewhere, and to nothing else.
    record_t& operator[](uint32_t position) { return m_records[position]; }
    auto begin() { return m_records.begin(); }
    auto end() { return m_records.end(); }

    // The position of the first record of that name, or none.
    uint32_t find(std::string_view name) const
    {
        if (!m_slots.empty())
            return m_slots[slot_of(name, ini_hash(name))].position;
        for (uint32_t i = 0; i < m_records.size(); ++i) {
            if (m_records[i].name == name)
                return i;
        }
        return none;
    }

    // Adds a record at the end, also when there is one of that name, and returns its position.
    uint32_t append(std::string_view name)
    {
        make_room();
        const auto position = static_cast<uint32_t>(m_records.size());
        m_records.emplace_back().name = name;
        if (!m_slots.empty())
            index(position);
        return position;
    }

private:
    struct slot_t {
        uint32_t position = none;
        uint32_t hash = 0;
    };

    // Few names are searched faster than hashed, and most sections have few.
    static constexpr size_t max_unindexed = 8;

    // Where `name` is indexed, or the free slot where it would be.
    size_t slot_of(std::string_view name, uint32_t hash) const
    {
        const size_t mask = m_slots.size() - 1;
        size_t at = hash & mask;
        for (; m_slots[at].position != none; at = (at + 1) & mask) {
            if (m_slots[at].hash == hash && m_records[m_slots[at].position].name == name)
                break;
        }
        return at;
    }

    void index(uint32_t position)
    {
        const uint32_t hash = ini_hash(m_records[position].name);
        slot_t& slot = m_slots[slot_of(m_records[position].name, hash)];
        if (slot.position == none)
            slot = {position, hash};
    }

    // Sees to it that half of the slots are free after one record more.
    void make_room()
    {
        const size_t limit = m_slots.empty() ? max_unindexed : m_slots.size() / 2;
        if (m_records.size() < limit)
            return;
        std::vector<slot_t> former(4 * limit);
        m_slots.swap(former);
        if (former.empty()) {
            for (uint32_t i = 0; i < m_records.size(); ++i)
                index(i);
        } else {
            move_index(former);
        }
    }

    void move_index(const std::vector<slot_t>& former)
    {
        const size_t mask = m_slots.size() - 1;
        for (const slot_t& slot : former) {
            size_t at = slot.hash & mask;
            while (m_slots[at].position != none)
                at = (at + 1) & mask;
            if (slot.position != none)
                m_slots[at] = slot;
        }
    }

    std::vector<record_t> m_records;
    std::vector<slot_t> m_slots; // open addressing, a power of two long; none up to max_unindexed
};

} // namespace rkb
