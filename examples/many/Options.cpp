#include "Options.h"

#include <CLI/CLI.hpp>

#include <string>

namespace many
{

Options parseOptions(int argc, char** argv, int& exitCode)
{
    Options options;
    options.output = "many.png";
    options.frames = 11;
    std::string size;
    std::string renderer = options.renderer;
    bool noThread = false;

    CLI::App app("Draws many cubes, each with its own buffers, transform and material, into a PNG picture.",
                 "renderengine-many");
    app.add_option("COUNT,-n,--count", options.cubes, "The number of cubes")
        ->check(CLI::Range(1u, 1000000u))
        ->capture_default_str();
    app.add_option("-o,--output", options.output, "The picture to write")->capture_default_str();
    app.add_option("--size", size, "The size of the picture in pixels, WIDTHxHEIGHT (default 1280x800)");
    app.add_option("--frames", options.frames, "The number of frames to draw; the first one is not in the median")
        ->check(CLI::Range(1u, 1000000u))
        ->capture_default_str();
    app.add_option("--renderer", renderer, "GL, GL41, NULL or LOG (a trace on the standard output)")
        ->capture_default_str();
    app.add_flag("!--no-merging", options.merging, "Draw each cube with a draw of its own");
    app.add_flag("--explain", options.explain, "Print of each draw whether it was merged, or why not");
    app.add_flag("--no-thread", noThread, "Run the frames on the calling thread");
    app.add_flag("--debug", options.debug, "Ask for a debug context and log its messages");

    exitCode = -1;
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        exitCode = app.exit(error) == 0 ? 0 : 2;
        return options;
    }
    if (!size.empty())
        viewer::readSize(size, options);
    viewer::readRenderer(renderer, options);
    options.thread = !noThread;
    return options;
}

} // namespace many
