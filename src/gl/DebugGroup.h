#pragma once

#include <glbinding/gl.h>

#include <string_view>

namespace renderengine
{

/// Scope of one GL debug group (glPushDebugGroup to glPopDebugGroup, id 1). Made through RENDERENGINE_DEBUG_GROUP.
class DebugGroup
{
public:
    using Setting = bool (*)();

    /// Opens the group when openSetting() says so. The text must be a string literal.
    DebugGroup(Setting openSetting, Setting closeSetting, GLenum source, std::string_view text);
    DebugGroup(const DebugGroup&) = delete;
    DebugGroup& operator=(const DebugGroup&) = delete;
    /// Closes the group when closeSetting() says so.
    ~DebugGroup();

    /// Reads `KVR_RENDERENGINE_GLDEBUG_GROUP` (bool, default false).
    static bool readSetting();

private:
    Setting m_closeSetting;
};

} // namespace renderengine

#define RENDERENGINE_DEBUG_GROUP_JOIN2(a, b) a##b
#define RENDERENGINE_DEBUG_GROUP_JOIN(a, b) RENDERENGINE_DEBUG_GROUP_JOIN2(a, b)

/// Wraps the rest of the scope in a debug group. TEXT is a string literal: the function, a blank, and a label or
/// nothing. SOURCE is GL_DEBUG_SOURCE_APPLICATION or GL_DEBUG_SOURCE_THIRD_PARTY. Each site caches the setting twice,
/// once for the push and once for the pop, at first use and for the life of the process.
#define RENDERENGINE_DEBUG_GROUP(SOURCE, TEXT)                                            \
    const ::renderengine::DebugGroup RENDERENGINE_DEBUG_GROUP_JOIN(debugGroup, __LINE__)( \
        []                                                                                \
        {                                                                                 \
            static const bool s_open = ::renderengine::DebugGroup::readSetting();         \
            return s_open;                                                                \
        },                                                                                \
        []                                                                                \
        {                                                                                 \
            static const bool s_close = ::renderengine::DebugGroup::readSetting();        \
            return s_close;                                                               \
        },                                                                                \
        SOURCE, TEXT)
