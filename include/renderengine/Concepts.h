#pragma once

namespace renderengine
{

/// Empty tags that type a Handle, so that a texture handle cannot be passed where a buffer handle is wanted.
///
/// `concept` is a keyword from C++20 on, so the tags live under this name; C++17 code may also write
/// `renderengine::concept::TextureConcept`.
namespace handleconcept
{

/// A drawable item with its state.
struct DrawConcept
{
};

/// The geometry bindings and ranges of a draw.
struct DrawPropertiesConcept
{
};

/// A raw device buffer.
struct BufferConcept
{
};

/// A vertex layout over a buffer.
struct VertexBufferConcept
{
};

/// An index layout over a buffer.
struct IndexBufferConcept
{
};

/// A uniform or storage block over a buffer.
struct ShaderBufferConcept
{
};

/// An image-unit binding of a texture.
struct TextureImageConcept
{
};

/// Filtering and wrapping state.
struct SamplerConcept
{
};

/// A texture object.
struct TextureConcept
{
};

/// A set of attachments.
struct RenderTargetConcept
{
};

/// A viewport rectangle with its depth range.
struct ViewportConcept
{
};

/// One shader stage.
struct ShaderObjectConcept
{
};

/// A linked program.
struct ShaderProgramConcept
{
};

/// A uniform value or array.
struct ShaderParameterConcept
{
};

/// A device query.
struct QueryConcept
{
};

} // namespace handleconcept

#if __cplusplus < 202002L
namespace concept = handleconcept;
#endif

} // namespace renderengine
