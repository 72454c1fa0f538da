#pragma once

#include <cstdint>
#include <type_traits>

/// The type of one component of a buffer or an image. The values index constant tables, so their order is fixed.
class SbDataType
{
public:
    enum Type : std::uint32_t
    {
        UNSIGNED_BYTE = 0,
        UNSIGNED_SHORT = 1,
        UNSIGNED_INT = 2,
        RESERVED_3 = 3,
        BYTE = 4,
        SHORT = 5,
        INT = 6,
        RESERVED_7 = 7,
        RESERVED_8 = 8,
        RESERVED_9 = 9,
        FLOAT = 10,
        DOUBLE = 11
    };

    /// Number of values of Type.
    static constexpr std::uint32_t Count = 12;

    constexpr SbDataType(Type type = UNSIGNED_BYTE) noexcept : m_type(type) {}

    constexpr Type getType() const noexcept { return m_type; }

    /// Bytes of one component. Reserved types count as a byte, as does a value out of range.
    constexpr std::uint32_t getSize() const noexcept
    {
        switch (m_type)
        {
        case UNSIGNED_SHORT:
        case SHORT:
            return 2;
        case UNSIGNED_INT:
        case INT:
        case FLOAT:
            return 4;
        case DOUBLE:
            return 8;
        default:
            return 1;
        }
    }

    friend constexpr bool operator==(SbDataType a, SbDataType b) noexcept { return a.m_type == b.m_type; }
    friend constexpr bool operator!=(SbDataType a, SbDataType b) noexcept { return a.m_type != b.m_type; }

private:
    Type m_type;
};

static_assert(sizeof(SbDataType) == 4 && std::is_trivially_copyable_v<SbDataType> &&
              std::is_standard_layout_v<SbDataType>);
