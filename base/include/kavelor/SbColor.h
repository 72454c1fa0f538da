#pragma once

#include <cstdint>
#include <type_traits>

#include <kavelor/SbVec.h>

/// A colour with red, green, blue and alpha as floats, 0 to 1 by convention; values outside are kept. Transparent black
/// by default.
class SbColorRGBA : public SbVec4f
{
public:
    constexpr SbColorRGBA() noexcept = default;
    constexpr SbColorRGBA(float red, float green, float blue, float alpha) noexcept : SbVec4f(red, green, blue, alpha)
    {
    }
    constexpr SbColorRGBA(const SbVec4f& components) noexcept : SbVec4f(components) {}

    /// From one byte a component, packed as 0xRRGGBBAA.
    constexpr explicit SbColorRGBA(std::uint32_t packed) noexcept
        : SbVec4f(unpack(packed, 24), unpack(packed, 16), unpack(packed, 8), unpack(packed, 0))
    {
    }

    /// One byte a component, packed as 0xRRGGBBAA: clamped to 0 and 1, rounded to the nearest of 256 steps.
    constexpr std::uint32_t getPackedValue() const noexcept
    {
        return pack((*this)[0], 24) | pack((*this)[1], 16) | pack((*this)[2], 8) | pack((*this)[3], 0);
    }

private:
    static constexpr float unpack(std::uint32_t packed, unsigned shift) noexcept
    {
        return static_cast<float>((packed >> shift) & 0xFFu) / 255.f;
    }

    static constexpr std::uint32_t pack(float component, unsigned shift) noexcept
    {
        // Written so that a NaN counts as 0.
        const float clamped = component > 0.f ? (component < 1.f ? component : 1.f) : 0.f;
        const float scaled = clamped * 255.f;
        const std::uint32_t below = static_cast<std::uint32_t>(scaled);
        const std::uint32_t nearest = scaled - static_cast<float>(below) >= 0.5f ? below + 1 : below;
        return nearest << shift;
    }
};

static_assert(sizeof(SbColorRGBA) == 16 && std::is_trivially_copyable_v<SbColorRGBA> &&
              std::is_standard_layout_v<SbColorRGBA>);
