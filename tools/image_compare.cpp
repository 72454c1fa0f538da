// Compares two PNG files:
//
//     image-compare FIRST SECOND [--tolerance N] [--max-different N] [--min-colors N] [--difference FILE]
//
// Exits 0 when at most --max-different pixels (default 0) are further apart than --tolerance (default 0, of 255) in a
// channel. Exits 1 when more are, when the sizes differ, or when FIRST has less than --min-colors colours, since two
// empty pictures prove nothing. Exits 2 when it was called wrongly or a file could not be read.

#include "support/ImageCompare.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace renderengine::testing;

struct Arguments
{
    std::vector<std::string> pictures;
    std::string difference;
    int tolerance = 0;
    std::size_t maxDifferent = 0;
    std::size_t minColors = 0;
};

Arguments parse(int count, char** values)
{
    Arguments arguments;
    for (int i = 1; i < count; ++i)
    {
        const std::string word = values[i];
        if (word.rfind("--", 0) != 0)
        {
            arguments.pictures.push_back(word);
            continue;
        }
        if (++i == count)
        {
            throw std::invalid_argument(word + " needs a value");
        }
        if (word == "--tolerance")
        {
            arguments.tolerance = std::stoi(values[i]);
        }
        else if (word == "--max-different")
        {
            arguments.maxDifferent = std::stoul(values[i]);
        }
        else if (word == "--min-colors")
        {
            arguments.minColors = std::stoul(values[i]);
        }
        else if (word == "--difference")
        {
            arguments.difference = values[i];
        }
        else
        {
            throw std::invalid_argument("unknown option " + word);
        }
    }
    if (arguments.pictures.size() != 2)
    {
        throw std::invalid_argument("two pictures are needed");
    }
    return arguments;
}

std::size_t countColors(const Image& image)
{
    std::set<std::uint32_t> colors;
    for (std::size_t offset = 0; offset < image.pixels.size(); offset += sizeof(std::uint32_t))
    {
        std::uint32_t color = 0;
        std::memcpy(&color, &image.pixels[offset], sizeof(color));
        colors.insert(color);
    }
    return colors.size();
}

int compare(const Arguments& arguments)
{
    const std::string& first = arguments.pictures[0];
    const std::string& second = arguments.pictures[1];
    const Image firstImage = loadPng(first);
    const ImageDifference difference = compareImages(firstImage, loadPng(second), arguments.tolerance);
    if (!difference.sameSize)
    {
        std::printf("%s and %s differ in size\n", first.c_str(), second.c_str());
        return EXIT_FAILURE;
    }
    if (const std::size_t colors = countColors(firstImage); colors < arguments.minColors)
    {
        std::printf("%s has %zu colours, at least %zu are expected\n", first.c_str(), colors, arguments.minColors);
        return EXIT_FAILURE;
    }
    const bool equal = difference.differentPixels <= arguments.maxDifferent;
    if (!equal && !arguments.difference.empty())
    {
        savePng(arguments.difference, difference.picture);
    }
    std::printf("%s and %s are %s: %zu pixels differ by more than %d (at most %zu may), the largest distance is %d\n",
                first.c_str(), second.c_str(), equal ? "equal within the tolerance" : "different",
                difference.differentPixels, arguments.tolerance, arguments.maxDifferent, difference.largestDistance);
    return equal ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return compare(parse(argc, argv));
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "image-compare: %s\n", error.what());
        return 2;
    }
}
