#include "commands/SamplerCommands.h"

namespace renderengine
{

std::string CommandCreateSampler::name() const
{
    return "CreateSampler";
}

std::string CommandUpdateSampler::name() const
{
    return "UpdateSampler";
}

std::string CommandDestroySampler::name() const
{
    return "DestroySampler";
}

} // namespace renderengine
