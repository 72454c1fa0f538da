#include "support/LiveObjects.h"

#include "context/ContextGL.h"
#include "platform/PlatformLayer.h"

#include <glbinding/CurrentTable.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <set>

namespace renderengine::testing
{

namespace
{

enum Kind : size_t
{
    Buffers,
    Textures,
    Samplers,
    Framebuffers,
    Renderbuffers,
    VertexArrays,
    Queries,
    TransformFeedbacks,
    Pipelines,
    Shaders,
    Programs,
    Lists,
    KindCount
};

constexpr std::array<const char*, KindCount> s_kindNames{
    {"buffers", "textures", "samplers", "framebuffers", "renderbuffers", "vertex arrays", "queries",
     "transform feedbacks", "program pipelines", "shaders", "programs", "display lists"}};

std::mutex s_mutex;
// Contexts that share nothing give out the same names, so a name can be alive more than once.
std::array<std::multiset<GLuint>, KindCount> s_names;
std::multiset<GLsync> s_syncs;

void noteMade(Kind kind, GLsizei count, const GLuint* names)
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    for (GLsizei i = 0; i < count; ++i)
    {
        if (names[i] != 0)
        {
            s_names[kind].insert(names[i]);
        }
    }
}

void noteDeleted(Kind kind, GLsizei count, const GLuint* names)
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    for (GLsizei i = 0; i < count; ++i)
    {
        const auto found = s_names[kind].find(names[i]);
        if (found != s_names[kind].end())
        {
            s_names[kind].erase(found);
        }
    }
}

// An entry of the table with what it replaces. Each place of the table is a type of its own, so that a plain function
// knows which entry to call.

template <auto Entry, Kind kind> struct Gen
{
    static inline void(GLAPIENTRY* s_entry)(GLsizei, GLuint*) = nullptr;

    static void GLAPIENTRY call(GLsizei count, GLuint* names)
    {
        s_entry(count, names);
        noteMade(kind, count, names);
    }
};

template <auto Entry, Kind kind> struct CreateForTarget
{
    static inline void(GLAPIENTRY* s_entry)(GLenum, GLsizei, GLuint*) = nullptr;

    static void GLAPIENTRY call(GLenum target, GLsizei count, GLuint* names)
    {
        s_entry(target, count, names);
        noteMade(kind, count, names);
    }
};

template <auto Entry, Kind kind> struct Delete
{
    static inline void(GLAPIENTRY* s_entry)(GLsizei, const GLuint*) = nullptr;

    static void GLAPIENTRY call(GLsizei count, const GLuint* names)
    {
        noteDeleted(kind, count, names);
        s_entry(count, names);
    }
};

template <auto Entry, Kind kind> struct DeleteOne
{
    static inline void(GLAPIENTRY* s_entry)(GLuint) = nullptr;

    static void GLAPIENTRY call(GLuint name)
    {
        noteDeleted(kind, 1, &name);
        s_entry(name);
    }
};

template <auto Entry, Kind kind> struct CreateShader
{
    static inline GLuint(GLAPIENTRY* s_entry)(GLenum) = nullptr;

    static GLuint GLAPIENTRY call(GLenum stage)
    {
        const GLuint name = s_entry(stage);
        noteMade(kind, 1, &name);
        return name;
    }
};

template <auto Entry, Kind kind> struct CreateProgram
{
    static inline GLuint(GLAPIENTRY* s_entry)() = nullptr;

    static GLuint GLAPIENTRY call()
    {
        const GLuint name = s_entry();
        noteMade(kind, 1, &name);
        return name;
    }
};

template <auto Entry, Kind kind> struct CreateShaderProgram
{
    static inline GLuint(GLAPIENTRY* s_entry)(GLenum, GLsizei, const GLchar* const*) = nullptr;

    static GLuint GLAPIENTRY call(GLenum stage, GLsizei count, const GLchar* const* sources)
    {
        const GLuint name = s_entry(stage, count, sources);
        noteMade(kind, 1, &name);
        return name;
    }
};

template <auto Entry, Kind kind> struct GenRange
{
    static inline GLuint(GLAPIENTRY* s_entry)(GLsizei) = nullptr;

    static GLuint GLAPIENTRY call(GLsizei count)
    {
        const GLuint first = s_entry(count);
        for (GLuint i = 0; first != 0 && i < static_cast<GLuint>(count); ++i)
        {
            const GLuint name = first + i;
            noteMade(kind, 1, &name);
        }
        return first;
    }
};

template <auto Entry, Kind kind> struct DeleteRange
{
    static inline void(GLAPIENTRY* s_entry)(GLuint, GLsizei) = nullptr;

    static void GLAPIENTRY call(GLuint first, GLsizei count)
    {
        for (GLsizei i = 0; i < count; ++i)
        {
            const GLuint name = first + static_cast<GLuint>(i);
            noteDeleted(kind, 1, &name);
        }
        s_entry(first, count);
    }
};

struct FenceSync
{
    static inline GLsync(GLAPIENTRY* s_entry)(GLenum, GLbitfield) = nullptr;

    static GLsync GLAPIENTRY call(GLenum condition, GLbitfield flags)
    {
        const GLsync sync = s_entry(condition, flags);
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (sync)
        {
            s_syncs.insert(sync);
        }
        return sync;
    }
};

struct DeleteSync
{
    static inline void(GLAPIENTRY* s_entry)(GLsync) = nullptr;

