#include "gl/DebugGroup.h"

#include <kavelor/SoPreferences.h>

namespace renderengine
{

DebugGroup::DebugGroup(Setting openSetting, Setting closeSetting, GLenum source, std::string_view text)
    : m_closeSetting(closeSetting)
{
    if (openSetting())
    {
        glPushDebugGroup(source, 1, static_cast<GLsizei>(text.size()), text.data());
    }
}

DebugGroup::~DebugGroup()
{
    if (m_closeSetting())
    {
        glPopDebugGroup();
    }
}

bool DebugGroup::readSetting()
{
    return SoPreferences::getBool("KVR_RENDERENGINE_GLDEBUG_GROUP", false);
}

} // namespace renderengine
