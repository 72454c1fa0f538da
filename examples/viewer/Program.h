#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace renderengine
{
struct ContextInfo;
} // namespace renderengine

namespace viewer
{

class SceneRenderer;

/// An option has a value that cannot be used. what() is one sentence for the user.
class OptionError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// How to draw: what the example programs have in common on their command lines.
struct DrawOptions
{
    std::string output = "out.png";
    uint32_t width = 1280;
    uint32_t height = 800;
    unsigned frames = 1;
    /// One of "GL", "GL41", "NULL", "LOG", in upper case.
    std::string renderer = "GL";
    bool thread = true;
    bool debug = false;
    bool merging = true;
    bool explain = false;
};

/// Reads a size of the form 1280x800. Throws OptionError.
void readSize(const std::string& text, DrawOptions& options);
/// Reads the name of a renderer, in any case. Throws OptionError.
void readRenderer(const std::string& text, DrawOptions& options);

/// Sets the engine's settings that the options stand for. To be called before the engine starts.
void applySettings(const DrawOptions& options);

/// Throws OptionError when the picture is larger than the device draws.
void checkSize(const DrawOptions& options, const renderengine::ContextInfo& info);

/// Draws the frames and returns a line with their times.
std::string drawFrames(SceneRenderer& renderer, const DrawOptions& options);

/// Writes the picture of the last frame and returns a line about it. A renderer that draws nothing has none.
std::string writePicture(SceneRenderer& renderer, const DrawOptions& options);

} // namespace viewer