    static void GLAPIENTRY call(GLsync sync)
    {
        {
            const std::lock_guard<std::mutex> lock(s_mutex);
            const auto found = s_syncs.find(sync);
            if (found != s_syncs.end())
            {
                s_syncs.erase(found);
            }
        }
        s_entry(sync);
    }
};

/// Hands each function that makes or deletes objects to the visitor: its counting form, its name, its place in a table.
template <class Visitor> void visitWatched(Visitor&& visit)
{
#define WATCH(FORM, FUNCTION, KIND)                                                     \
    visit(FORM<&GLEWContextStruct::kvr_common__glew##FUNCTION, KIND>{}, "gl" #FUNCTION, \
          &GLEWContextStruct::kvr_common__glew##FUNCTION)
    WATCH(Gen, GenBuffers, Buffers);
    WATCH(Gen, CreateBuffers, Buffers);
    WATCH(Delete, DeleteBuffers, Buffers);
    WATCH(Gen, GenTextures, Textures);
    WATCH(CreateForTarget, CreateTextures, Textures);
    WATCH(Delete, DeleteTextures, Textures);
    WATCH(Gen, GenSamplers, Samplers);
    WATCH(Gen, CreateSamplers, Samplers);
    WATCH(Delete, DeleteSamplers, Samplers);
    WATCH(Gen, GenFramebuffers, Framebuffers);
    WATCH(Gen, CreateFramebuffers, Framebuffers);
    WATCH(Delete, DeleteFramebuffers, Framebuffers);
    WATCH(Gen, GenRenderbuffers, Renderbuffers);
    WATCH(Gen, CreateRenderbuffers, Renderbuffers);
    WATCH(Delete, DeleteRenderbuffers, Renderbuffers);
    WATCH(Gen, GenVertexArrays, VertexArrays);
    WATCH(Gen, CreateVertexArrays, VertexArrays);
    WATCH(Delete, DeleteVertexArrays, VertexArrays);
    WATCH(Gen, GenQueries, Queries);
    WATCH(CreateForTarget, CreateQueries, Queries);
    WATCH(Delete, DeleteQueries, Queries);
    WATCH(Gen, GenTransformFeedbacks, TransformFeedbacks);
    WATCH(Gen, CreateTransformFeedbacks, TransformFeedbacks);
    WATCH(Delete, DeleteTransformFeedbacks, TransformFeedbacks);
    WATCH(Gen, GenProgramPipelines, Pipelines);
    WATCH(Gen, CreateProgramPipelines, Pipelines);
    WATCH(Delete, DeleteProgramPipelines, Pipelines);
    WATCH(CreateShader, CreateShader, Shaders);
    WATCH(DeleteOne, DeleteShader, Shaders);
    WATCH(CreateProgram, CreateProgram, Programs);
    WATCH(CreateShaderProgram, CreateShaderProgramv, Programs);
    WATCH(DeleteOne, DeleteProgram, Programs);
    WATCH(GenRange, GenLists, Lists);
    WATCH(DeleteRange, DeleteLists, Lists);
#undef WATCH
    visit(FenceSync{}, "glFenceSync", &GLEWContextStruct::kvr_common__glewFenceSync);
    visit(DeleteSync{}, "glDeleteSync", &GLEWContextStruct::kvr_common__glewDeleteSync);
}

void forget()
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    for (std::multiset<GLuint>& names : s_names)
    {
        names.clear();
    }
    s_syncs.clear();
}

/// The driver's function, or the counting form of it.
void* loadWatched(const char* name)
{
    void* address = platform().procAddress(name);
    if (!address)
    {
        return nullptr;
    }
    visitWatched(
        [&](auto watched, const char* watchedName, auto /*place*/)
        {
            using Watched = decltype(watched);
            if (std::strcmp(name, watchedName) == 0)
            {
                const std::lock_guard<std::mutex> lock(s_mutex);
                // One driver serves the process, so every context has the same function.
                Watched::s_entry = reinterpret_cast<decltype(Watched::s_entry)>(address);
                address = reinterpret_cast<void*>(&Watched::call);
            }
        });
    return address;
}

} // namespace

void LiveObjects::watch(GLEWContextStruct& table)
{
    forget();
    visitWatched(
        [&table](auto watched, const char* /*name*/, auto place)
        {
            using Watched = decltype(watched);
            if (table.*place != &Watched::call)
            {
                Watched::s_entry = table.*place;
                table.*place = &Watched::call;
            }
        });
}

void LiveObjects::watchEveryContext()
{
    forget();
    // The engine installs its own loader once; this one comes after it.
    ContextGL::installBindingHooks();
    glbinding::setProcAddressLoader(&loadWatched);
}

std::vector<std::string> LiveObjects::list()
{
    const std::lock_guard<std::mutex> lock(s_mutex);
    std::vector<std::string> texts;
    for (size_t kind = 0; kind < KindCount; ++kind)
    {
        if (!s_names[kind].empty())
        {
            std::string text = std::string(s_kindNames[kind]) + ":";
            for (const GLuint name : s_names[kind])
            {
                text += " " + std::to_string(name);
            }
            texts.push_back(text);
        }
    }
    if (!s_syncs.empty())
    {
        texts.push_back("syncs: " + std::to_string(s_syncs.size()));
    }
    return texts;
}

} // namespace renderengine::testing
