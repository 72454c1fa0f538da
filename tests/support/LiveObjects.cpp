#include "support/LiveObjects.h"

#include <array>
#include <cstddef>
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
    Shaders,
    Programs,
    KindCount
};

constexpr std::array<const char*, KindCount> s_kindNames{{"buffers", "textures", "samplers", "framebuffers",
                                                          "renderbuffers", "vertex arrays", "queries", "shaders",
                                                          "programs"}};

std::array<std::set<GLuint>, KindCount> s_names;
std::set<GLsync> s_syncs;

void noteMade(Kind kind, GLsizei count, const GLuint* names)
{
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
    for (GLsizei i = 0; i < count; ++i)
    {
        s_names[kind].erase(names[i]);
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

struct CreateShader
{
    static inline GLuint(GLAPIENTRY* s_entry)(GLenum) = nullptr;

    static GLuint GLAPIENTRY call(GLenum stage)
    {
        const GLuint name = s_entry(stage);
        noteMade(Shaders, 1, &name);
        return name;
    }
};

struct CreateProgram
{
    static inline GLuint(GLAPIENTRY* s_entry)() = nullptr;

    static GLuint GLAPIENTRY call()
    {
        const GLuint name = s_entry();
        noteMade(Programs, 1, &name);
        return name;
    }
};

struct FenceSync
{
    static inline GLsync(GLAPIENTRY* s_entry)(GLenum, GLbitfield) = nullptr;

    static GLsync GLAPIENTRY call(GLenum condition, GLbitfield flags)
    {
        const GLsync sync = s_entry(condition, flags);
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
        s_syncs.erase(sync);
        s_entry(sync);
    }
};

template <class Watched, class Function> void replace(Function& entry)
{
    Watched::s_entry = entry;
    entry = Watched::call;
}

template <auto MakeEntry, auto DeleteEntry, Kind kind> void watchNames(GLEWContextStruct& table)
{
    replace<Gen<MakeEntry, kind>>(table.*MakeEntry);
    replace<Delete<DeleteEntry, kind>>(table.*DeleteEntry);
}

} // namespace

void LiveObjects::watch(GLEWContextStruct& table)
{
    using Table = GLEWContextStruct;
    for (std::set<GLuint>& names : s_names)
    {
        names.clear();
    }
    s_syncs.clear();
    watchNames<&Table::kvr_common__glewGenBuffers, &Table::kvr_common__glewDeleteBuffers, Buffers>(table);
    watchNames<&Table::kvr_common__glewGenTextures, &Table::kvr_common__glewDeleteTextures, Textures>(table);
    watchNames<&Table::kvr_common__glewGenSamplers, &Table::kvr_common__glewDeleteSamplers, Samplers>(table);
    watchNames<&Table::kvr_common__glewGenFramebuffers, &Table::kvr_common__glewDeleteFramebuffers, Framebuffers>(
        table);
    watchNames<&Table::kvr_common__glewGenRenderbuffers, &Table::kvr_common__glewDeleteRenderbuffers, Renderbuffers>(
        table);
    watchNames<&Table::kvr_common__glewGenVertexArrays, &Table::kvr_common__glewDeleteVertexArrays, VertexArrays>(
        table);
    watchNames<&Table::kvr_common__glewGenQueries, &Table::kvr_common__glewDeleteQueries, Queries>(table);
    replace<CreateShader>(table.kvr_common__glewCreateShader);
    replace<DeleteOne<&Table::kvr_common__glewDeleteShader, Shaders>>(table.kvr_common__glewDeleteShader);
    replace<CreateProgram>(table.kvr_common__glewCreateProgram);
    replace<DeleteOne<&Table::kvr_common__glewDeleteProgram, Programs>>(table.kvr_common__glewDeleteProgram);
    replace<FenceSync>(table.kvr_common__glewFenceSync);
    replace<DeleteSync>(table.kvr_common__glewDeleteSync);
}

std::vector<std::string> LiveObjects::list()
{
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
