#include "Info.h"

#include <glbinding/client.h>
#include <kavelor/SoPreferences.h>
#include <renderengine/renderengine.h>

#include <algorithm>
#include <iomanip>
#include <ios>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace viewer
{

namespace
{

std::string textOr(const SbString& text, const char* none)
{
    return text.isEmpty() ? std::string(none) : text.toStdString();
}

const char* profileName(int32_t mask)
{
    constexpr int32_t coreBit = 1;
    constexpr int32_t compatibilityBit = 2;
    if ((mask & coreBit) != 0)
        return "core";
    return (mask & compatibilityBit) != 0 ? "compatibility" : "none";
}

template <typename Vector> std::string joined(const Vector& values, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "" : " x ") + std::to_string(values[static_cast<std::size_t>(i)]);
    return text;
}

const char* sourceName(SoPreferences::Source source)
{
    switch (source)
    {
    case SoPreferences::Source::Environment:
        return "environment";
    case SoPreferences::Source::Program:
        return "program";
    case SoPreferences::Source::Default:
        break;
    }
    return "default";
}

// The engine asks for most of its settings when it first needs them. Asking here lists them all.
void askForAllSettings()
{
    for (const char* name : {"KVR_RENDERENGINE_MULTITHREAD", "KVR_RENDERENGINE_DIFFERENTIAL_STATE",
                             "KVR_RENDERENGINE_ENABLE_POINT_SPRITE", "KVR_RENDERENGINE_ENABLE_PRIMITIVES_MERGING",
                             "KVR_ENABLE_SHADER_BUFFERS_MERGING", "KVR_SHADER_BUFFERS_MERGING_USE_UBO"})
    {
        SoPreferences::getBool(name, true);
    }
    for (const char* name :
         {"KVR_OPENGL_DEBUG", "KVR_DEBUG_GROUP", "KVR_RENDERENGINE_USE_GLCORE", "KVR_RENDERENGINE_GLDEBUG_GROUP",
          "KVR_RENDERENGINE_EXPLAIN_MERGING", "KVR_RENDERENGINE_CHECK_FRAMEBUFFER", "KVR_GLSL_DEBUG",
          "KVR_PFD_SUPPORT_GDI", "KVR_PFD_SUPPORT_COMPOSITION"})
    {
        SoPreferences::getBool(name, false);
    }
    for (const char* name : {"KVR_RENDERENGINE_MAX_SHADER_COMPILER_THREADS", "KVR_OPENGL_DEBUG_VERBOSE_LEVEL",
                             "KVR_RENDERENGINE_LOG_TYPE"})
    {
        SoPreferences::getInt(name, 0);
    }
    SoPreferences::getInt("KVR_USE_FENCE", 1);
    SoPreferences::getString("KVR_RENDERENGINE_RENDERER", "GL");
    SoPreferences::getString("KVR_RENDERENGINE_LOG_LEVEL", "WARNING");
}

void printSettings(std::ostream& out)
{
    askForAllSettings();
    out << "\nSettings\n  " << std::left << std::setw(50) << "name" << std::setw(12) << "value" << std::setw(12)
        << "default"
        << "set by\n";
    for (const SoPreferences::AskedKey& key : SoPreferences::getAskedKeys())
        out << "  " << std::setw(50) << key.name.toStdString() << std::setw(12) << textOr(key.value, "(empty)")
            << std::setw(12) << textOr(key.defaultValue, "(empty)") << sourceName(key.source) << '\n';
}

// What the engine looks at, and what decides which drivers can be told apart.
constexpr const char* c_extensions[] = {"GL_ARB_buffer_storage",
                                        "GL_ARB_multi_draw_indirect",
                                        "GL_ARB_parallel_shader_compile",
                                        "GL_ARB_shader_draw_parameters",
                                        "GL_ARB_texture_compression_rgtc",
                                        "GL_ARB_texture_filter_anisotropic",
                                        "GL_EXT_texture_compression_latc",
                                        "GL_EXT_texture_compression_s3tc",
                                        "GL_EXT_texture_filter_anisotropic",
                                        "GL_KHR_debug",
                                        "GL_KHR_parallel_shader_compile",
                                        "GL_NVX_gpu_memory_info",
                                        "GL_NV_shader_atomic_int64"};

/// Asks the device, with the engine's context current.
struct DeviceQuestions final : renderengine::TaskInterface
{
    void run() override
    {
        version = text(glGetString(GL_VERSION));
        vendor = text(glGetString(GL_VENDOR));
        GLint count = 0;
        glGetIntegerv(GL_NUM_EXTENSIONS, &count);
        for (GLint i = 0; i < count; ++i)
            extensions.push_back(text(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i))));
    }

    static std::string text(const GLubyte* bytes) { return bytes ? reinterpret_cast<const char*>(bytes) : "(none)"; }

    std::string version;
    std::string vendor;
    std::vector<std::string> extensions;
};

