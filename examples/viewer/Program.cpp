#include "Program.h"

#include "Images.h"
#include "SceneRenderer.h"

#include <kavelor/SoPreferences.h>
#include <renderengine/ContextInfo.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <string_view>
#include <system_error>

namespace viewer
{

namespace
{

/// Reads a number of pixels from the start of the text and cuts it off; false when there is none that fits.
bool takeNumber(std::string_view& text, uint32_t& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
}

bool takeSeparator(std::string_view& text)
{
    const bool found = !text.empty() && (text.front() == 'x' || text.front() == 'X');
    text.remove_prefix(found ? 1 : 0);
    return found;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

std::string milliseconds(double value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.2f ms", value);
    return text;
}

} // namespace

void readSize(const std::string& text, DrawOptions& options)
{
    std::string_view rest = text;
    if (!takeNumber(rest, options.width) || !takeSeparator(rest) || !takeNumber(rest, options.height) || !rest.empty())
        throw OptionError("the size '" + text + "' is not of the form WIDTHxHEIGHT, as 1280x800");
    if (options.width == 0 || options.height == 0)
        throw OptionError("the size '" + text + "' holds no pixel; width and height are at least 1");
}

void readRenderer(const std::string& text, DrawOptions& options)
{
    std::string upper = text;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (upper != "GL" && upper != "GL41" && upper != "NULL" && upper != "LOG")
        throw OptionError("the renderer '" + text + "' is not known; there are GL, GL41, NULL and LOG");
    options.renderer = upper;
}

void applySettings(const DrawOptions& options)
{
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", options.renderer.c_str());
    SoPreferences::setBool("KVR_RENDERENGINE_MULTITHREAD", options.thread);
    if (options.debug)
        SoPreferences::setBool("KVR_OPENGL_DEBUG", true);
    // Frame times shall be those of finished frames, so a frame ends with glFinish and not with a fence.
    SoPreferences::setInt("KVR_USE_FENCE", 0);
}

void checkSize(const DrawOptions& options, const renderengine::ContextInfo& info)
{
    const auto limit = static_cast<uint32_t>(
        std::max(0, std::min({info.maxTextureSize, info.maxViewportDims[0], info.maxViewportDims[1]})));
    if (options.width > limit || options.height > limit)
        throw OptionError("the size " + std::to_string(options.width) + "x" + std::to_string(options.height) +
                          " is beyond the device's limit of " + std::to_string(limit) + " pixels a side");
}

std::string drawFrames(SceneRenderer& renderer, const DrawOptions& options)
{
    const double first = renderer.drawFrame();
    std::vector<double> times;
    for (unsigned i = 1; i < options.frames; ++i)
        times.push_back(renderer.drawFrame());
    if (times.empty())
        return "frame time: " + milliseconds(first) + " (the first frame; more frames with --frames)";
    return "frame time: median " + milliseconds(median(times)) + " of " + std::to_string(times.size()) +
           " frames, first frame " + milliseconds(first);
}

std::string writePicture(SceneRenderer& renderer, const DrawOptions& options)
{
    if (options.renderer == "NULL" || options.renderer == "LOG")
        return "no picture: the renderer " + options.renderer + " draws nothing";
    writePng(options.output, renderer.readPicture());
    return "wrote " + options.output + " (" + std::to_string(options.width) + "x" + std::to_string(options.height) +
           ")";
}

} // namespace viewer
