#include "ObjectNames.h"

#include <cstring>
#include <stdexcept>

namespace renderengine::glbinding
{
namespace
{
constexpr const char* kindNames[] = {"Buffer",  "Framebuffer",       "List",       "Program", "ProgramPipeline",
                                     "Query",   "Renderbuffer",      "Sampler",    "Shader",  "Sync",
                                     "Texture", "TransformFeedback", "VertexArray"};
static_assert(sizeof(kindNames) / sizeof(kindNames[0]) == static_cast<std::size_t>(ObjectKind::Count));

enum class Action
{
    None,
    // (n, names), and the same behind a target.
    Make,
    MakeForTarget,
    Delete,
    // (name), with a result.
    MakeOne,
    DeleteOne,
    Is
};

struct Role
{
    Action action = Action::None;
    ObjectKind kind = ObjectKind::Count;
};

Role roleOf(FunctionIndex function)
{
    switch (function)
    {
#define GLBINDING_KIND(kind, plural)               \
    case FunctionIndex::Gen##plural:               \
        return {Action::Make, ObjectKind::kind};   \
    case FunctionIndex::Delete##plural:            \
        return {Action::Delete, ObjectKind::kind}; \
    case FunctionIndex::Is##kind:                  \
        return {Action::Is, ObjectKind::kind};
        GLBINDING_KIND(Buffer, Buffers)
        GLBINDING_KIND(Framebuffer, Framebuffers)
        GLBINDING_KIND(ProgramPipeline, ProgramPipelines)
        GLBINDING_KIND(Query, Queries)
        GLBINDING_KIND(Renderbuffer, Renderbuffers)
        GLBINDING_KIND(Sampler, Samplers)
        GLBINDING_KIND(Texture, Textures)
        GLBINDING_KIND(TransformFeedback, TransformFeedbacks)
        GLBINDING_KIND(VertexArray, VertexArrays)
#undef GLBINDING_KIND
#define GLBINDING_CREATED(kind, plural) \
    case FunctionIndex::Create##plural: \
        return {Action::Make, ObjectKind::kind};
        GLBINDING_CREATED(Buffer, Buffers)
        GLBINDING_CREATED(Framebuffer, Framebuffers)
        GLBINDING_CREATED(ProgramPipeline, ProgramPipelines)
        GLBINDING_CREATED(Renderbuffer, Renderbuffers)
        GLBINDING_CREATED(Sampler, Samplers)
        GLBINDING_CREATED(TransformFeedback, TransformFeedbacks)
        GLBINDING_CREATED(VertexArray, VertexArrays)
#undef GLBINDING_CREATED
    case FunctionIndex::CreateQueries:
        return {Action::MakeForTarget, ObjectKind::Query};
    case FunctionIndex::CreateTextures:
        return {Action::MakeForTarget, ObjectKind::Texture};
    case FunctionIndex::CreateProgram:
    case FunctionIndex::CreateShaderProgramv:
        return {Action::MakeOne, ObjectKind::Program};
    case FunctionIndex::CreateShader:
        return {Action::MakeOne, ObjectKind::Shader};
    case FunctionIndex::FenceSync:
        return {Action::MakeOne, ObjectKind::Sync};
    case FunctionIndex::DeleteProgram:
        return {Action::DeleteOne, ObjectKind::Program};
    case FunctionIndex::DeleteShader:
        return {Action::DeleteOne, ObjectKind::Shader};
    case FunctionIndex::DeleteSync:
        return {Action::DeleteOne, ObjectKind::Sync};
    case FunctionIndex::IsProgram:
        return {Action::Is, ObjectKind::Program};
    case FunctionIndex::IsShader:
        return {Action::Is, ObjectKind::Shader};
    case FunctionIndex::IsSync:
        return {Action::Is, ObjectKind::Sync};
    case FunctionIndex::IsList:
        return {Action::Is, ObjectKind::List};
    default:
        return {};
    }
}
} // namespace

std::optional<std::uint64_t> ObjectNames::call(FunctionIndex function, const CallValue* values)
{
    m_lastDeleted.clear();
    if (function == FunctionIndex::GenLists)
    {
        GLuint first = 0;
        for (std::int64_t index = 0; index < values[0].integer; ++index)
        {
            const GLuint name = make(ObjectKind::List);
            first = index == 0 ? name : first;
        }
        return first;
    }
    if (function == FunctionIndex::DeleteLists)
    {
        for (std::int64_t index = 0; index < values[1].integer; ++index)
        {
            remove(ObjectKind::List, static_cast<GLuint>(values[0].integer + index));
        }
        return 0;
    }
    const Role role = roleOf(function);
    switch (role.action)
    {
    case Action::Make:
        makeMany(role.kind, values[0].integer, values[1].pointer);
        return 0;
    case Action::MakeForTarget:
        makeMany(role.kind, values[1].integer, values[2].pointer);
        return 0;
    case Action::Delete:
        removeMany(role.kind, values[0].integer, values[1].pointer);
        return 0;
    case Action::MakeOne:
        return make(role.kind);
    case Action::DeleteOne:
        remove(role.kind, static_cast<GLuint>(values[0].integer));
        return 0;
    case Action::Is:
        return isLive(role.kind, static_cast<GLuint>(values[0].integer)) ? 1 : 0;
    default:
        return std::nullopt;
    }
}

bool ObjectNames::isLive(ObjectKind kind, GLuint name) const
{
    return of(kind).live.count(name) != 0;
}

std::vector<std::string> ObjectNames::liveObjects() const
{
    std::vector<std::string> texts;
    for (std::size_t kind = 0; kind < m_names.size(); ++kind)
    {
        for (const GLuint name : m_names[kind].live)
        {
            texts.push_back(std::string(kindNames[kind]) + ' ' + std::to_string(name));
        }
    }
    return texts;
}

ObjectKind ObjectNames::kindOf(const std::string& name)
{
    for (std::size_t kind = 0; kind < static_cast<std::size_t>(ObjectKind::Count); ++kind)
    {
        if (name == kindNames[kind])
        {
            return static_cast<ObjectKind>(kind);
        }
    }
    throw std::invalid_argument("There is no kind of GL object named " + name + ".");
}

GLuint ObjectNames::make(ObjectKind kind)
{
    Names& names = m_names[static_cast<std::size_t>(kind)];
    // Programs and shaders share their numbers.
    Names& counter = m_names[static_cast<std::size_t>(kind == ObjectKind::Shader ? ObjectKind::Program : kind)];
    const GLuint name = counter.next++;
    names.live.insert(name);
    ++names.made;
    return name;
}

void ObjectNames::makeMany(ObjectKind kind, std::int64_t count, const void* output)
{
    auto* names = static_cast<GLuint*>(const_cast<void*>(output));
    for (std::int64_t index = 0; index < count; ++index)
    {
        names[index] = make(kind);
    }
}

void ObjectNames::remove(ObjectKind kind, GLuint name)
{
    Names& names = m_names[static_cast<std::size_t>(kind)];
    if (names.live.erase(name) != 0)
    {
        ++names.deleted;
        m_lastDeleted.push_back({kind, name});
    }
}

void ObjectNames::removeMany(ObjectKind kind, std::int64_t count, const void* names)
{
    for (std::int64_t index = 0; index < count; ++index)
    {
        remove(kind, static_cast<const GLuint*>(names)[index]);
    }
}
} // namespace renderengine::glbinding
