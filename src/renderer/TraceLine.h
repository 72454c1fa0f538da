#pragma once

#include <fmt/format.h>
#include <spdlog/spdlog.h>

#include <string>

namespace renderengine
{

/// Writes one line at trace level: each argument followed by one blank, the last one too.
template <class... Arguments> void traceLine(const Arguments&... arguments)
{
    static const std::string format = []
    {
        std::string text;
        for (size_t i = 0; i < sizeof...(Arguments); ++i)
        {
            text += "{} ";
        }
        return text;
    }();
    spdlog::trace(fmt::runtime(format), arguments...);
}

} // namespace renderengine
