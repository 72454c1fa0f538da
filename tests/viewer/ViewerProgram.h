#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

/// What a run of the viewer left behind.
struct ViewerRun
{
    int exitCode = -1; ///< -1 when a signal ended the program
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

/// Runs renderengine-view in the given folder and waits for it. `prefix` stands before it in the shell's command line.
ViewerRun runViewer(const ScratchFolder& folder, const std::vector<std::string>& arguments,
                    const std::string& prefix = "");

/// The path of a model of the package assimp-testmodels.
std::string testModel(const std::string& name);

/// The number of sentences in an error: the viewer tells exactly one.
std::size_t lineCount(const std::string& text);

/// The name of a test case of a model: its path in letters, digits and underscores.
std::string nameOfModel(const testing::TestParamInfo<const char*>& model);
