#include "FunctionTable.h"

#include <glbinding/GLEnums.h>
#include <glbinding/NullGL.h>

#include <atomic>
#include <initializer_list>

namespace renderengine::glbinding
{
namespace
{
constexpr std::size_t mappedSize = std::size_t{16} << 20;
alignas(64) unsigned char s_mapped[mappedSize];
std::atomic<GLuint> s_nextName{1};

void GLAPIENTRY makeNames(GLsizei count, GLuint* names)
{
    for (GLsizei index = 0; index < count; ++index)
    {
        names[index] = s_nextName.fetch_add(1, std::memory_order_relaxed);
    }
}

void GLAPIENTRY makeNamesForTarget(GLenum, GLsizei count, GLuint* names)
{
    makeNames(count, names);
}

GLuint GLAPIENTRY makeProgram()
{
    return s_nextName.fetch_add(1, std::memory_order_relaxed);
}

GLuint GLAPIENTRY makeShader(GLenum)
{
    return makeProgram();
}

GLsync GLAPIENTRY makeSync(GLenum, GLbitfield)
{
    return reinterpret_cast<GLsync>(static_cast<std::uintptr_t>(makeProgram()));
}

GLboolean GLAPIENTRY isName(GLuint name)
{
    return name != 0 ? GL_TRUE : GL_FALSE;
}

GLboolean GLAPIENTRY isSync(GLsync sync)
{
    return sync != nullptr ? GL_TRUE : GL_FALSE;
}

GLenum GLAPIENTRY checkFramebuffer(GLenum)
{
    return GL_FRAMEBUFFER_COMPLETE;
}

GLenum GLAPIENTRY checkNamedFramebuffer(GLuint, GLenum)
{
    return GL_FRAMEBUFFER_COMPLETE;
}

GLenum GLAPIENTRY clientWait(GLsync, GLbitfield, GLuint64)
{
    return GL_ALREADY_SIGNALED;
}

void* GLAPIENTRY mapBuffer(GLenum, GLenum)
{
    return s_mapped;
}

void* GLAPIENTRY mapBufferRange(GLenum, GLintptr, GLsizeiptr length, GLbitfield)
{
    return static_cast<std::size_t>(length) <= mappedSize ? s_mapped : nullptr;
}

GLboolean GLAPIENTRY unmapBuffer(GLenum)
{
    return GL_TRUE;
}

const GLubyte* GLAPIENTRY getString(GLenum name)
{
    const char* text = name == GL_VERSION ? "4.6 Null" : name == GL_SHADING_LANGUAGE_VERSION ? "4.60" : "Null";
    return reinterpret_cast<const GLubyte*>(text);
}

GLint valueOf(GLenum name)
{
    switch (name)
    {
    case GL_MAJOR_VERSION:
        return 4;
    case GL_MINOR_VERSION:
        return 6;
    case GL_CONTEXT_PROFILE_MASK:
        return GL_CONTEXT_COMPATIBILITY_PROFILE_BIT;
    case GL_MAX_COLOR_ATTACHMENTS:
    case GL_MAX_DRAW_BUFFERS:
    case GL_MAX_TEXTURE_COORDS:
        return 8;
    case GL_MAX_VERTEX_ATTRIBS:
        return 16;
    case GL_MAX_TEXTURE_SIZE:
    case GL_MAX_RENDERBUFFER_SIZE:
        return 16384;
    case GL_MAX_3D_TEXTURE_SIZE:
    case GL_MAX_ARRAY_TEXTURE_LAYERS:
        return 2048;
    case GL_MAX_UNIFORM_BLOCK_SIZE:
        return 65536;
    case GL_MAX_SHADER_STORAGE_BLOCK_SIZE:
        return 134217728;
    case GL_COMPILE_STATUS:
    case GL_LINK_STATUS:
    case GL_COMPLETION_STATUS_ARB:
    case GL_QUERY_RESULT_AVAILABLE:
        return 1;
    case GL_SYNC_STATUS:
        return GL_SIGNALED;
    case GL_PACK_ALIGNMENT:
    case GL_UNPACK_ALIGNMENT:
        return 4;
    default:
        return 0;
    }
}

int countOf(GLenum name)
{
    switch (name)
    {
    case GL_BLEND_COLOR:
    case GL_COLOR_CLEAR_VALUE:
    case GL_COLOR_WRITEMASK:
    case GL_SCISSOR_BOX:
    case GL_VIEWPORT:
        return 4;
    case GL_DEPTH_RANGE:
    case GL_MAX_VIEWPORT_DIMS:
    case GL_POLYGON_MODE:
        return 2;
    default:
        return 1;
    }
}

template <class Number> void GLAPIENTRY get(GLenum name, Number* values)
{
    for (int index = 0; index < countOf(name); ++index)
    {
        values[index] = static_cast<Number>(valueOf(name));
    }
}

template <class Number> void GLAPIENTRY getOfObject(GLuint, GLenum name, Number* values)
{
    *values = static_cast<Number>(valueOf(name));
}

template <class Number> void GLAPIENTRY getOfTarget(GLenum, GLenum, Number* values)
{
    *values = 0;
}

template <class Number> void GLAPIENTRY getIndexed(GLenum name, GLuint, Number* values)
{
    get(name, values);
}

void GLAPIENTRY getSync(GLsync, GLenum name, GLsizei, GLsizei* length, GLint* values)
{
    if (length != nullptr)
    {
        *length = 1;
    }
    *values = valueOf(name);
}

void GLAPIENTRY getLog(GLuint, GLsizei capacity, GLsizei* length, GLchar* text)
{
    if (length != nullptr)
    {
        *length = 0;
    }
    if (text != nullptr && capacity > 0)
    {
        *text = '\0';
    }
}

GLint GLAPIENTRY getLocation(GLuint, const GLchar*)
{
    return -1;
}

GLuint GLAPIENTRY getIndex(GLuint, const GLchar*)
{
    return GL_INVALID_INDEX;
}

void GLAPIENTRY getInterface(GLuint, GLenum, GLenum, GLint* values)
{
    *values = 0;
}

void setObjectEntries(GLEWContextStruct& table)
{
    for (auto entry :
         {&GLEWContextStruct::kvr_common__glewGenBuffers, &GLEWContextStruct::kvr_common__glewGenFramebuffers,
          &GLEWContextStruct::kvr_common__glewGenQueries, &GLEWContextStruct::kvr_common__glewGenRenderbuffers,
          &GLEWContextStruct::kvr_common__glewGenSamplers, &GLEWContextStruct::kvr_common__glewGenTextures,
          &GLEWContextStruct::kvr_common__glewGenTransformFeedbacks,
          &GLEWContextStruct::kvr_common__glewGenVertexArrays, &GLEWContextStruct::kvr_common__glewCreateBuffers,
          &GLEWContextStruct::kvr_common__glewCreateFramebuffers,
          &GLEWContextStruct::kvr_common__glewCreateRenderbuffers, &GLEWContextStruct::kvr_common__glewCreateSamplers,
          &GLEWContextStruct::kvr_common__glewCreateVertexArrays})
    {
        table.*entry = &makeNames;
    }
    for (auto entry :
         {&GLEWContextStruct::kvr_common__glewIsBuffer, &GLEWContextStruct::kvr_common__glewIsFramebuffer,
          &GLEWContextStruct::kvr_common__glewIsProgram, &GLEWContextStruct::kvr_common__glewIsQuery,
          &GLEWContextStruct::kvr_common__glewIsSampler, &GLEWContextStruct::kvr_common__glewIsShader,
          &GLEWContextStruct::kvr_common__glewIsTexture, &GLEWContextStruct::kvr_common__glewIsVertexArray})
    {
        table.*entry = &isName;
    }
    table.kvr_common__glewCreateTextures = &makeNamesForTarget;
    table.kvr_common__glewCreateQueries = &makeNamesForTarget;
    table.kvr_common__glewCreateProgram = &makeProgram;
    table.kvr_common__glewCreateShader = &makeShader;
    table.kvr_common__glewFenceSync = &makeSync;
    table.kvr_common__glewIsSync = &isSync;
    table.kvr_common__glewClientWaitSync = &clientWait;
    table.kvr_common__glewCheckFramebufferStatus = &checkFramebuffer;
    table.kvr_common__glewCheckNamedFramebufferStatus = &checkNamedFramebuffer;
    table.kvr_common__glewMapBuffer = &mapBuffer;
    table.kvr_common__glewMapBufferRange = &mapBufferRange;
    table.kvr_common__glewUnmapBuffer = &unmapBuffer;
}

void setQueryEntries(GLEWContextStruct& table)
{
    table.kvr_common__glewGetString = &getString;
    table.kvr_common__glewGetBooleanv = &get<GLboolean>;
    table.kvr_common__glewGetIntegerv = &get<GLint>;
    table.kvr_common__glewGetInteger64v = &get<GLint64>;
    table.kvr_common__glewGetFloatv = &get<GLfloat>;
    table.kvr_common__glewGetDoublev = &get<GLdouble>;
    table.kvr_common__glewGetBooleani_v = &getIndexed<GLboolean>;
    table.kvr_common__glewGetIntegeri_v = &getIndexed<GLint>;
    table.kvr_common__glewGetInteger64i_v = &getIndexed<GLint64>;
    table.kvr_common__glewGetShaderiv = &getOfObject<GLint>;
    table.kvr_common__glewGetProgramiv = &getOfObject<GLint>;
    table.kvr_common__glewGetQueryObjectiv = &getOfObject<GLint>;
    table.kvr_common__glewGetQueryObjectuiv = &getOfObject<GLuint>;
    table.kvr_common__glewGetQueryObjecti64v = &getOfObject<GLint64>;
    table.kvr_common__glewGetQueryObjectui64v = &getOfObject<GLuint64>;
    table.kvr_common__glewGetBufferParameteriv = &getOfTarget<GLint>;
    table.kvr_common__glewGetBufferParameteri64v = &getOfTarget<GLint64>;
    table.kvr_common__glewGetSynciv = &getSync;
    table.kvr_common__glewGetShaderInfoLog = &getLog;
    table.kvr_common__glewGetProgramInfoLog = &getLog;
    table.kvr_common__glewGetUniformLocation = &getLocation;
    table.kvr_common__glewGetAttribLocation = &getLocation;
    table.kvr_common__glewGetUniformBlockIndex = &getIndex;
    table.kvr_common__glewGetProgramInterfaceiv = &getInterface;
}

GLEWContextStruct makeTable()
{
    GLEWContextStruct table = g_silentTable;
    table.majorVersion = 4;
    table.minorVersion = 6;
    setObjectEntries(table);
    setQueryEntries(table);
    return table;
}
} // namespace

NullGL::NullGL() : m_scope(table()) {}

const GLEWContextStruct* NullGL::table()
{
    static const GLEWContextStruct s_table = makeTable();
    return &s_table;
}
} // namespace renderengine::glbinding
