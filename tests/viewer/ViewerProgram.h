#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

/// What a run of an example program left behind.
struct ViewerRun
{
    int exitCode = -1; ///< -1 when the program crashed
    std::string out;
    std::string error;
};

/// A scratch folder that goes with the test.
class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// Runs a program, which stands first in the command, in a folder and waits for it. Its output goes to the two files.
/// Returns its exit status, -1 when it crashed or cannot be started.
int runCommand(const std::vector<std::string>& command, const std::filesystem::path& folder,
               const std::filesystem::path& out, const std::filesystem::path& error);

/// Runs renderengine-view in the given folder and waits for it. `wrapper` is a command that gets the viewer's command
/// as its last arguments.
ViewerRun runViewer(const ScratchFolder& folder, const std::vector<std::string>& arguments,
                    const std::vector<std::string>& wrapper = {});

/// The same with renderengine-many.
ViewerRun runMany(const ScratchFolder& folder, const std::vector<std::string>& arguments);

/// A textured box of 12 triangles, in the one format that the viewer reads on every system.
inline constexpr const char* boxModel = "glTF2/BoxTextured-glTF-Binary/BoxTextured.glb";

/// The path of a model of the package assimp-testmodels.
std::string testModel(const std::string& name);

/// The number of sentences in an error: the viewer tells exactly one.
std::size_t lineCount(const std::string& text);

void writeText(const std::filesystem::path& path, const std::string& text);

/// Expects that the viewer ends with status 1 and one sentence that holds the reason, and that it leaves no picture.
void expectRefused(const ScratchFolder& folder, const std::vector<std::string>& arguments, const std::string& reason);

/// The name of a test case of a model: its path in letters, digits and underscores.
std::string nameOfModel(const testing::TestParamInfo<const char*>& model);

/// A model that must be drawn.
class ViewerModelDeviceTest : public testing::TestWithParam<const char*>
{
};

/// A model that is malformed on purpose.
class ViewerMalformedModel : public testing::TestWithParam<const char*>
{
};
