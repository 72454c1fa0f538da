#include "RecordingEntries.h"
#include "RecordingState.h"

#include <glbinding/GLEnums.h>
#include <glbinding/RecordingGL.h>

#include <atomic>
#include <utility>

namespace renderengine::glbinding
{
namespace
{
thread_local RecordingState* t_state = nullptr;
// Serves the threads without a state of their own.
std::atomic<RecordingState*> s_common{nullptr};

RecordingState* currentState()
{
    return t_state != nullptr ? t_state : s_common.load(std::memory_order_acquire);
}

bool startsWith(const std::string& text, const std::string& prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}
} // namespace

std::uint64_t recordCall(FunctionIndex function, const CallValue* values)
{
    RecordingState* state = currentState();
    return state != nullptr ? state->invoke(function, values) : 0;
}

RecordingGL::Attach::Attach(RecordingGL& recording)
    : m_previous(std::exchange(t_state, recording.m_state.get())), m_scope(&recording.m_state->table)
{
}

RecordingGL::Attach::~Attach()
{
    t_state = m_previous;
}

RecordingGL::RecordingGL() : m_state(std::make_unique<RecordingState>()), m_attach(*this) {}

RecordingGL::~RecordingGL()
{
    RecordingState* own = m_state.get();
    s_common.compare_exchange_strong(own, nullptr);
}

const GLEWContextStruct* RecordingGL::table()
{
    const RecordingState* state = currentState();
    return state != nullptr ? &state->table : nullptr;
}

void RecordingGL::serveAllThreads()
{
    s_common.store(m_state.get(), std::memory_order_release);
}

const std::vector<std::string>& RecordingGL::calls() const
{
    return m_state->calls;
}

std::vector<std::string> RecordingGL::takeCalls()
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return std::exchange(m_state->calls, {});
}

void RecordingGL::clear()
{
    takeCalls();
}

std::vector<std::string> RecordingGL::callsMatching(const std::string& prefix) const
{
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    std::vector<std::string> matching;
    for (const std::string& call : m_state->calls)
    {
        if (startsWith(call, prefix))
        {
            matching.push_back(call);
        }
    }
    return matching;
}

std::size_t RecordingGL::countOf(const std::string& prefix) const
{
    return callsMatching(prefix).size();
}

void RecordingGL::setRecording(bool recording)
{
    m_state->recording = recording;
}

void RecordingGL::answer(GLenum pname, const std::vector<std::int64_t>& values)
{
    m_state->context.answer(pname, Numbers(values.begin(), values.end()));
}

void RecordingGL::answer(GLenum pname, double value)
{
    m_state->context.answer(pname, {Number::fromReal(value)});
}

void RecordingGL::answerReturn(const std::string& function, std::int64_t value)
{
    answerReturn(function, std::vector<std::int64_t>{value});
}

void RecordingGL::answerReturn(const std::string& function, const std::vector<std::int64_t>& values)
{
    const FunctionIndex index = RecordingState::functionNamed(function);
    if (values.empty())
    {
        m_state->returns.erase(index);
        return;
    }
    m_state->returns[index].assign(values.begin(), values.end());
}

void RecordingGL::answerString(GLenum name, const std::string& value)
{
    m_state->context.setString(name, value);
}

void RecordingGL::setInfoLog(const std::string& text)
{
    m_state->programs.setInfoLog(text);
}

void RecordingGL::setVersion(int major, int minor)
{
    m_state->setVersion(major, minor);
}

void RecordingGL::setExtensions(const std::vector<std::string>& extensions)
{
    m_state->setExtensions(extensions);
}

void RecordingGL::setReflection(const ShaderReflection& reflection)
{
    m_state->programs.setReflection(reflection);
}

void RecordingGL::setReflection(GLuint program, const ShaderReflection& reflection)
{
    m_state->programs.setReflection(program, reflection);
}

void RecordingGL::fail(const std::string& function, std::size_t times)
{
    const FunctionIndex index = RecordingState::functionNamed(function);
    if (times == 0)
    {
        m_state->failures.erase(index);
        return;
    }
    m_state->failures[index] = times;
}

void RecordingGL::succeed(const std::string& function)
{
    fail(function, 0);
}

void RecordingGL::pushError(GLenum error)
{
    m_state->errors.push_back(error);
}

std::size_t RecordingGL::made(const std::string& kind) const
{
    return m_state->names.made(ObjectNames::kindOf(kind));
}

std::size_t RecordingGL::deleted(const std::string& kind) const
{
    return m_state->names.deleted(ObjectNames::kindOf(kind));
}

std::size_t RecordingGL::live(const std::string& kind) const
{
    return m_state->names.live(ObjectNames::kindOf(kind));
}

std::vector<std::string> RecordingGL::liveObjects() const
{
    return m_state->names.liveObjects();
}

std::vector<std::byte> RecordingGL::bufferContent(GLuint buffer) const
{
    return m_state->buffers.content(buffer);
}

std::uint64_t RecordingGL::uploadedBytes() const
{
    return m_state->buffers.uploadedBytes();
}

std::string RecordingGL::shaderSource(GLuint shader) const
{
    return m_state->programs.source(shader);
}

bool RecordingGL::postDebugMessage(GLenum source, GLenum type, GLuint id, GLenum severity, const std::string& message)
{
    const GLDEBUGPROC callback = m_state->debugCallback;
    if (callback == nullptr)
    {
        return false;
    }
    callback(source, type, id, severity, static_cast<GLsizei>(message.size()), message.c_str(),
             m_state->debugUserParam);
    return true;
}
} // namespace renderengine::glbinding
