// renderengine-many: draws thousands of cubes, merged into few draw calls or one by one, and tells what a frame takes.

#include "CubeField.h"
#include "MergeLog.h"
#include "Options.h"
#include "SceneRenderer.h"

#include <renderengine/renderengine.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

namespace
{

void run(const many::Options& options)
{
    viewer::applySettings(options);
    std::optional<viewer::MergeLog> mergeLog;
    if (options.explain)
        mergeLog.emplace(false);
    renderengine::init();
    const std::unique_ptr<renderengine::ContextInterface> context(renderengine::ContextInterface::createInstance());
    context->init();
    viewer::checkSize(options, context->getContextInfo());

    const viewer::Model model = many::makeCubeField(options.cubes);
    viewer::SceneRenderer renderer(*context, model, options.width, options.height, options.merging);
    const std::string times = viewer::drawFrames(renderer, options);
    std::printf("renderer %s (cubes: %u, draws: %zu)\n", options.renderer.c_str(), options.cubes, renderer.drawCount());
    if (mergeLog)
        for (const std::string& line : mergeLog->takeLines())
            std::printf("%s\n", line.c_str());
    std::printf("%s\n", times.c_str());
    std::printf("%s\n", viewer::writePicture(renderer, options).c_str());
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        int exitCode = -1;
        const many::Options options = many::parseOptions(argc, argv, exitCode);
        if (exitCode >= 0)
            return exitCode;
        run(options);
        renderengine::finish();
        return 0;
    }
    catch (const std::exception& error)
    {
        std::cout.flush();
        std::cerr << "renderengine-many: " << error.what() << ".\n";
        return 1;
    }
}
