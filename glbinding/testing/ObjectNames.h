#pragma once

#include "CallText.h"

#include <array>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace renderengine::glbinding
{
enum class ObjectKind : std::uint8_t
{
    Buffer,
    Framebuffer,
    List,
    Program,
    ProgramPipeline,
    Query,
    Renderbuffer,
    Sampler,
    Shader,
    Sync,
    Texture,
    TransformFeedback,
    VertexArray,
    Count
};

/// An object that a call deleted.
struct DeletedObject
{
    ObjectKind kind;
    GLuint name;
};

/// The names of the objects of a recording: which live, and how many were made and deleted.
class ObjectNames
{
public:
    /// Answers the calls that make, delete and ask for names; nothing for all other calls.
    std::optional<std::uint64_t> call(FunctionIndex function, const CallValue* values);

    /// What the last call deleted.
    const std::vector<DeletedObject>& lastDeleted() const { return m_lastDeleted; }

    bool isLive(ObjectKind kind, GLuint name) const;
    std::size_t made(ObjectKind kind) const { return of(kind).made; }
    std::size_t deleted(ObjectKind kind) const { return of(kind).deleted; }
    std::size_t live(ObjectKind kind) const { return of(kind).live.size(); }
    /// "Buffer 3" and so on.
    std::vector<std::string> liveObjects() const;

    /// Throws std::invalid_argument for an unknown kind.
    static ObjectKind kindOf(const std::string& name);

private:
    struct Names
    {
        GLuint next = 1;
        std::size_t made = 0;
        std::size_t deleted = 0;
        std::set<GLuint> live;
    };

    const Names& of(ObjectKind kind) const { return m_names[static_cast<std::size_t>(kind)]; }
    GLuint make(ObjectKind kind);
    void makeMany(ObjectKind kind, std::int64_t count, const void* output);
    void remove(ObjectKind kind, GLuint name);
    void removeMany(ObjectKind kind, std::int64_t count, const void* names);

    std::array<Names, static_cast<std::size_t>(ObjectKind::Count)> m_names;
    std::vector<DeletedObject> m_lastDeleted;
};
} // namespace renderengine::glbinding
