#include "Options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
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

void readSize(const std::string& text, Options& options)
{
    std::string_view rest = text;
    if (!takeNumber(rest, options.width) || !takeSeparator(rest) || !takeNumber(rest, options.height) || !rest.empty())
        throw OptionError("the size '" + text + "' is not of the form WIDTHxHEIGHT, as 1280x800");
    if (options.width == 0 || options.height == 0)
        throw OptionError("the size '" + text + "' holds no pixel; width and height are at least 1");
}

void readRenderer(const std::string& text, Options& options)
{
    std::string upper = text;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (upper != "GL" && upper != "GL41" && upper != "NULL" && upper != "LOG")
        throw OptionError("the renderer '" + text + "' is not known; there are GL, GL41, NULL and LOG");
    options.renderer = upper;
}

} // namespace

Options parseOptions(int argc, char** argv, int& exitCode)
{
    Options options;
    std::string size;
    std::string renderer = options.renderer;
    bool noThread = false;

    CLI::App app("Draws a 3D model into a PNG picture.", "renderengine-view");
    app.add_option("MODEL", options.model, "The model to draw, of any format that assimp reads");
    app.add_option("-o,--output", options.output, "The picture to write")->capture_default_str();
    app.add_option("--size", size, "The size of the picture in pixels, WIDTHxHEIGHT (default 1280x800)");
    app.add_option("--frames", options.frames, "The number of frames to draw")
        ->check(CLI::Range(1u, 1000000u))
        ->capture_default_str();
    app.add_option("--renderer", renderer, "GL, GL41, NULL or LOG (a trace on the standard output)")
        ->capture_default_str();
    app.add_flag("--no-thread", noThread, "Run the frames on the calling thread");
    app.add_flag("--debug", options.debug, "Ask for a debug context and log its messages");
    app.add_flag("--info", options.info, "Print the device, its limits and all settings");

    exitCode = -1;
    try
    {
        app.parse(argc, argv);
        if (options.model.empty() && !options.info)
            throw CLI::RequiredError("MODEL");
    }
    catch (const CLI::ParseError& error)
    {
        exitCode = app.exit(error) == 0 ? 0 : 2;
        return options;
    }
    if (!size.empty())
        readSize(size, options);
    readRenderer(renderer, options);
    options.thread = !noThread;
    return options;
}

} // namespace viewer
