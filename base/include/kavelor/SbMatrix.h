#pragma once

#include <cmath>
#include <cstddef>
#include <type_traits>

#include <kavelor/SbVec.h>

/// A 4 by 4 matrix of floats, stored by rows and meant for row vectors: a point is transformed as v * M, the
/// translation stands in the last row (elements 12 to 14), and a * b applies a first, then b. Read by columns, as
/// OpenGL does with the transpose flag off, it is the matrix for column vectors that does the same. The identity by
/// default.
class SbMatrix
{
public:
    constexpr SbMatrix() noexcept = default;

    /// The sixteen elements, row by row.
    constexpr SbMatrix(float m00, float m01, float m02, float m03, float m10, float m11, float m12, float m13,
                       float m20, float m21, float m22, float m23, float m30, float m31, float m32, float m33) noexcept
        : m_value{{m00, m01, m02, m03}, {m10, m11, m12, m13}, {m20, m21, m22, m23}, {m30, m31, m32, m33}}
    {
    }

    /// Copies sixteen elements, row by row, from values, which must not be null.
    constexpr explicit SbMatrix(const float* values) noexcept
    {
        for (std::size_t i = 0; i < 16; ++i)
        {
            m_value[i / 4][i % 4] = values[i];
        }
    }

    static constexpr SbMatrix identity() noexcept { return SbMatrix(); }

    /// The matrix that moves a point by offset.
    static constexpr SbMatrix translation(const SbVec3f& offset) noexcept
    {
        return SbMatrix(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, offset[0], offset[1], offset[2], 1);
    }

    /// The matrix that scales along the axes.
    static constexpr SbMatrix scaling(const SbVec3f& factors) noexcept
    {
        return SbMatrix(factors[0], 0, 0, 0, 0, factors[1], 0, 0, 0, 0, factors[2], 0, 0, 0, 0, 1);
    }

    /// The matrix that turns about axis by angle radians, by the right-hand rule. The axis need not have length 1; a
    /// null axis gives the identity.
    static SbMatrix rotation(const SbVec3f& axis, float angle) noexcept
    {
        SbVec3f a = axis;
        if (!(a.normalize() > 0.f))
        {
            return SbMatrix();
        }
        const float s = std::sin(angle);
        const float c = std::cos(angle);
        const float t = 1.f - c;
        return SbMatrix(t * a[0] * a[0] + c, t * a[0] * a[1] + s * a[2], t * a[0] * a[2] - s * a[1], 0, //
                        t * a[0] * a[1] - s * a[2], t * a[1] * a[1] + c, t * a[1] * a[2] + s * a[0], 0, //
                        t * a[0] * a[2] + s * a[1], t * a[1] * a[2] - s * a[0], t * a[2] * a[2] + c, 0, //
                        0, 0, 0, 1);
    }

    /// A row of four floats. The index is not checked.
    constexpr float* operator[](std::size_t row) noexcept { return m_value[row]; }
    constexpr const float* operator[](std::size_t row) const noexcept { return m_value[row]; }

    /// The sixteen elements, row by row; valid as long as this matrix lives.
    constexpr const float* getValue() const noexcept { return m_value[0]; }
    constexpr float* getValue() noexcept { return m_value[0]; }

    constexpr SbMatrix transpose() const noexcept
    {
        SbMatrix result;
        for (std::size_t row = 0; row < 4; ++row)
        {
            for (std::size_t column = 0; column < 4; ++column)
            {
                result.m_value[column][row] = m_value[row][column];
            }
        }
        return result;
    }

    /// The determinant, computed in double precision.
    constexpr double determinant() const noexcept { return minors().determinant(); }

