#pragma once

#include <renderengine/Handle.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace renderengine
{

/// Distinct shader buffers of a slot, each with its place in the merged buffer: 0, 1 and so on in the order in which
/// they were added. Kept in the order of their handles, so that equal draws give equal sequences of GL calls.
class ShaderBufferIndices
{
public:
    using Entry = std::pair<ShaderBufferHandle, int32_t>;

    /// Gives the handle the next place, unless it has one. The members of a draw mostly have rising handles, which are
    /// appended; any other place is made room for.
    void add(const ShaderBufferHandle& handle)
    {
        const auto place = m_entries.empty() || m_entries.back().first.id < handle.id ? m_entries.end() : lower(handle);
        if (place == m_entries.end() || place->first != handle)
        {
            m_entries.emplace(place, handle, static_cast<int32_t>(m_entries.size()));
        }
    }

    /// Replaces the content: the same as to add the handles one by one, in a time that hardly depends on their order.
    void assign(const std::vector<ShaderBufferHandle>& handles)
    {
        m_entries.clear();
        m_entries.reserve(handles.size());
        for (const ShaderBufferHandle& handle : handles)
        {
            m_entries.emplace_back(handle, static_cast<int32_t>(m_entries.size()));
        }
        const auto isBefore = [](const Entry& a, const Entry& b) { return a.first.id < b.first.id; };
        if (std::adjacent_find(m_entries.begin(), m_entries.end(),
                               [&](const Entry& a, const Entry& b) { return !isBefore(a, b); }) == m_entries.end())
        {
            return;
        }
        std::stable_sort(m_entries.begin(), m_entries.end(), isBefore);
        m_entries.erase(std::unique(m_entries.begin(), m_entries.end(),
                                    [](const Entry& a, const Entry& b) { return a.first == b.first; }),
                        m_entries.end());
        // What is left are first occurrences: number them in the order of the list.
        std::vector<int32_t> places(handles.size(), 0);
        for (const Entry& entry : m_entries)
        {
            places[static_cast<size_t>(entry.second)] = 1;
        }
        int32_t next = 0;
        for (int32_t& place : places)
        {
            next += std::exchange(place, next);
        }
        for (Entry& entry : m_entries)
        {
            entry.second = places[static_cast<size_t>(entry.second)];
        }
    }

    /// The place of a handle; 0 for one that was not added.
    int32_t get(const ShaderBufferHandle& handle) const
    {
        const auto place = const_cast<ShaderBufferIndices*>(this)->lower(handle);
        return place != m_entries.end() && place->first == handle ? place->second : 0;
    }

    size_t size() const { return m_entries.size(); }
    const Entry& operator[](size_t i) const { return m_entries[i]; }
    std::vector<Entry>::const_iterator begin() const { return m_entries.begin(); }
    std::vector<Entry>::const_iterator end() const { return m_entries.end(); }

private:
    std::vector<Entry>::iterator lower(const ShaderBufferHandle& handle)
    {
        return std::lower_bound(m_entries.begin(), m_entries.end(), handle,
                                [](const Entry& entry, const ShaderBufferHandle& wanted)
                                { return entry.first.id < wanted.id; });
    }

    std::vector<Entry> m_entries;
};

} // namespace renderengine
