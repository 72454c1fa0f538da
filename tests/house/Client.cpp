// A client of the shared library, built as C++17 and as C++20: clears a texture to red and reads it back.

#include <renderengine/renderengine.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <type_traits>

namespace
{

using namespace renderengine;

#if __cplusplus < 202002L
// The name of the tags' namespace is a keyword from C++20 on.
static_assert(std::is_same_v<Handle<renderengine::concept::TextureConcept>, TextureHandle>);
#endif

std::array<std::uint8_t, 4> clearedPixel()
{
    const std::unique_ptr<ContextInterface> context(ContextInterface::createInstance());
    context->init();

    TextureHandle texture = context->createTexture(TextureProperties{});
    RenderTargetProperties target;
    target.attachments.resize(1);
    target.attachments[0].texture = texture;
    const RenderTargetHandle renderTarget = context->createRenderTarget(target);

    ClearTargetProperties clear;
    clear.colors[0] = SbVec4f(1.0f, 0.0f, 0.0f, 1.0f);
    const auto cache = std::make_shared<RenderCache>();
    cache->clearRenderTarget(renderTarget, clear);
    cache->readbackTexture(texture);
    context->submit(cache);
    context->execute(true);

    std::array<std::uint8_t, 4> pixel{};
    context->readbackTexture(texture, pixel.data(), pixel.size());
    context->destroyRenderTarget(renderTarget);
    context->destroyTexture(texture);
    context->execute(true);
    return pixel;
}

} // namespace

int main()
{
    renderengine::init();
    const std::array<std::uint8_t, 4> pixel = clearedPixel();
    renderengine::finish();
    std::printf("red %d, green %d, blue %d, alpha %d\n", pixel[0], pixel[1], pixel[2], pixel[3]);
    return pixel == std::array<std::uint8_t, 4>{255, 0, 0, 255} ? 0 : 1;
}
