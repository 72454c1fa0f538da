// renderengine-view: draws a model file into a picture, as a client of the engine's exported interface.

#include "Images.h"
#include "Info.h"
#include "Model.h"
#include "Options.h"
#include "PlatformLog.h"
#include "SceneRenderer.h"

#include <kavelor/SoPreferences.h>
#include <renderengine/renderengine.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

namespace
{

using viewer::Options;

void applySettings(const Options& options)
{
    SoPreferences::setString("KVR_RENDERENGINE_RENDERER", options.renderer.c_str());
    SoPreferences::setBool("KVR_RENDERENGINE_MULTITHREAD", options.thread);
    if (options.debug)
        SoPreferences::setBool("KVR_OPENGL_DEBUG", true);
    // Frame times shall be those of finished frames, so a frame ends with glFinish and not with a fence.
    SoPreferences::setInt("KVR_USE_FENCE", 0);
}

void checkSize(const Options& options, const renderengine::ContextInfo& info)
{
    const auto limit = static_cast<uint32_t>(
        std::max(0, std::min({info.maxTextureSize, info.maxViewportDims[0], info.maxViewportDims[1]})));
    if (options.width > limit || options.height > limit)
        throw viewer::OptionError("the size " + std::to_string(options.width) + "x" + std::to_string(options.height) +
                                  " is beyond the device's limit of " + std::to_string(limit) + " pixels a side");
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

void drawModel(renderengine::ContextInterface& context, const viewer::Model& model, const Options& options)
{
    viewer::SceneRenderer renderer(context, model, options.width, options.height);
    const double first = renderer.drawFrame();
    std::vector<double> times;
    for (unsigned i = 1; i < options.frames; ++i)
        times.push_back(renderer.drawFrame());

    std::printf("%s: %zu triangles, %zu meshes, %zu draws\n", options.model.c_str(), model.triangleCount(),
                model.meshes.size(), renderer.drawCount());
    if (times.empty())
        std::printf("frame time: %.2f ms (the first frame; more frames with --frames)\n", first);
    else
        std::printf("frame time: median %.2f ms of %zu frames, first frame %.2f ms\n", median(times), times.size(),
                    first);

    if (options.renderer == "NULL" || options.renderer == "LOG")
    {
        std::printf("no picture: the renderer %s draws nothing\n", options.renderer.c_str());
        return;
    }
    viewer::writePng(options.output, renderer.readPicture());
    std::printf("wrote %s (%ux%u)\n", options.output.c_str(), options.width, options.height);
}

void run(const Options& options)
{
    // The model first: a wrong file is told before a device is started.
    std::optional<viewer::Model> model;
    if (!options.model.empty())
        model = viewer::loadModel(options.model);

    applySettings(options);
    std::optional<viewer::PlatformLog> platform;
    if (options.info)
        platform.emplace();
    renderengine::init();
    const std::unique_ptr<renderengine::ContextInterface> context(renderengine::ContextInterface::createInstance());
    context->init();
    if (model)
    {
        checkSize(options, context->getContextInfo());
        drawModel(*context, *model, options);
    }
    if (options.info)
    {
        const std::vector<std::string> lines = platform->lines();
        platform.reset();
        viewer::printInfo(std::cout, *context, lines);
    }
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        int exitCode = -1;
        const Options options = viewer::parseOptions(argc, argv, exitCode);
        if (exitCode >= 0)
            return exitCode;
        run(options);
        renderengine::finish();
        return 0;
    }
    catch (const std::exception& error)
    {
        std::cout.flush();
        std::cerr << "renderengine-view: " << error.what() << ".\n";
        return 1;
    }
}
