#include "Options.h"

#include <CLI/CLI.hpp>

namespace viewer
{

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
    app.add_flag("!--no-merging", options.merging, "Draw each mesh with a draw of its own");
    app.add_flag("--explain", options.explain, "Print of each draw whether it was merged, or why not");
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
