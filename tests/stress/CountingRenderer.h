#pragma once

#include "commands/DrawCommands.h"
#include "commands/ShaderCommands.h"
#include "commands/TextureCommands.h"

#include <cstdint>

namespace renderengine::testing
{

/// A renderer without a device that also counts the draws it runs and sums their numbers. To be read when no frame is
/// running.
template <class Renderer> class CountingRenderer : public Renderer
{
public:
    using Renderer::execute;
    using Renderer::Renderer;

    void execute(CommandRender& command) override
    {
        ++m_draws;
        m_sum += command.handle.id;
        Renderer::execute(command);
    }

    void execute(CommandUpdateTexture& command) override
    {
        // The pixels were written by a recorder.
        for (const void* pixels : command.properties.data)
        {
            m_pixelSum += *static_cast<const uint8_t*>(pixels);
        }
        Renderer::execute(command);
    }

    uint64_t getDraws() const { return m_draws; }
    uint64_t getSum() const { return m_sum; }
    uint64_t getPixelSum() const { return m_pixelSum; }

private:
    uint64_t m_draws = 0;
    uint64_t m_sum = 0;
    uint64_t m_pixelSum = 0;
};

} // namespace renderengine::testing
