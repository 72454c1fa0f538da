#pragma once

#include "gl/BaseResourceGL.h"

#include <glbinding/gl.h>
#include <renderengine/RenderTargetProperties.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace renderengine
{

class TextureGL;

/// One GL framebuffer object. It is rebuilt when its list of attachments changes, and at a bind after one of its
/// textures got a new name. Render thread only, with the context current.
class RenderTargetGL : public BaseResourceGL
{
public:
    using TextureList = std::vector<std::shared_ptr<TextureGL>>;
    using ColorTextures = std::array<const TextureGL*, 16>;

    RenderTargetGL() = default;
    ~RenderTargetGL() override = default;

    /// Takes the attachments and, parallel to them, their textures, which the target shares. Does nothing when both
    /// equal what it has; else it rebuilds at once and leaves the framebuffer binding as it was. Entries without a
    /// texture and entries whose attachment is above 19 are skipped.
    void update(const RenderTargetProperties& newProperties, const TextureList& newTextures);
    /// Rebuilds if needed and binds the framebuffer to GL_FRAMEBUFFER.
    void bind();
    /// Builds the framebuffer from the stored lists. Restores the framebuffer binding; when this target was bound, its
    /// new framebuffer is bound afterwards.
    void rebuild();

    /// Deletes the framebuffer.
    void destroy() override;
    void destroyFramebuffer();
    void createFramebuffer();
    /// Attaches texture 0 to each attachment point in use. The framebuffer must be bound.
    void detachAll() const;

    /// Diagnostic for developers: logs why the bound framebuffer is not complete, and what looks wrong about the
    /// textures and the state. Null entries stand for attachments that are not there. The engine calls it after each
    /// rebuild when `KVR_RENDERENGINE_CHECK_FRAMEBUFFER` is on, and never otherwise.
    static void checkFramebuffer(const ColorTextures& colorTextures, const TextureGL* depth, const TextureGL* stencil,
                                 const TextureGL* depthStencil);

    /// GL framebuffer name, 0 when there is none yet.
    GLuint getFramebuffer() const { return framebuffer; }
    /// Bit i is set when colour attachment i is present.
    uint32_t getColorAttachmentMask() const { return colorAttachmentMask; }
    bool hasDepthAttachment() const { return hasDepth; }
    bool hasStencilAttachment() const { return hasStencil; }
    bool hasDepthStencilAttachment() const { return hasDepthStencil; }
    const RenderTargetProperties& getProperties() const { return properties; }
    const TextureList& getTextures() const { return textures; }

private:
    struct Attachment
    {
        GLenum textureTarget = GL_INVALID_ENUM;
        GLenum attachmentPoint = GL_NONE;
        uint16_t layer = 0;
        uint8_t level = 0;
    };

    bool needsRebuild() const;
    std::vector<GLenum> attachTextures();
    void checkAttachments() const;
    void noteAttachment(uint32_t index, std::vector<GLenum>& drawBuffers);
    static void attach(const Attachment& attachment, GLuint texture);
    static void setDrawBuffers(const std::vector<GLenum>& drawBuffers);

    // One record for each attachment point, and the closing one.
    static constexpr size_t s_maxAttachments = 20;

    GLuint framebuffer = 0;
    uint32_t colorAttachmentMask = 0;
    std::array<Attachment, s_maxAttachments + 1> attachments;
    bool hasDepth = false;
    bool hasStencil = false;
    bool hasDepthStencil = false;
    // Its srgb field asks for GL_FRAMEBUFFER_SRGB.
    RenderTargetProperties properties;
    TextureList textures;
};

} // namespace renderengine
