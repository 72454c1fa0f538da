#pragma once

#include <limits>
#include <type_traits>

#include <kavelor/SbVec.h>

/// An axis-aligned box between two corners, both inside. Empty by default; an empty box has a minimum above its
/// maximum.
template <class Vector> class SbBox
{
public:
    using T = typename Vector::ValueType;

    constexpr SbBox() noexcept { makeEmpty(); }
    constexpr SbBox(const Vector& minimum, const Vector& maximum) noexcept : m_min(minimum), m_max(maximum) {}

    constexpr const Vector& getMin() const noexcept { return m_min; }
    constexpr const Vector& getMax() const noexcept { return m_max; }

    constexpr void setBounds(const Vector& minimum, const Vector& maximum) noexcept
    {
        m_min = minimum;
        m_max = maximum;
    }

    constexpr void makeEmpty() noexcept
    {
        for (std::size_t i = 0; i < Vector::Size; ++i)
        {
            m_min[i] = std::numeric_limits<T>::max();
            m_max[i] = std::numeric_limits<T>::lowest();
        }
    }

    constexpr bool isEmpty() const noexcept
    {
        for (std::size_t i = 0; i < Vector::Size; ++i)
        {
            if (m_max[i] < m_min[i])
            {
                return true;
            }
        }
        return false;
    }

    /// Grows the box so that it holds point.
    constexpr void extendBy(const Vector& point) noexcept
    {
        for (std::size_t i = 0; i < Vector::Size; ++i)
        {
            m_min[i] = point[i] < m_min[i] ? point[i] : m_min[i];
            m_max[i] = point[i] > m_max[i] ? point[i] : m_max[i];
        }
    }

    /// Grows the box so that it holds other; an empty one changes nothing.
    constexpr void extendBy(const SbBox& other) noexcept
    {
        if (!other.isEmpty())
        {
            extendBy(other.m_min);
            extendBy(other.m_max);
        }
    }

    /// Whether point lies inside or on the border.
    constexpr bool intersect(const Vector& point) const noexcept
    {
        for (std::size_t i = 0; i < Vector::Size; ++i)
        {
            if (point[i] < m_min[i] || point[i] > m_max[i])
            {
                return false;
            }
        }
        return true;
    }

    /// Maximum minus minimum; 0 for an empty box.
    constexpr Vector getSize() const noexcept { return isEmpty() ? Vector() : m_max - m_min; }

    /// The middle, rounded towards the minimum for integers of one sign; 0 for an empty box.
    constexpr Vector getCenter() const noexcept { return isEmpty() ? Vector() : m_min + (m_max - m_min) / T(2); }

    friend constexpr bool operator==(const SbBox& a, const SbBox& b) noexcept
    {
        return a.m_min == b.m_min && a.m_max == b.m_max;
    }

    friend constexpr bool operator!=(const SbBox& a, const SbBox& b) noexcept { return !(a == b); }

private:
    Vector m_min;
    Vector m_max;
};

using SbBox3i32 = SbBox<SbVec3i32>;
using SbBox3f = SbBox<SbVec3f>;

static_assert(sizeof(SbBox3i32) == 24 && std::is_trivially_copyable_v<SbBox3i32> &&
              std::is_standard_layout_v<SbBox3i32>);
static_assert(sizeof(SbBox3f) == 24 && std::is_trivially_copyable_v<SbBox3f> && std::is_standard_layout_v<SbBox3f>);
