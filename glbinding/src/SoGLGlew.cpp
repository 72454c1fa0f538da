#include "FunctionTable.h"

#include <glbinding/CurrentTable.h>
#include <glbinding/SoGLEW.h>
#include <glbinding/SoGLGlew.h>

namespace glbinding = renderengine::glbinding;

SoGLGlew::SoGLGlew() : m_glTable(glbinding::g_silentTable), m_wglTable(glbinding::g_silentWGLTable) {}

void SoGLGlew::initGLEWContext()
{
    m_glTable = glbinding::g_silentTable;
    m_wglTable = glbinding::g_silentWGLTable;
    ivGlewUseContext = false;
}

unsigned SoGLGlew::initGLEW()
{
    const unsigned error = SoGLEW::glewContextInit(&m_glTable);
    if (error == SoGLEW::NO_ERROR_FOUND)
    {
        SoGLEW::wglewContextInit(&m_wglTable);
    }
    ivGlewUseContext = error == SoGLEW::NO_ERROR_FOUND;
    return error;
}

GLEWContextStruct* SoGLGlew::getGLEWContext()
{
    return &m_glTable;
}

WGLEWContextStruct* SoGLGlew::getWGLEWContext()
{
    return &m_wglTable;
}
