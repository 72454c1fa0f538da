#include "ContextValues.h"

#include "BindingNames.h"

#include <glbinding/GLEnums.h>

namespace renderengine::glbinding
{
namespace
{
GLenum enumAt(const CallValue* values, std::size_t index)
{
    return static_cast<GLenum>(values[index].integer);
}
} // namespace

ContextValues::ContextValues()
{
    m_values = initialContextValues();
    m_enabled = {{GL_DITHER, 0}, {GL_MULTISAMPLE, 0}};
    m_strings = {{GL_VENDOR, "Recording"}, {GL_RENDERER, "Recording renderer"}};
}

void ContextValues::setVersion(int major, int minor)
{
    const std::string number = std::to_string(major) + '.' + std::to_string(minor);
    m_strings[GL_VERSION] = number + " Recording";
    m_strings[GL_SHADING_LANGUAGE_VERSION] = number + "0";
    set(GL_MAJOR_VERSION, {major});
    set(GL_MINOR_VERSION, {minor});
}

void ContextValues::setArguments(GLenum name, const CallValue* values, int count, bool real)
{
    Numbers numbers;
    for (int index = 0; index < count; ++index)
    {
        numbers.push_back(real ? Number::fromReal(values[index].real) : Number(values[index].integer));
    }
    set(name, numbers);
}

void ContextValues::track(FunctionIndex function, const CallValue* values)
{
    if (trackBinding(function, values) || trackMasks(function, values))
    {
        return;
    }
    switch (function)
    {
    case FunctionIndex::Enable:
        m_enabled.insert({enumAt(values, 0), 0});
        break;
    case FunctionIndex::Disable:
        m_enabled.erase({enumAt(values, 0), 0});
        break;
    case FunctionIndex::Enablei:
        m_enabled.insert({enumAt(values, 0), enumAt(values, 1)});
        break;
    case FunctionIndex::Disablei:
        m_enabled.erase({enumAt(values, 0), enumAt(values, 1)});
        break;
    case FunctionIndex::ActiveTexture:
    case FunctionIndex::ActiveTextureARB:
        m_activeUnit = enumAt(values, 0) - GL_TEXTURE0;
        set(GL_ACTIVE_TEXTURE, {values[0].integer});
        break;
    case FunctionIndex::PixelStorei:
    case FunctionIndex::PatchParameteri:
        set(enumAt(values, 0), {values[1].integer});
        break;
    default:
        if (const ValueOfCall* tracked = valueOfCall(function))
        {
            setArguments(tracked->name, values, tracked->count, tracked->real);
        }
        break;
    }
}

bool ContextValues::trackBinding(FunctionIndex function, const CallValue* values)
{
    switch (function)
    {
    case FunctionIndex::BindBuffer:
        bindBuffer(enumAt(values, 0), enumAt(values, 1));
        return true;
    case FunctionIndex::BindBufferBase:
    case FunctionIndex::BindBufferRange:
        bindIndexed(enumAt(values, 0), enumAt(values, 1), enumAt(values, 2));
        return true;
    case FunctionIndex::BindVertexArray:
        m_vertexArray = enumAt(values, 0);
        set(GL_VERTEX_ARRAY_BINDING, {values[0].integer});
        return true;
    case FunctionIndex::BindTexture:
        m_unitBindings[{m_activeUnit, textureBindingOf(enumAt(values, 0))}] = enumAt(values, 1);
        return true;
    case FunctionIndex::BindSampler:
        m_unitBindings[{enumAt(values, 0), GL_SAMPLER_BINDING}] = enumAt(values, 1);
        return true;
    case FunctionIndex::BindFramebuffer:
        bindFramebuffer(enumAt(values, 0), enumAt(values, 1));
        return true;
    case FunctionIndex::BindRenderbuffer:
        set(GL_RENDERBUFFER_BINDING, {values[1].integer});
        return true;
    default:
        return false;
    }
}

bool ContextValues::trackMasks(FunctionIndex function, const CallValue* values)
{
    switch (function)
    {
    case FunctionIndex::ColorMask:
        for (GLuint buffer = 0; buffer < drawBufferCount; ++buffer)
        {
            m_indexed.erase({GL_COLOR_WRITEMASK, buffer});
        }
        setArguments(GL_COLOR_WRITEMASK, values, 4, false);
        return true;
    case FunctionIndex::ColorMaski:
        m_indexed[{GL_COLOR_WRITEMASK, enumAt(values, 0)}] = {values[1].integer, values[2].integer, values[3].integer,
                                                              values[4].integer};
        return true;
    case FunctionIndex::PolygonMode:
        set(GL_POLYGON_MODE, {values[1].integer, values[1].integer});
        return true;
    case FunctionIndex::StencilMask:
        set(GL_STENCIL_WRITEMASK, {values[0].integer});
        set(GL_STENCIL_BACK_WRITEMASK, {values[0].integer});
        return true;
    case FunctionIndex::StencilMaskSeparate:
        if (values[0].integer != GL_BACK)
        {
            set(GL_STENCIL_WRITEMASK, {values[1].integer});
        }
        if (values[0].integer != GL_FRONT)
        {
            set(GL_STENCIL_BACK_WRITEMASK, {values[1].integer});
        }
        return true;
    case FunctionIndex::DrawBuffers:
        for (std::int64_t index = 0; index < values[0].integer; ++index)
        {
            const GLuint buffer = static_cast<const GLenum*>(values[1].pointer)[index];
            set(static_cast<GLenum>(GL_DRAW_BUFFER0 + index), {buffer});
            set(index == 0 ? GL_DRAW_BUFFER : static_cast<GLenum>(GL_DRAW_BUFFER0 + index), {buffer});
        }
        return true;
    case FunctionIndex::DrawBuffer:
        set(GL_DRAW_BUFFER0, {values[0].integer});
        set(GL_DRAW_BUFFER, {values[0].integer});
        return true;
    default:
        return false;
    }
}

void ContextValues::bindBuffer(GLenum target, GLuint buffer)
{
    if (target == GL_ELEMENT_ARRAY_BUFFER)
    {
        m_elementBuffers[m_vertexArray] = buffer;
        return;
    }
    set(bufferBindingOf(target), {buffer});
}

void ContextValues::bindIndexed(GLenum target, GLuint index, GLuint buffer)
{
    bindBuffer(target, buffer);
    m_indexed[{bufferBindingOf(target), index}] = {buffer};
}

void ContextValues::bindFramebuffer(GLenum target, GLuint framebuffer)
{
    if (target != GL_READ_FRAMEBUFFER)
    {
        set(GL_DRAW_FRAMEBUFFER_BINDING, {framebuffer});
    }
    if (target != GL_DRAW_FRAMEBUFFER)
    {
        set(GL_READ_FRAMEBUFFER_BINDING, {framebuffer});
    }
}

void ContextValues::unbind(GLenum name, GLuint object)
{
    const auto found = m_values.find(name);
    if (found != m_values.end() && !found->second.empty() && found->second[0].integer == object)
    {
        found->second = {0};
    }
}

void ContextValues::forget(const DeletedObject& object)
{
    const GLuint name = object.name;
    switch (object.kind)
    {
    case ObjectKind::Buffer:
        for (const GLenum binding : bufferBindings())
        {
            unbind(binding, name);
        }
        for (auto& [vertexArray, buffer] : m_elementBuffers)
        {
            // A vertex array that is not bound keeps its reference.
            buffer = vertexArray == m_vertexArray && buffer == name ? 0 : buffer;
        }
        break;
    case ObjectKind::Framebuffer:
        unbind(GL_DRAW_FRAMEBUFFER_BINDING, name);
        unbind(GL_READ_FRAMEBUFFER_BINDING, name);
        break;
    case ObjectKind::Renderbuffer:
        unbind(GL_RENDERBUFFER_BINDING, name);
        break;
    case ObjectKind::VertexArray:
        unbind(GL_VERTEX_ARRAY_BINDING, name);
        m_elementBuffers.erase(name);
        m_vertexArray = m_vertexArray == name ? 0 : m_vertexArray;
        break;
    case ObjectKind::Texture:
    case ObjectKind::Sampler:
        for (auto& [unitAndBinding, bound] : m_unitBindings)
        {
            const bool isSampler = unitAndBinding.second == GL_SAMPLER_BINDING;
            bound = isSampler == (object.kind == ObjectKind::Sampler) && bound == name ? 0 : bound;
        }
        break;
    default:
        break;
    }
}

const Numbers* ContextValues::answered(GLenum name) const
{
    const auto found = m_answers.find(name);
    return found != m_answers.end() ? &found->second : nullptr;
}

GLuint ContextValues::boundBuffer(GLenum target) const
{
    const Numbers numbers = numbersOf(bufferBindingOf(target));
    return static_cast<GLuint>(numbers[0].integer);
}

Numbers ContextValues::numbersOf(GLenum name) const
{
    if (const Numbers* numbers = answered(name))
    {
        return *numbers;
    }
    switch (name)
    {
    case GL_ELEMENT_ARRAY_BUFFER_BINDING:
    {
        const auto found = m_elementBuffers.find(m_vertexArray);
        return {found != m_elementBuffers.end() ? found->second : 0};
    }
    case GL_NUM_EXTENSIONS:
        return {static_cast<std::int64_t>(m_extensions.size())};
    default:
        break;
    }
    if (const auto found = m_values.find(name); found != m_values.end())
    {
        return found->second;
    }
    if (const auto found = m_unitBindings.find({m_activeUnit, name}); found != m_unitBindings.end())
    {
        return {found->second};
    }
    return {m_enabled.count({name, 0}) != 0 ? 1 : 0};
}

Numbers ContextValues::numbersOf(GLenum name, GLuint index) const
{
    if (const auto found = m_indexed.find({name, index}); found != m_indexed.end() && answered(name) == nullptr)
    {
        return found->second;
    }
    const Numbers numbers = numbersOf(name);
    const bool severalForEach = name == GL_COLOR_WRITEMASK || name == GL_VIEWPORT || name == GL_SCISSOR_BOX;
    if (severalForEach)
    {
        return numbers;
    }
    return {index < numbers.size() ? numbers[index] : Number(0)};
}

std::uint64_t ContextValues::stringAt(GLenum name, GLuint index) const
{
    if (name == GL_EXTENSIONS)
    {
        return index < m_extensions.size() ? reinterpret_cast<std::uintptr_t>(m_extensions[index].c_str()) : 0;
    }
    const auto found = m_strings.find(name);
    return found != m_strings.end() ? reinterpret_cast<std::uintptr_t>(found->second.c_str()) : 0;
}

std::optional<std::uint64_t> ContextValues::query(FunctionIndex function, const CallValue* values)
{
    switch (function)
    {
    case FunctionIndex::GetBooleanv:
    case FunctionIndex::GetDoublev:
    case FunctionIndex::GetFloatv:
    case FunctionIndex::GetInteger64v:
    case FunctionIndex::GetIntegerv:
        writeLast(function, values, numbersOf(enumAt(values, 0)));
        return 0;
    case FunctionIndex::GetBooleani_v:
    case FunctionIndex::GetDoublei_v:
    case FunctionIndex::GetFloati_v:
    case FunctionIndex::GetInteger64i_v:
    case FunctionIndex::GetIntegeri_v:
        writeLast(function, values, numbersOf(enumAt(values, 0), enumAt(values, 1)));
        return 0;
    case FunctionIndex::IsEnabled:
        return numbersOf(enumAt(values, 0))[0].integer != 0 ? 1 : 0;
    case FunctionIndex::IsEnabledi:
        return m_enabled.count({enumAt(values, 0), enumAt(values, 1)}) + m_enabled.count({enumAt(values, 0), 0}) != 0;
    case FunctionIndex::GetString:
        return enumAt(values, 0) == GL_EXTENSIONS ? 0 : stringAt(enumAt(values, 0), 0);
    case FunctionIndex::GetStringi:
        return stringAt(enumAt(values, 0), enumAt(values, 1));
    default:
        return std::nullopt;
    }
}
} // namespace renderengine::glbinding