    /// The inverse, computed in double precision. A matrix without one (determinant 0) gives the identity.
    constexpr SbMatrix inverse() const noexcept
    {
        const Minors k = minors();
        const double det = k.determinant();
        if (!(det < 0.0 || det > 0.0))
        {
            return SbMatrix();
        }
        // Adjugate by rows, from the 2 by 2 minors of the upper and the lower half.
        const double adjugate[16] = {
            at(1, 1) * k.c[5] - at(1, 2) * k.c[4] + at(1, 3) * k.c[3],
            -at(0, 1) * k.c[5] + at(0, 2) * k.c[4] - at(0, 3) * k.c[3],
            at(3, 1) * k.s[5] - at(3, 2) * k.s[4] + at(3, 3) * k.s[3],
            -at(2, 1) * k.s[5] + at(2, 2) * k.s[4] - at(2, 3) * k.s[3],
            -at(1, 0) * k.c[5] + at(1, 2) * k.c[2] - at(1, 3) * k.c[1],
            at(0, 0) * k.c[5] - at(0, 2) * k.c[2] + at(0, 3) * k.c[1],
            -at(3, 0) * k.s[5] + at(3, 2) * k.s[2] - at(3, 3) * k.s[1],
            at(2, 0) * k.s[5] - at(2, 2) * k.s[2] + at(2, 3) * k.s[1],
            at(1, 0) * k.c[4] - at(1, 1) * k.c[2] + at(1, 3) * k.c[0],
            -at(0, 0) * k.c[4] + at(0, 1) * k.c[2] - at(0, 3) * k.c[0],
            at(3, 0) * k.s[4] - at(3, 1) * k.s[2] + at(3, 3) * k.s[0],
            -at(2, 0) * k.s[4] + at(2, 1) * k.s[2] - at(2, 3) * k.s[0],
            -at(1, 0) * k.c[3] + at(1, 1) * k.c[1] - at(1, 2) * k.c[0],
            at(0, 0) * k.c[3] - at(0, 1) * k.c[1] + at(0, 2) * k.c[0],
            -at(3, 0) * k.s[3] + at(3, 1) * k.s[1] - at(3, 2) * k.s[0],
            at(2, 0) * k.s[3] - at(2, 1) * k.s[1] + at(2, 2) * k.s[0],
        };
        SbMatrix result;
        for (std::size_t i = 0; i < 16; ++i)
        {
            result.m_value[i / 4][i % 4] = static_cast<float>(adjugate[i] / det);
        }
        return result;
    }

    /// The row vector times this matrix.
    constexpr SbVec4f multVecMatrix(const SbVec4f& source) const noexcept
    {
        SbVec4f result;
        for (std::size_t column = 0; column < 4; ++column)
        {
            result[column] = source[0] * m_value[0][column] + source[1] * m_value[1][column] +
                             source[2] * m_value[2][column] + source[3] * m_value[3][column];
        }
        return result;
    }

    /// The point (w is 1) times this matrix, divided by the resulting w.
    constexpr SbVec3f multVecMatrix(const SbVec3f& source) const noexcept
    {
        const SbVec4f result = multVecMatrix(SbVec4f(source[0], source[1], source[2], 1.f));
        return SbVec3f(result[0] / result[3], result[1] / result[3], result[2] / result[3]);
    }

    /// The direction (w is 0) times this matrix: the translation does not count.
    constexpr SbVec3f multDirMatrix(const SbVec3f& source) const noexcept
    {
        const SbVec4f result = multVecMatrix(SbVec4f(source[0], source[1], source[2], 0.f));
        return SbVec3f(result[0], result[1], result[2]);
    }

    constexpr SbMatrix& operator*=(const SbMatrix& other) noexcept { return *this = *this * other; }

    friend constexpr SbMatrix operator*(const SbMatrix& a, const SbMatrix& b) noexcept
    {
        SbMatrix result;
        for (std::size_t row = 0; row < 4; ++row)
        {
            for (std::size_t column = 0; column < 4; ++column)
            {
                result.m_value[row][column] = a.m_value[row][0] * b.m_value[0][column] + //
                                              a.m_value[row][1] * b.m_value[1][column] + //
                                              a.m_value[row][2] * b.m_value[2][column] + //
                                              a.m_value[row][3] * b.m_value[3][column];
            }
        }
        return result;
    }

    friend constexpr bool operator==(const SbMatrix& a, const SbMatrix& b) noexcept
    {
        for (std::size_t i = 0; i < 16; ++i)
        {
            if (!(a.m_value[i / 4][i % 4] == b.m_value[i / 4][i % 4]))
            {
                return false;
            }
        }
        return true;
    }

    friend constexpr bool operator!=(const SbMatrix& a, const SbMatrix& b) noexcept { return !(a == b); }

private:
    /// The 2 by 2 minors of the upper two rows (s) and of the lower two rows (c), for the column pairs 01 02 03 12
    /// 13 23.
    struct Minors
    {
        double s[6];
        double c[6];

