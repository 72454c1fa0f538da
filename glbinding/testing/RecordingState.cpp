#include "RecordingState.h"

#include "RecordingEntries.h"

#include <glbinding/GLEnums.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace renderengine::glbinding
{
namespace
{
bool startsWith(const char* text, const char* prefix)
{
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

bool endsWith(const std::string& text, const std::string& ending)
{
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

const char* nameOf(FunctionIndex function)
{
    return functionTable[static_cast<std::size_t>(function)].name;
}

bool isQuery(FunctionIndex function)
{
    return startsWith(nameOf(function), "glGet");
}

// The last enumerant that a query names, which is what it asks for.
GLenum questionOf(FunctionIndex function, const CallValue* values)
{
    const auto index = static_cast<std::size_t>(function);
    for (std::size_t parameter = firstParameter[index + 1]; parameter-- > firstParameter[index];)
    {
        const ParameterInfo& info = parameterTable[parameter];
        if (info.kind == ValueKind::Enum && info.passing == Passing::Value)
        {
            return static_cast<GLenum>(values[parameter - firstParameter[index]].integer);
        }
    }
    return 0;
}

void zeroMadeNames(FunctionIndex function, const CallValue* values)
{
    const auto index = static_cast<std::size_t>(function);
    const std::size_t last = firstParameter[index + 1] - 1u;
    if (firstParameter[index] > last || parameterTable[last].passing != Passing::Names)
    {
        return;
    }
    const std::int64_t count = values[parameterTable[last].place].integer;
    const Numbers zeros(count > 0 ? static_cast<std::size_t>(count) : 0, Number(0));
    writeLast(function, values, zeros);
}
} // namespace

FunctionIndex RecordingState::functionNamed(const std::string& name)
{
    for (std::size_t index = 0; index < functionCount; ++index)
    {
        if (name == functionTable[index].name)
        {
            return static_cast<FunctionIndex>(index);
        }
    }
    throw std::invalid_argument("There is no GL function named " + name + ".");
}

RecordingState::RecordingState() : table(g_recordingTable)
{
    setVersion(4, 6);
    std::vector<std::string> extensions = {"GL_ARB_compatibility"};
    for (const ExtensionInfo<GLEWContextStruct>& extension : extensionTable)
    {
        extensions.push_back(extension.name);
    }
    setExtensions(extensions);
}

void RecordingState::setVersion(int major, int minor)
{
    table.majorVersion = major;
    table.minorVersion = minor;
    context.setVersion(major, minor);
}

void RecordingState::setExtensions(const std::vector<std::string>& extensions)
{
    for (const ExtensionInfo<GLEWContextStruct>& extension : extensionTable)
    {
        table.*extension.flag = std::find(extensions.begin(), extensions.end(), extension.name) != extensions.end();
    }
    context.setExtensions(extensions);
}

std::uint64_t RecordingState::invoke(FunctionIndex function, const CallValue* values)
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::uint64_t result = takeFailure(function) ? failedResult(function, values) : answer(function, values);
    if (const auto found = returns.find(function); found != returns.end())
    {
        result = static_cast<std::uint64_t>(found->second.front());
        if (found->second.size() > 1)
        {
            found->second.pop_front();
        }
    }
    if (recording)
    {
        record(function, values, result);
    }
    return result;
}

bool RecordingState::takeFailure(FunctionIndex function)
{
    const auto found = failures.find(function);
    if (found == failures.end())
    {
        return false;
    }
    if (--found->second == 0)
    {
        failures.erase(found);
    }
    return true;
}

std::uint64_t RecordingState::failedResult(FunctionIndex function, const CallValue* values)
{
    switch (function)
    {
    case FunctionIndex::CheckFramebufferStatus:
    case FunctionIndex::CheckNamedFramebufferStatus:
        return GL_FRAMEBUFFER_UNSUPPORTED;
    case FunctionIndex::ClientWaitSync:
        return GL_WAIT_FAILED;
    case FunctionIndex::CompileShader:
        programs.compile(static_cast<GLuint>(values[0].integer), false);
        return 0;
    case FunctionIndex::LinkProgram:
        programs.link(static_cast<GLuint>(values[0].integer), false);
        return 0;
    case FunctionIndex::UnmapBuffer:
        buffers.call(function, values, context);
        return GL_FALSE;
    default:
        break;
    }
    zeroMadeNames(function, values);
    if (!isQuery(function))
    {
        return 0;
    }
    writeZeros(function, values);
    const bool isLocation = endsWith(nameOf(function), "Location");
    const bool isIndex = endsWith(nameOf(function), "Index");
    return isLocation ? ~std::uint64_t{0} : isIndex ? GL_INVALID_INDEX : 0;
}

std::uint64_t RecordingState::answer(FunctionIndex function, const CallValue* values)
{
    if (const auto result = names.call(function, values))
    {
        for (const DeletedObject& object : names.lastDeleted())
        {
            context.forget(object);
            if (object.kind == ObjectKind::Buffer)
            {
                buffers.forget(object.name);
            }
        }
        if (function == FunctionIndex::CreateShader)
        {
            programs.addShader(static_cast<GLuint>(*result), static_cast<GLenum>(values[0].integer));
        }
        return *result;
    }
    if (const auto result = context.query(function, values))
    {
        return *result;
    }
    if (const auto result = answerPreset(function, values))
    {
        return *result;
    }
    if (const auto result = buffers.call(function, values, context))
    {
        return *result;
    }
    if (const auto result = programs.call(function, values))
    {
        return *result;
    }
    context.track(function, values);
    return answerRest(function, values);
}

std::optional<std::uint64_t> RecordingState::answerPreset(FunctionIndex function, const CallValue* values)
{
    // A list of properties is no single question.
    if (!isQuery(function) || function == FunctionIndex::GetProgramResourceiv)
    {
        return std::nullopt;
    }
    const auto index = static_cast<std::size_t>(function);
    const std::size_t parameterCount = firstParameter[index + 1] - firstParameter[index];
    if (parameterCount == 0 || parameterTable[firstParameter[index + 1] - 1].passing != Passing::Out)
    {
        return std::nullopt;
    }
    const Numbers* numbers = context.answered(questionOf(function, values));
    if (numbers == nullptr)
    {
        return std::nullopt;
    }
    writeLast(function, values, *numbers);
    return 0;
}

std::uint64_t RecordingState::answerRest(FunctionIndex function, const CallValue* values)
{
    switch (function)
    {
    case FunctionIndex::CheckFramebufferStatus:
    case FunctionIndex::CheckNamedFramebufferStatus:
        return GL_FRAMEBUFFER_COMPLETE;
    case FunctionIndex::ClientWaitSync:
        return GL_ALREADY_SIGNALED;
    case FunctionIndex::DebugMessageCallback:
    case FunctionIndex::DebugMessageCallbackARB:
        debugCallback = reinterpret_cast<GLDEBUGPROC>(const_cast<void*>(values[0].pointer));
        debugUserParam = values[1].pointer;
        return 0;
    case FunctionIndex::GetError:
    {
        const GLenum error = errors.empty() ? GL_NO_ERROR : errors.front();
        if (!errors.empty())
        {
            errors.pop_front();
        }
        return error;
    }
    case FunctionIndex::GetQueryObjectiv:
    case FunctionIndex::GetQueryObjectuiv:
    case FunctionIndex::GetQueryObjecti64v:
    case FunctionIndex::GetQueryObjectui64v:
        writeLast(function, values, {values[1].integer == GL_QUERY_RESULT_AVAILABLE ? 1 : 0});
        return 0;
    case FunctionIndex::GetSynciv:
        writeInt(values[3], 1);
        writeInt(values[4], values[1].integer == GL_SYNC_STATUS ? GL_SIGNALED : 0);
        return 0;
    default:
        break;
    }
    if (isQuery(function))
    {
        writeZeros(function, values);
    }
    return 0;
}

void RecordingState::record(FunctionIndex function, const CallValue* values, std::uint64_t result)
{
    std::string text = callText(function, values);
    switch (function)
    {
    case FunctionIndex::CreateProgram:
    case FunctionIndex::CreateShader:
    case FunctionIndex::CreateShaderProgramv:
    case FunctionIndex::FenceSync:
    case FunctionIndex::GenLists:
        text += " -> " + std::to_string(result);
        break;
    default:
        break;
    }
    calls.push_back(std::move(text));
}
} // namespace renderengine::glbinding
