#include "ExtensionList.h"
#include "FunctionTable.h"

#include <glbinding/CurrentTable.h>
#include <glbinding/GLEnums.h>
#include <glbinding/SoGLEW.h>

#include <cstdio>

namespace glbinding = renderengine::glbinding;

namespace
{
// The three functions that tell what a context is, as the loader finds them; they exist in every context that answers.
struct Probe
{
    decltype(GLEWContextStruct::kvr_common__glewGetString) getString;
    decltype(GLEWContextStruct::kvr_common__glewGetIntegerv) getIntegerv;
    decltype(GLEWContextStruct::kvr_common__glewGetStringi) getStringi;
};

template <class Function> void find(Function& function, glbinding::ProcAddressLoader loader, const char* name)
{
    function = reinterpret_cast<Function>(loader(name));
}

const char* getString(const Probe& probe, GLenum name)
{
    return reinterpret_cast<const char*>(probe.getString(name));
}

GLint getInteger(const Probe& probe, GLenum name)
{
    GLint value = 0;
    probe.getIntegerv(name, &value);
    return value;
}

bool readVersion(const Probe& probe, GLEWContextStruct& table)
{
    const char* version = getString(probe, GL_VERSION);
    return version != nullptr && std::sscanf(version, "%d.%d", &table.majorVersion, &table.minorVersion) == 2;
}

std::set<std::string> readExtensions(const Probe& probe, int majorVersion)
{
    // The list in one string is gone from core profiles, the one by index begins with 3.0.
    if (majorVersion < 3 || probe.getStringi == nullptr)
    {
        return glbinding::splitExtensions(getString(probe, GL_EXTENSIONS));
    }
    std::set<std::string> extensions;
    const auto count = static_cast<GLuint>(getInteger(probe, GL_NUM_EXTENSIONS));
    for (GLuint index = 0; index < count; ++index)
    {
        if (const GLubyte* name = probe.getStringi(GL_EXTENSIONS, index))
        {
            extensions.insert(reinterpret_cast<const char*>(name));
        }
    }
    return extensions;
}

bool readCoreProfile(const Probe& probe, int version, const std::set<std::string>& extensions)
{
    if (version >= 30 && (getInteger(probe, GL_CONTEXT_FLAGS) & GL_CONTEXT_FLAG_FORWARD_COMPATIBLE_BIT) != 0)
    {
        return true;
    }
    if (version == 31)
    {
        return extensions.count("GL_ARB_compatibility") == 0;
    }
    return version >= 32 && (getInteger(probe, GL_CONTEXT_PROFILE_MASK) & GL_CONTEXT_CORE_PROFILE_BIT) != 0;
}

bool isOffered(const glbinding::FunctionInfo& info, const GLEWContextStruct& table)
{
    const int since = table.coreProfile ? info.coreSince : info.since;
    if (since != 0 && since <= table.majorVersion * 10 + table.minorVersion)
    {
        return true;
    }
    for (const std::uint8_t extension : info.extensions)
    {
        if (extension != 0 && table.*glbinding::extensionTable[extension - 1].flag)
        {
            return true;
        }
    }
    return false;
}

template <class Table, std::size_t Count>
void setFlags(Table& table, const glbinding::ExtensionInfo<Table> (&infos)[Count], const std::set<std::string>& listed)
{
    for (const glbinding::ExtensionInfo<Table>& info : infos)
    {
        table.*info.flag = listed.count(info.name) != 0;
    }
}

void fillEntries(GLEWContextStruct& table, glbinding::ProcAddressLoader loader)
{
    for (std::size_t index = 0; index < glbinding::functionCount; ++index)
    {
        const glbinding::FunctionInfo& info = glbinding::functionTable[index];
        const void* address = isOffered(info, table) ? loader(info.name) : nullptr;
        if (address != nullptr)
        {
            glbinding::setEntry(table, index, address);
            continue;
        }
        glbinding::noteAbsent(index, table.majorVersion, table.minorVersion);
        glbinding::copyEntry(table, glbinding::g_absentTable, index);
    }
}

const char* readWGLExtensions(glbinding::ProcAddressLoader loader)
{
    decltype(WGLEWContextStruct::kvr_common__wglewGetExtensionsStringARB) getExtensions = nullptr;
    find(getExtensions, loader, "wglGetExtensionsStringARB");
    if (getExtensions == nullptr)
    {
        return nullptr;
    }
    glbinding::DisplayHandle(GLAPIENTRY * getCurrentDisplay)() = nullptr;
    find(getCurrentDisplay, loader, "wglGetCurrentDC");
    return getExtensions(getCurrentDisplay != nullptr ? getCurrentDisplay() : nullptr);
}
} // namespace

unsigned SoGLEW::glewContextInit(GLEWContextStruct* table)
{
    if (table == nullptr)
    {
        return NO_LOADER;
    }
    *table = glbinding::g_silentTable;
    const glbinding::ProcAddressLoader loader = glbinding::getProcAddressLoader();
    if (loader == nullptr)
    {
        return NO_LOADER;
    }
    Probe probe{};
    find(probe.getString, loader, "glGetString");
    find(probe.getIntegerv, loader, "glGetIntegerv");
    find(probe.getStringi, loader, "glGetStringi");
    GLEWContextStruct filled = glbinding::g_silentTable;
    if (probe.getString == nullptr || probe.getIntegerv == nullptr || !readVersion(probe, filled))
    {
        return NO_GL_VERSION;
    }
    const std::set<std::string> extensions = readExtensions(probe, filled.majorVersion);
    filled.coreProfile = readCoreProfile(probe, filled.majorVersion * 10 + filled.minorVersion, extensions);
    setFlags(filled, glbinding::extensionTable, extensions);
    fillEntries(filled, loader);
    *table = filled;
    return NO_ERROR_FOUND;
}

unsigned SoGLEW::wglewContextInit(WGLEWContextStruct* table)
{
    if (table == nullptr)
    {
        return NO_LOADER;
    }
    *table = glbinding::g_silentWGLTable;
    const glbinding::ProcAddressLoader loader = glbinding::getProcAddressLoader();
    if (loader == nullptr)
    {
        return NO_LOADER;
    }
    const std::set<std::string> extensions = glbinding::splitExtensions(readWGLExtensions(loader));
    setFlags(*table, glbinding::wglExtensionTable, extensions);
    for (std::size_t index = 0; index < glbinding::wglFunctionCount; ++index)
    {
        const glbinding::WGLFunctionInfo& info = glbinding::wglFunctionTable[index];
        const bool offered = table->*glbinding::wglExtensionTable[info.extension - 1].flag;
        const void* address = offered ? loader(info.name) : nullptr;
        if (address != nullptr)
        {
            glbinding::setEntry(*table, index, address);
        }
    }
    return NO_ERROR_FOUND;
}
