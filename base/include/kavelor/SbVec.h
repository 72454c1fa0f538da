#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

/// A vector of N components of the arithmetic type T, stored one after the other and nothing else, so that an array of
/// vectors can be handed to the device as it is. Components are 0 when not given. Indices are not checked.
template <class T, std::size_t N> class SbVec
{
    static_assert(std::is_arithmetic_v<T> && N >= 2 && N <= 4, "SbVec holds 2 to 4 numbers");

public:
    using ValueType = T;
    static constexpr std::size_t Size = N;

    constexpr SbVec() noexcept = default;

    template <std::size_t M = N, std::enable_if_t<M == 2, int> = 0> constexpr SbVec(T x, T y) noexcept : m_value{x, y}
    {
    }

    template <std::size_t M = N, std::enable_if_t<M == 3, int> = 0>
    constexpr SbVec(T x, T y, T z) noexcept : m_value{x, y, z}
    {
    }

    template <std::size_t M = N, std::enable_if_t<M == 4, int> = 0>
    constexpr SbVec(T x, T y, T z, T w) noexcept : m_value{x, y, z, w}
    {
    }

    /// Copies N components from values, which must not be null.
    constexpr explicit SbVec(const T* values) noexcept
    {
        for (std::size_t i = 0; i < N; ++i)
        {
            m_value[i] = values[i];
        }
    }

    /// Converts component by component, as static_cast does.
    template <class U, std::enable_if_t<!std::is_same_v<U, T>, int> = 0>
    constexpr explicit SbVec(const SbVec<U, N>& other) noexcept
    {
        for (std::size_t i = 0; i < N; ++i)
        {
            m_value[i] = static_cast<T>(other[i]);
        }
    }

    constexpr T& operator[](std::size_t index) noexcept { return m_value[index]; }
    constexpr const T& operator[](std::size_t index) const noexcept { return m_value[index]; }

    /// The N components; valid as long as this vector lives.
    constexpr const T* getValue() const noexcept { return m_value; }
    constexpr T* getValue() noexcept { return m_value; }

    template <std::size_t M = N, std::enable_if_t<M == 2, int> = 0> constexpr SbVec& setValue(T x, T y) noexcept
    {
        return *this = SbVec(x, y);
    }

    template <std::size_t M = N, std::enable_if_t<M == 3, int> = 0> constexpr SbVec& setValue(T x, T y, T z) noexcept
    {
        return *this = SbVec(x, y, z);
    }

    template <std::size_t M = N, std::enable_if_t<M == 4, int> = 0>
    constexpr SbVec& setValue(T x, T y, T z, T w) noexcept
    {
        return *this = SbVec(x, y, z, w);
    }

    constexpr SbVec& operator+=(const SbVec& other) noexcept
    {
        for (std::size_t i = 0; i < N; ++i)
        {
            m_value[i] = static_cast<T>(m_value[i] + other.m_value[i]);
        }
        return *this;
    }

    constexpr SbVec& operator-=(const SbVec& other) noexcept
    {
        for (std::size_t i = 0; i < N; ++i)
        {
            m_value[i] = static_cast<T>(m_value[i] - other.m_value[i]);
        }
        return *this;
    }

    constexpr SbVec& operator*=(T factor) noexcept
    {
        for (std::size_t i = 0; i < N; ++i)
        {
            m_value[i] = static_cast<T>(m_value[i] * factor);
        }
        return *this;
    }

    /// Divides every component; integers follow the language's rules, so a zero divisor is an error of the caller.
    constexpr SbVec& operator/=(T divisor) noexcept
    {
        for (std::size_t i = 0; i < N; ++i)
        {
            m_value[i] = static_cast<T>(m_value[i] / divisor);
        }
        return *this;
    }

    constexpr SbVec operator-() const noexcept { return SbVec() -= *this; }

    constexpr T dot(const SbVec& other) const noexcept
    {
        T sum = T(0);
        for (std::size_t i = 0; i < N; ++i)
        {
            sum = static_cast<T>(sum + m_value[i] * other.m_value[i]);
        }
        return sum;
    }

    /// Right-handed vector product.
    template <std::size_t M = N, std::enable_if_t<M == 3, int> = 0>
    constexpr SbVec cross(const SbVec& other) const noexcept
    {
        const SbVec& a = *this;
        const SbVec& b = other;
        return SbVec(static_cast<T>(a[1] * b[2] - a[2] * b[1]), static_cast<T>(a[2] * b[0] - a[0] * b[2]),
                     static_cast<T>(a[0] * b[1] - a[1] * b[0]));
    }

    template <class U = T, std::enable_if_t<std::is_floating_point_v<U>, int> = 0> T length() const noexcept
    {
        return std::sqrt(dot(*this));
    }

    /// Scales to length 1 and returns the former length. A vector of length 0 stays as it is.
    template <class U = T, std::enable_if_t<std::is_floating_point_v<U>, int> = 0> T normalize() noexcept
    {
        const T oldLength = length();
        if (oldLength > T(0))
        {
            *this /= oldLength;
        }
        return oldLength;
    }

    friend constexpr SbVec operator+(SbVec a, const SbVec& b) noexcept { return a += b; }
    friend constexpr SbVec operator-(SbVec a, const SbVec& b) noexcept { return a -= b; }
    friend constexpr SbVec operator*(SbVec a, T factor) noexcept { return a *= factor; }
    friend constexpr SbVec operator*(T factor, SbVec a) noexcept { return a *= factor; }
    friend constexpr SbVec operator/(SbVec a, T divisor) noexcept { return a /= divisor; }

    /// Exact comparison, component by component, with the meaning that == has for T.
    friend constexpr bool operator==(const SbVec& a, const SbVec& b) noexcept
    {
        for (std::size_t i = 0; i < N; ++i)
        {
            if (!(a.m_value[i] == b.m_value[i]))
            {
                return false;
            }
        }
        return true;
    }

    friend constexpr bool operator!=(const SbVec& a, const SbVec& b) noexcept { return !(a == b); }

private:
    T m_value[N] = {};
};

using SbVec2f = SbVec<float, 2>;
using SbVec3f = SbVec<float, 3>;
using SbVec4f = SbVec<float, 4>;
using SbVec2i32 = SbVec<std::int32_t, 2>;
using SbVec3i32 = SbVec<std::int32_t, 3>;
using SbVec4i32 = SbVec<std::int32_t, 4>;
using SbVec4ub = SbVec<std::uint8_t, 4>;
using SbVec4us = SbVec<std::uint16_t, 4>;

static_assert(sizeof(SbVec2f) == 8 && sizeof(SbVec3f) == 12 && sizeof(SbVec4f) == 16);
static_assert(sizeof(SbVec2i32) == 8 && sizeof(SbVec3i32) == 12 && sizeof(SbVec4i32) == 16);
static_assert(sizeof(SbVec4ub) == 4 && sizeof(SbVec4us) == 8);
static_assert(std::is_trivially_copyable_v<SbVec2f> && std::is_standard_layout_v<SbVec2f>);
static_assert(std::is_trivially_copyable_v<SbVec3f> && std::is_standard_layout_v<SbVec3f>);
static_assert(std::is_trivially_copyable_v<SbVec4f> && std::is_standard_layout_v<SbVec4f>);
static_assert(std::is_trivially_copyable_v<SbVec4i32> && std::is_standard_layout_v<SbVec4i32>);
static_assert(std::is_trivially_copyable_v<SbVec4ub> && std::is_standard_layout_v<SbVec4ub>);
static_assert(std::is_trivially_copyable_v<SbVec4us> && std::is_standard_layout_v<SbVec4us>);
