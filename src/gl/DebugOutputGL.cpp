#include "gl/DebugOutputGL.h"

#include <kavelor/SoPreferences.h>
#include <spdlog/spdlog.h>

namespace renderengine
{

namespace
{

struct SeverityRow
{
    GLenum severity;
    const char* word;
    // Highest level of the setting at which messages of this severity are shown.
    int limit;
};

constexpr SeverityRow s_severities[] = {
    {GL_DEBUG_SEVERITY_HIGH, "HIGH", 3},
    {GL_DEBUG_SEVERITY_MEDIUM, "MEDIUM", 2},
    {GL_DEBUG_SEVERITY_LOW, "LOW", 1},
    {GL_DEBUG_SEVERITY_NOTIFICATION, "NOTIFICATION", 0},
};

struct WordRow
{
    GLenum value;
    const char* word;
};

constexpr WordRow s_sources[] = {
    {GL_DEBUG_SOURCE_API, "API"},
    {GL_DEBUG_SOURCE_WINDOW_SYSTEM, "WINDOW SYSTEM"},
    {GL_DEBUG_SOURCE_SHADER_COMPILER, "SHADER COMPILER"},
    {GL_DEBUG_SOURCE_THIRD_PARTY, "THIRD PARTY"},
    {GL_DEBUG_SOURCE_APPLICATION, "APPLICATION"},
    {GL_DEBUG_SOURCE_OTHER, "UNKNOWN"},
};

// The word for undefined behaviour lacks a letter; log filters of users look for it as it is.
constexpr WordRow s_types[] = {
    {GL_DEBUG_TYPE_ERROR, "ERROR"},
    {GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR, "DEPRECATED BEHAVIOR"},
    {GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR, "UDEFINED BEHAVIOR"},
    {GL_DEBUG_TYPE_PORTABILITY, "PORTABILITY"},
    {GL_DEBUG_TYPE_PERFORMANCE, "PERFORMANCE"},
    {GL_DEBUG_TYPE_OTHER, "OTHER"},
    {GL_DEBUG_TYPE_MARKER, "MARKER"},
};

template <size_t Size> const char* findWord(const WordRow (&rows)[Size], GLenum value)
{
    for (const WordRow& row : rows)
    {
        if (row.value == value)
        {
            return row.word;
        }
    }
    return "UNKNOWN";
}

const SeverityRow* findSeverity(GLenum severity)
{
    for (const SeverityRow& row : s_severities)
    {
        if (row.severity == severity)
        {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

void GLAPIENTRY debugOutputCallback(GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei,
                                    const GLchar* message, const void*)
{
    static const int s_level = SoPreferences::getInt("KVR_OPENGL_DEBUG_VERBOSE_LEVEL", 0);
    const SeverityRow* row = findSeverity(severity);
    if (row && s_level > row->limit)
    {
        return;
    }
    spdlog::error("{}: {} of {} severity, raised from {}: {}", id, findWord(s_types, type), row ? row->word : "UNKNOWN",
                  findWord(s_sources, source), message);
}

} // namespace renderengine
