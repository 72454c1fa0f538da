#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include <renderengine/Concepts.h>

namespace renderengine
{

/// A typed 32-bit name of a resource, given out by a context.
///
/// A handle carries no ownership: copying one does not keep the resource alive, and only the matching destroy
/// operation of the context ends it. Handles of different concepts do not convert into each other.
template <class Concept> struct Handle
{
    /// The number of the handle that names nothing.
    static constexpr uint32_t InvalidId = 0xFFFFFFFFu;

    /// Makes the invalid handle.
    constexpr Handle() noexcept = default;

    /// Names the resource with that number.
    explicit constexpr Handle(uint32_t number) noexcept : id(number) {}

    /// Whether the handle can name a resource. It says nothing about whether that resource still exists.
    constexpr bool isValid() const noexcept { return id < InvalidId; }

    constexpr bool operator==(const Handle& other) const noexcept { return id == other.id; }
    constexpr bool operator!=(const Handle& other) const noexcept { return id != other.id; }
    constexpr bool operator<(const Handle& other) const noexcept { return id < other.id; }

    /// Slot number in the resource table of the concept.
    uint32_t id = InvalidId;
};

using DrawHandle = Handle<handleconcept::DrawConcept>;
using DrawPropertiesHandle = Handle<handleconcept::DrawPropertiesConcept>;
using BufferHandle = Handle<handleconcept::BufferConcept>;
using VertexBufferHandle = Handle<handleconcept::VertexBufferConcept>;
using IndexBufferHandle = Handle<handleconcept::IndexBufferConcept>;
using ShaderBufferHandle = Handle<handleconcept::ShaderBufferConcept>;
using TextureImageHandle = Handle<handleconcept::TextureImageConcept>;
using SamplerHandle = Handle<handleconcept::SamplerConcept>;
using TextureHandle = Handle<handleconcept::TextureConcept>;
using RenderTargetHandle = Handle<handleconcept::RenderTargetConcept>;
using ViewportHandle = Handle<handleconcept::ViewportConcept>;
using ShaderObjectHandle = Handle<handleconcept::ShaderObjectConcept>;
using ShaderProgramHandle = Handle<handleconcept::ShaderProgramConcept>;
using ShaderParameterHandle = Handle<handleconcept::ShaderParameterConcept>;
using QueryHandle = Handle<handleconcept::QueryConcept>;

static_assert(sizeof(DrawHandle) == 4, "a handle is its number");

} // namespace renderengine

namespace std
{

template <class Concept> struct hash<renderengine::Handle<Concept>>
{
    std::size_t operator()(const renderengine::Handle<Concept>& handle) const noexcept
    {
        return std::hash<std::uint32_t>()(handle.id);
    }
};

} // namespace std
