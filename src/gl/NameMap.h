#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace renderengine
{

/// The bytes at an address as a number, of any alignment.
template <class Word> Word loadWord(const char* bytes)
{
    Word word = 0;
    std::memcpy(&word, bytes, sizeof(Word));
    return word;
}

/// Hash of a name, eight bytes at a time. Programs have names that differ in one digit only, so every byte counts.
inline uint64_t hashName(std::string_view name)
{
    // 2^64 divided by the golden ratio, an odd number: multiplying by it loses nothing and spreads low bits upwards.
    constexpr uint64_t factor = 0x9E3779B97F4A7C15u;
    constexpr size_t wordSize = sizeof(uint64_t);
    uint64_t hash = name.size() * factor;
    const char* bytes = name.data();
    size_t left = name.size();
    for (; left >= wordSize; left -= wordSize, bytes += wordSize)
    {
        hash = (hash ^ loadWord<uint64_t>(bytes)) * factor;
        hash ^= hash >> 32;
    }
    if (left >= sizeof(uint32_t))
    {
        // Two halves that overlap cost less than a copy of a length that is not known.
        const uint64_t first = loadWord<uint32_t>(bytes);
        const uint64_t last = loadWord<uint32_t>(bytes + left - sizeof(uint32_t));
        hash = (hash ^ (first << 32 | last)) * factor;
    }
    else if (left != 0)
    {
        const auto byteAt = [bytes](size_t index) { return uint64_t{static_cast<unsigned char>(bytes[index])}; };
        hash = (hash ^ (byteAt(0) << 16 | byteAt(left / 2) << 8 | byteAt(left - 1))) * factor;
    }
    return hash ^ hash >> 32;
}

/// Equality of names, which are too short for a call of memcmp to pay off.
inline bool isSameName(std::string_view a, std::string_view b)
{
    constexpr size_t wordSize = sizeof(uint64_t);
    if (a.size() != b.size())
    {
        return false;
    }
    if (a.size() < wordSize)
    {
        return a == b;
    }
    // The last word overlaps the one before it.
    const size_t last = a.size() - wordSize;
    for (size_t i = 0; i < last; i += wordSize)
    {
        if (loadWord<uint64_t>(a.data() + i) != loadWord<uint64_t>(b.data() + i))
        {
            return false;
        }
    }
    return loadWord<uint64_t>(a.data() + last) == loadWord<uint64_t>(b.data() + last);
}

/// A map from names to values for many look-ups and few changes. A look-up hashes the name once and allocates nothing;
/// it compares characters only where 32 bits of the hash agree. Entries keep the order in which their names came.
template <class Value> class NameMap
{
public:
    using Entry = std::pair<std::string, Value>;

    /// The value of a name, or null. Valid until the next change of the map.
    const Value* find(std::string_view name) const
    {
        if (m_entries.empty())
        {
            return nullptr;
        }
        const uint64_t hash = hashName(name);
        const size_t mask = m_slots.size() - 1;
        for (size_t place = hash & mask; m_slots[place].entry != s_empty; place = (place + 1) & mask)
        {
            const Slot& slot = m_slots[place];
            if (slot.tag == tagOf(hash) && isSameName(m_entries[slot.entry].first, name))
            {
                return &m_entries[slot.entry].second;
            }
        }
        return nullptr;
    }

    /// Stores the value under the name, in the place of an earlier one.
    void set(std::string_view name, const Value& value)
    {
        if (const Value* stored = find(name))
        {
            const_cast<Value&>(*stored) = value;
            return;
        }
        m_entries.emplace_back(std::string(name), value);
        // At most every second slot is taken, so that a search ends soon.
        if (m_entries.size() * 2 > m_slots.size())
        {
            m_slots.assign(m_slots.empty() ? s_firstSize : m_slots.size() * 2, Slot());
            for (size_t i = 0; i < m_entries.size(); ++i)
            {
                take(i);
            }
        }
        else
        {
            take(m_entries.size() - 1);
        }
    }

    void clear()
    {
        m_entries.clear();
        m_slots.clear();
    }

    size_t size() const { return m_entries.size(); }
    bool empty() const { return m_entries.empty(); }
    const std::vector<Entry>& getEntries() const { return m_entries; }

private:
    static constexpr uint32_t s_empty = 0xFFFFFFFF;
    static constexpr size_t s_firstSize = 8; // a power of two, as all sizes

    struct Slot
    {
        uint32_t tag = 0;
        uint32_t entry = s_empty;
    };

    static uint32_t tagOf(uint64_t hash) { return static_cast<uint32_t>(hash >> 32); }

    void take(size_t entry)
    {
        const uint64_t hash = hashName(m_entries[entry].first);
        const size_t mask = m_slots.size() - 1;
        size_t place = hash & mask;
        while (m_slots[place].entry != s_empty)
        {
            place = (place + 1) & mask;
        }
        m_slots[place] = {tagOf(hash), static_cast<uint32_t>(entry)};
    }

    std::vector<Entry> m_entries;
    std::vector<Slot> m_slots;
};

} // namespace renderengine
