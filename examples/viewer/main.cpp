// renderengine-view: draws a model file into a picture, as a client of the engine's exported interface.

#include "Info.h"
#include "MergeLog.h"
#include "Model.h"
#include "Options.h"
#include "PlatformLog.h"
#include "SceneRenderer.h"

#include <renderengine/renderengine.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace
{

using viewer::Options;

void drawModel(renderengine::ContextInterface& context, const viewer::Model& model, const Options& options,
               viewer::MergeLog* mergeLog)
{
    viewer::SceneRenderer renderer(context, model, options.width, options.height, options.merging);
    const std::string times = viewer::drawFrames(renderer, options);
    std::printf("%s (triangles: %zu, meshes: %zu, draws: %zu)\n", options.model.c_str(), model.triangleCount(),
                model.meshes.size(), renderer.drawCount());
    if (mergeLog != nullptr)
        for (const std::string& line : mergeLog->takeLines())
            std::printf("%s\n", line.c_str());
    std::printf("%s\n", times.c_str());
    std::printf("%s\n", viewer::writePicture(renderer, options).c_str());
}

void run(const Options& options)
{
    // The model first: a wrong file is told before a device is started.
    std::optional<viewer::Model> model;
    if (!options.model.empty())
        model = viewer::loadModel(options.model);

    viewer::applySettings(options);
    std::optional<viewer::PlatformLog> platform;
    if (options.info)
        platform.emplace();
    std::optional<viewer::MergeLog> mergeLog;
    if (options.explain)
        mergeLog.emplace(options.info);
    renderengine::init();
    const std::unique_ptr<renderengine::ContextInterface> context(renderengine::ContextInterface::createInstance());
    context->init();
    if (model)
    {
        viewer::checkSize(options, context->getContextInfo());
        drawModel(*context, *model, options, mergeLog ? &*mergeLog : nullptr);
    }
    mergeLog.reset();
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
