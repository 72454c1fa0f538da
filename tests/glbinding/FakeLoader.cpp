#include "FakeLoader.h"

#include <glbinding/GLEnums.h>
#include <glbinding/PlatformHandles.h>

namespace
{
FakeContext s_context;

const GLubyte* bytes(const char* text)
{
    return reinterpret_cast<const GLubyte*>(text);
}

const GLubyte* GLAPIENTRY fakeGetString(GLenum name)
{
    return name == GL_VERSION ? bytes(s_context.version) : nullptr;
}

const GLubyte* GLAPIENTRY fakeGetStringi(GLenum name, GLuint index)
{
    return name == GL_EXTENSIONS && index < s_context.extensions.size() ? bytes(s_context.extensions[index].c_str())
                                                                        : nullptr;
}

void GLAPIENTRY fakeGetIntegerv(GLenum name, GLint* value)
{
    *value = name == GL_NUM_EXTENSIONS         ? static_cast<GLint>(s_context.extensions.size())
             : name == GL_CONTEXT_PROFILE_MASK ? s_context.profileMask
             : name == GL_CONTEXT_FLAGS        ? s_context.contextFlags
                                               : 0;
}

const char* GLAPIENTRY fakeGetWGLExtensions(renderengine::glbinding::DisplayHandle)
{
    return s_context.wglExtensions;
}

void GLAPIENTRY fakeFunction() {}

void* fakeLoad(const char* name)
{
    const std::string text = name;
    if (s_context.unknownNames.count(text) != 0)
    {
        return nullptr;
    }
    if (text == "glGetString")
    {
        return reinterpret_cast<void*>(&fakeGetString);
    }
    if (text == "glGetStringi")
    {
        return reinterpret_cast<void*>(&fakeGetStringi);
    }
    if (text == "glGetIntegerv")
    {
        return reinterpret_cast<void*>(&fakeGetIntegerv);
    }
    if (text.compare(0, 3, "wgl") == 0 && (s_context.wglExtensions == nullptr || text == "wglGetCurrentDC"))
    {
        return nullptr;
    }
    if (text == "wglGetExtensionsStringARB")
    {
        return reinterpret_cast<void*>(&fakeGetWGLExtensions);
    }
    return FakeLoader::address();
}
} // namespace

FakeLoader::FakeLoader(const FakeContext& context)
{
    s_context = context;
    renderengine::glbinding::setProcAddressLoader(&fakeLoad);
}

FakeLoader::~FakeLoader()
{
    renderengine::glbinding::setProcAddressLoader(nullptr);
}

void* FakeLoader::address()
{
    return reinterpret_cast<void*>(&fakeFunction);
}