        constexpr double determinant() const noexcept
        {
            return s[0] * c[5] - s[1] * c[4] + s[2] * c[3] + s[3] * c[2] - s[4] * c[1] + s[5] * c[0];
        }
    };

    constexpr double at(std::size_t row, std::size_t column) const noexcept
    {
        return static_cast<double>(m_value[row][column]);
    }

    /// Of the rows row and row + 1 and of two columns.
    constexpr double subDeterminant(std::size_t row, std::size_t first, std::size_t second) const noexcept
    {
        return at(row, first) * at(row + 1, second) - at(row + 1, first) * at(row, second);
    }

    constexpr Minors minors() const noexcept
    {
        Minors result{};
        std::size_t pair = 0;
        for (std::size_t first = 0; first < 3; ++first)
        {
            for (std::size_t second = first + 1; second < 4; ++second, ++pair)
            {
                result.s[pair] = subDeterminant(0, first, second);
                result.c[pair] = subDeterminant(2, first, second);
            }
        }
        return result;
    }

    float m_value[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

/// A 3 by 3 matrix of floats, stored by rows, for row vectors, as SbMatrix is. The identity by default.
class SbMatrix3
{
public:
    constexpr SbMatrix3() noexcept = default;

    /// The nine elements, row by row.
    constexpr SbMatrix3(float m00, float m01, float m02, float m10, float m11, float m12, float m20, float m21,
                        float m22) noexcept
        : m_value{{m00, m01, m02}, {m10, m11, m12}, {m20, m21, m22}}
    {
    }

    /// Copies nine elements, row by row, from values, which must not be null.
    constexpr explicit SbMatrix3(const float* values) noexcept
    {
        for (std::size_t i = 0; i < 9; ++i)
        {
            m_value[i / 3][i % 3] = values[i];
        }
    }

    /// The upper left part of a 4 by 4 matrix.
    constexpr explicit SbMatrix3(const SbMatrix& matrix) noexcept
    {
        for (std::size_t i = 0; i < 9; ++i)
        {
            m_value[i / 3][i % 3] = matrix[i / 3][i % 3];
        }
    }

    /// A row of three floats. The index is not checked.
    constexpr float* operator[](std::size_t row) noexcept { return m_value[row]; }
    constexpr const float* operator[](std::size_t row) const noexcept { return m_value[row]; }

    /// The nine elements, row by row; valid as long as this matrix lives.
    constexpr const float* getValue() const noexcept { return m_value[0]; }
    constexpr float* getValue() noexcept { return m_value[0]; }

    constexpr SbMatrix3 transpose() const noexcept
    {
        return SbMatrix3(m_value[0][0], m_value[1][0], m_value[2][0], m_value[0][1], m_value[1][1], m_value[2][1],
                         m_value[0][2], m_value[1][2], m_value[2][2]);
    }

    friend constexpr SbMatrix3 operator*(const SbMatrix3& a, const SbMatrix3& b) noexcept
    {
        SbMatrix3 result;
        for (std::size_t row = 0; row < 3; ++row)
        {
            for (std::size_t column = 0; column < 3; ++column)
            {
                result.m_value[row][column] = a.m_value[row][0] * b.m_value[0][column] + //
                                              a.m_value[row][1] * b.m_value[1][column] + //
                                              a.m_value[row][2] * b.m_value[2][column];
            }
        }
        return result;
    }

    friend constexpr bool operator==(const SbMatrix3& a, const SbMatrix3& b) noexcept
    {
        for (std::size_t i = 0; i < 9; ++i)
        {
            if (!(a.m_value[i / 3][i % 3] == b.m_value[i / 3][i % 3]))
            {
                return false;
            }
        }
        return true;
    }

    friend constexpr bool operator!=(const SbMatrix3& a, const SbMatrix3& b) noexcept { return !(a == b); }

private:
    float m_value[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
};

static_assert(sizeof(SbMatrix) == 64 && std::is_trivially_copyable_v<SbMatrix> && std::is_standard_layout_v<SbMatrix>);
static_assert(sizeof(SbMatrix3) == 36 && std::is_trivially_copyable_v<SbMatrix3> &&
              std::is_standard_layout_v<SbMatrix3>);