void printDeviceTexts(std::ostream& out, const DeviceQuestions& device)
{
    if (device.version.empty())
    {
        out << "\nDriver\n  not asked: this renderer runs nothing on the device\n";
        return;
    }
    out << "\nDriver\n";
    out << "  vendor:  " << device.vendor << "\n  version: " << device.version << '\n';
    out << "\nExtensions of interest\n";
    for (const char* name : c_extensions)
    {
        const bool isThere =
            std::find(device.extensions.begin(), device.extensions.end(), name) != device.extensions.end();
        out << "  " << std::left << std::setw(38) << name << (isThere ? "yes" : "no") << '\n';
    }
    out << "  of " << device.extensions.size() << " in all\n";
}

} // namespace

void printInfo(std::ostream& out, renderengine::ContextInterface& context, const std::vector<std::string>& platform)
{
    const renderengine::ContextInfo& info = context.getContextInfo();
    const auto device = std::make_shared<DeviceQuestions>();
    renderengine::TaskProperties task;
    task.task = device;
    context.addTask(task);
    context.execute(true);

    out << "Platform\n";
    for (const std::string& line : platform)
        out << "  " << line << '\n';
    out << '\n';

    const auto row = [&out](const char* label, const std::string& value)
    { out << "  " << std::left << std::setw(34) << label << value << '\n'; };
    const auto number = [](int32_t value) { return std::to_string(value); };
    const auto flag = [](bool value) { return std::string(value ? "yes" : "no"); };

    out << "Device\n";
    row("renderer", textOr(info.renderer, "(unknown)"));
    row("vendor tag", textOr(info.vendor, "(none)"));
    row("OpenGL version", number(info.version / 100) + "." + number(info.version / 10 % 10));
    row("profile", profileName(info.profile));
    row("shading language", number(info.shadingLanguageVersion));

    printDeviceTexts(out, *device);

    out << "\nFeatures\n";
    row("double precision", flag(info.hasDoublePrecision));
    row("atomic counters", flag(info.hasAtomicCounters));
    row("64-bit atomics", flag(info.hasAtomicInt64));
    row("image load and store", flag(info.hasImageLoadStore));
    row("shading language 4.20 pack", flag(info.hasShadingLanguage420Pack));
    row("compression S3TC, LATC, RGTC",
        flag(info.hasCompressionS3tc) + ", " + flag(info.hasCompressionLatc) + ", " + flag(info.hasCompressionRgtc));
    row("memory information", flag(info.hasMemoryInfo));

    out << "\nLimits\n";
    row("texture size", number(info.maxTextureSize) + " pixels");
    row("3D texture size", number(info.max3DTextureSize) + " pixels");
    row("viewport", joined(info.maxViewportDims, 2) + " pixels");
    row("vertex attributes", number(info.maxVertexAttribs));
    row("uniform block", number(info.maxUniformBlockSize) + " bytes");
    row("compute work groups", joined(info.maxComputeWorkGroupCount, 3));
    row("compute work-group size", joined(info.maxComputeWorkGroupSize, 3));
    row("compute work-group invocations", number(info.maxComputeWorkGroupInvocations));

    printSettings(out);
}

} // namespace viewer
