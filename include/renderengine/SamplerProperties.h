#pragma once

#include <cstdint>

namespace renderengine
{

/// Describes filtering and wrapping of a sampler object.
///
/// Wrap indices: 0 mirror clamp to edge, 1 clamp, 2 repeat, 3 clamp to border, 4 clamp to edge, 5 mirrored repeat.
struct SamplerProperties
{
    SamplerProperties() : wrapS(2), wrapT(2), wrapR(2), minFilter(2), magFilter(2), mipFilter(2) {}

    bool operator==(const SamplerProperties& other) const
    {
        return borderColor == other.borderColor && maxAnisotropy == other.maxAnisotropy && wrapS == other.wrapS &&
               wrapT == other.wrapT && wrapR == other.wrapR && minFilter == other.minFilter &&
               magFilter == other.magFilter && mipFilter == other.mipFilter;
    }
    bool operator!=(const SamplerProperties& other) const { return !(*this == other); }

    /// Border colour, packed as 0xRRGGBBAA.
    uint32_t borderColor = 0;
    /// Largest degree of anisotropy; values up to 1 leave it unset.
    float maxAnisotropy = 1.0f;
    /// Wrap index of the first texture coordinate.
    uint8_t wrapS : 3;
    /// Wrap index of the second texture coordinate.
    uint8_t wrapT : 3;
    /// Wrap index of the third texture coordinate.
    uint8_t wrapR : 3;
    /// 1 nearest, anything else linear.
    uint8_t minFilter : 2;
    /// 1 nearest, anything else linear.
    uint8_t magFilter : 2;
    /// 0 no mipmaps, 1 nearest, anything else linear.
    uint8_t mipFilter : 2;
};

static_assert(sizeof(SamplerProperties) == 12, "two words and three bytes of flags");

} // namespace renderengine
