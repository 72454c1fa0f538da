#pragma once

#include <cstddef>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <kavelor/KavelorApi.h>
#include <kavelor/SbString.h>
#include <kavelor/SbVec.h>

/// The picture taker of graphical tests: a test asks for frames by number, the renderer asks which are needed and hands
/// their pixels over, and they are written as PNG files. Any thread may call.
class KAVELOR_API SoGraphicalTestSingleton
{
public:
    static SoGraphicalTestSingleton& getInstance();

    SoGraphicalTestSingleton(const SoGraphicalTestSingleton&) = delete;
    SoGraphicalTestSingleton& operator=(const SoGraphicalTestSingleton&) = delete;

    /// Where files go: "<folder>/<prefix><frame>.png". The folder must exist; an empty one is the current folder.
    /// By default the current folder and the prefix "frame_".
    void setOutput(const SbString& folder, const SbString& prefix);

    void requestFrame(std::size_t frame);
    void requestFrames(const std::vector<std::size_t>& frames);

    /// Forgets all requests and the names of the files that were written, and restores the default output.
    void reset();

    bool isFrameNeeded(std::size_t frame) const;

    /// Writes width times height pixels, rows from the top down, red green blue alpha, and takes the request back.
    /// Returns false, after a line through SoDebugError, when there is nothing to write or the file cannot be written.
    /// The request then stays.
    bool writeFrame(const SbVec4ub* pixels, const SbVec2i32& size, std::size_t frame);

    /// The path that writeFrame uses for a frame.
    SbString getFilePath(std::size_t frame) const;

    /// Paths of the files written so far, in order.
    std::vector<SbString> getWrittenFiles() const;

private:
    SoGraphicalTestSingleton();
    ~SoGraphicalTestSingleton();

    /// The path for a frame; the mutex is held.
    std::string filePath(std::size_t frame) const;

    mutable std::mutex m_mutex;
    std::string m_folder;
    std::string m_prefix;
    std::set<std::size_t> m_frames;
    std::vector<SbString> m_writtenFiles;
};
