#pragma once

#include "support/ImageCompare.h"

#include <gtest/gtest.h>

#include <string>

namespace renderengine::testing
{

/// Succeeds when both pictures have one size and at most `maxDifferent` pixels are further apart than `tolerance` in a
/// channel. Otherwise the difference is written to `differencePath` as a PNG and the failure names it.
inline ::testing::AssertionResult imagesMatch(const Image& actual, const Image& expected, int tolerance,
                                              std::size_t maxDifferent, const std::string& differencePath)
{
    const ImageDifference difference = compareImages(actual, expected, tolerance);
    if (!difference.sameSize)
    {
        return ::testing::AssertionFailure() << "sizes differ: " << actual.width << "x" << actual.height << " and "
                                             << expected.width << "x" << expected.height;
    }
    if (difference.differentPixels > maxDifferent)
    {
        savePng(differencePath, difference.picture);
        return ::testing::AssertionFailure()
               << difference.differentPixels << " pixels differ by more than " << tolerance << " (at most "
               << maxDifferent << " may), the largest distance is " << difference.largestDistance << ", see "
               << differencePath;
    }
    return ::testing::AssertionSuccess();
}

} // namespace renderengine::testing
