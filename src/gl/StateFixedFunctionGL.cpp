#include "gl/DebugGroup.h"
#include "gl/GLTables.h"
#include "gl/StateGL.h"

#include <kavelor/SbColor.h>
#include <kavelor/SbMatrix.h>
#include <spdlog/spdlog.h>

namespace renderengine
{

namespace
{

constexpr unsigned s_textureUnits = 8;
constexpr unsigned s_environmentUnits = 4;
constexpr unsigned s_lights = 8;
constexpr unsigned s_coordinates = 4;
// The records hold shininess in 0 to 1, GL in 0 to 128.
constexpr float s_maxShininess = 128.0f;

void sendLightColor(GLenum light, GLenum parameter, const SbVec4f& color)
{
    glLightfv(light, parameter, SbColorRGBA(color).getValue());
}

void applyLight(unsigned index, const LightProperties& lights)
{
    const GLenum light = GL_LIGHT0 + index;
    if ((lights.enabledMask & (1u << index)) == 0)
    {
        glDisable(light);
        return;
    }
    // Under the identity the position is in eye coordinates.
    glPushMatrix();
    glLoadIdentity();
    glEnable(light);
    glLightfv(light, GL_POSITION, lights.position[index].getValue());
    glLightfv(light, GL_SPOT_DIRECTION, lights.spotDirection[index].getValue());
    glLightf(light, GL_SPOT_CUTOFF, lights.spotCutoff[index]);
    glLightf(light, GL_SPOT_EXPONENT, lights.spotExponent[index]);
    sendLightColor(light, GL_AMBIENT, lights.ambient[index]);
    sendLightColor(light, GL_DIFFUSE, lights.diffuse[index]);
    sendLightColor(light, GL_SPECULAR, lights.specular[index]);
    glLightf(light, GL_CONSTANT_ATTENUATION, lights.constantAttenuation[index]);
    glLightf(light, GL_LINEAR_ATTENUATION, lights.linearAttenuation[index]);
    glLightf(light, GL_QUADRATIC_ATTENUATION, lights.quadraticAttenuation[index]);
    glPopMatrix();
}

// The values of one face, through the member of MaterialFaces that holds them.
template <typename Pick> void applyMaterial(GLenum face, const MaterialProperties& material, Pick pick)
{
    glMaterialfv(face, GL_AMBIENT, pick(material.ambient).getValue());
    glMaterialfv(face, GL_DIFFUSE, pick(material.diffuse).getValue());
    glMaterialfv(face, GL_SPECULAR, pick(material.specular).getValue());
    glMaterialfv(face, GL_EMISSION, pick(material.emission).getValue());
    glMaterialf(face, GL_SHININESS, pick(material.shininess) * s_maxShininess);
}

GLenum planeName(GLenum mode)
{
    switch (mode)
    {
    case GL_OBJECT_LINEAR:
        return GL_OBJECT_PLANE;
    case GL_EYE_LINEAR:
        return GL_EYE_PLANE;
    default:
        return GL_NONE;
    }
}

void applyTexGenUnit(const TexGenUnitProperties& unit)
{
    const unsigned generated = unit.coordinateMask & ((1u << s_coordinates) - 1);
    // The mode of a unit that generates nothing says nothing.
    const GLenum* mode = generated != 0 ? gltables::textureGenerationModes.find(unit.mode) : nullptr;
    const GLenum plane = mode ? planeName(*mode) : GL_NONE;
    for (unsigned c = 0; c < s_coordinates; ++c)
    {
        if ((generated & (1u << c)) == 0)
        {
            glDisable(GL_TEXTURE_GEN_S + c);
            continue;
        }
        if (!mode)
        {
            continue;
        }
        glEnable(GL_TEXTURE_GEN_S + c);
        glTexGeni(GL_S + c, GL_TEXTURE_GEN_MODE, static_cast<GLint>(*mode));
        if (plane != GL_NONE)
        {
            glTexGenfv(GL_S + c, plane, unit.planes[c]);
        }
    }
}

GLenum validEnvironmentMode(GLenum mode)
{
    switch (mode)
    {
    case GL_ADD:
    case GL_BLEND:
    case GL_REPLACE:
    case GL_MODULATE:
    case GL_DECAL:
    case GL_COMBINE:
        return mode;
    default:
        spdlog::warn("Invalid texture model, falling back to REPLACE");
        return GL_REPLACE;
    }
}

} // namespace

void StateGL::applyState(const TransformPart1Properties& transformPart1,
                         const TransformPart2Properties& transformPart2) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState Transform");
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(transformPart2.projection.getValue());
    // Downwards, so that unit 0 is the active one at the end.
    for (unsigned i = s_textureUnits; i-- > 0;)
    {
        glActiveTexture(GL_TEXTURE0 + i);
        glMatrixMode(GL_TEXTURE);
        glLoadMatrixf(transformPart1.textureMatrices[i].getValue());
    }
    glMatrixMode(GL_MODELVIEW);
    const SbMatrix modelView = transformPart1.model * transformPart2.view;
    glLoadMatrixf(modelView.getValue());
}

void StateGL::applyState(const MaterialProperties& material, const LightingFlags& lightingFlags,
                         const LightProperties& lights) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState Material");
    glColor4fv(material.diffuse.front.getValue());
    if (!lightingFlags.lighting)
    {
        glDisable(GL_LIGHTING);
        return;
    }
    glEnable(GL_LIGHTING);
    glEnable(GL_NORMALIZE);
    glShadeModel(material.flatShading ? GL_FLAT : GL_SMOOTH);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, material.lightModelAmbient.getValue());
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, material.localViewer);
    glMatrixMode(GL_MODELVIEW);
    for (unsigned i = 0; i < s_lights; ++i)
    {
        applyLight(i, lights);
    }
    applyMaterial(
        GL_FRONT, material, [](const auto& faces) -> const auto& { return faces.front; });
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, lightingFlags.twoSided ? 1 : 0);
    if (lightingFlags.twoSided)
    {
        applyMaterial(
            GL_BACK, material, [](const auto& faces) -> const auto& { return faces.back; });
    }
}

void StateGL::applyState(const MaterialProperties& material, const LightingFlags& lightingFlags) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState Material");
    if (material.setColor)
    {
        glColor4fv(material.diffuse.front.getValue());
    }
    if (lightingFlags.lighting)
    {
        glShadeModel(material.flatShading ? GL_FLAT : GL_SMOOTH);
    }
}

void StateGL::applyState(const TexGenProperties& texGen) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState TexGen");
    for (unsigned i = 0; i < s_textureUnits; ++i)
    {
        glActiveTexture(GL_TEXTURE0 + i);
        applyTexGenUnit(texGen.units[i]);
        glActiveTextureARB(GL_TEXTURE0);
    }
    glActiveTexture(GL_TEXTURE0);
}

void StateGL::applyState(const TexEnvProperties& texEnv) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState TexEnv");
    for (unsigned i = 0; i < s_environmentUnits; ++i)
    {
        if ((texEnv.unitMask & (1u << i)) != 0)
        {
            glActiveTexture(GL_TEXTURE0 + i);
            glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, static_cast<GLint>(validEnvironmentMode(texEnv.modes[i])));
        }
    }
    glActiveTexture(GL_TEXTURE0);
}

} // namespace renderengine
