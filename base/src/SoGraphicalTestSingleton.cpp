#include <kavelor/SoGraphicalTestSingleton.h>

#include <kavelor/SoError.h>

#include "PngWriter.h"

namespace
{

const char* const DefaultPrefix = "frame_";

} // namespace

SoGraphicalTestSingleton::SoGraphicalTestSingleton() : m_prefix(DefaultPrefix) {}

SoGraphicalTestSingleton::~SoGraphicalTestSingleton() = default;

SoGraphicalTestSingleton& SoGraphicalTestSingleton::getInstance()
{
    // Never destroyed: a render thread may still ask while the process ends.
    static SoGraphicalTestSingleton& instance = *new SoGraphicalTestSingleton;
    return instance;
}

void SoGraphicalTestSingleton::setOutput(const SbString& folder, const SbString& prefix)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_folder = folder.toStdString();
    m_prefix = prefix.toStdString();
}

void SoGraphicalTestSingleton::requestFrame(std::size_t frame)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_frames.insert(frame);
}

void SoGraphicalTestSingleton::requestFrames(const std::vector<std::size_t>& frames)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_frames.insert(frames.begin(), frames.end());
}

void SoGraphicalTestSingleton::reset()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_folder.clear();
    m_prefix = DefaultPrefix;
    m_frames.clear();
    m_writtenFiles.clear();
}

bool SoGraphicalTestSingleton::isFrameNeeded(std::size_t frame) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_frames.count(frame) != 0;
}

bool SoGraphicalTestSingleton::writeFrame(const SbVec4ub* pixels, const SbVec2i32& size, std::size_t frame)
{
    const char* const function = "SoGraphicalTestSingleton::writeFrame";
    if (!pixels || size[0] <= 0 || size[1] <= 0)
    {
        SoDebugError::post(function, "Frame %llu has no pixels, its size is %d by %d.",
                           static_cast<unsigned long long>(frame), size[0], size[1]);
        return false;
    }
    // The lock is not held while the file is written, which may take long.
    const SbString path = getFilePath(frame);
    if (!kavelor::writePng(path.getString(), pixels, size))
    {
        SoDebugError::post(function, "The file \"%s\" cannot be written.", path.getString());
        return false;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_frames.erase(frame);
    m_writtenFiles.push_back(path);
    return true;
}

SbString SoGraphicalTestSingleton::getFilePath(std::size_t frame) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return filePath(frame);
}

std::vector<SbString> SoGraphicalTestSingleton::getWrittenFiles() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_writtenFiles;
}

std::string SoGraphicalTestSingleton::filePath(std::size_t frame) const
{
    const std::string folder = m_folder.empty() ? std::string() : m_folder + "/";
    return folder + m_prefix + std::to_string(frame) + ".png";
}
