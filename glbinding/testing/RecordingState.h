#pragma once

#include "BufferStore.h"
#include "ContextValues.h"
#include "ObjectNames.h"
#include "ProgramStore.h"

#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace renderengine::glbinding
{
/// What stands behind a RecordingGL: takes each call, answers it and keeps its text.
class RecordingState
{
public:
    RecordingState();

    /// Sets what the context tells and what the table's own fields say.
    void setVersion(int major, int minor);
    void setExtensions(const std::vector<std::string>& extensions);

    /// Answers and records a call; the result is what the function returns, as bits. Any thread.
    std::uint64_t invoke(FunctionIndex function, const CallValue* values);

    /// Throws std::invalid_argument for a name that is no GL function.
    static FunctionIndex functionNamed(const std::string& name);

    /// The recording's entries with this context's version and extensions.
    GLEWContextStruct table;

    // Guards all below against calls of several threads.
    std::mutex mutex;
    std::vector<std::string> calls;
    bool recording = true;
    ObjectNames names;
    ContextValues context;
    BufferStore buffers;
    ProgramStore programs;
    // Calls that are still to fail.
    std::map<FunctionIndex, std::size_t> failures;
    std::map<FunctionIndex, std::deque<std::int64_t>> returns;
    std::deque<GLenum> errors;
    GLDEBUGPROC debugCallback = nullptr;
    const void* debugUserParam = nullptr;

private:
    bool takeFailure(FunctionIndex function);
    std::uint64_t failedResult(FunctionIndex function, const CallValue* values);
    std::uint64_t answer(FunctionIndex function, const CallValue* values);
    std::optional<std::uint64_t> answerPreset(FunctionIndex function, const CallValue* values);
    std::uint64_t answerRest(FunctionIndex function, const CallValue* values);
    void record(FunctionIndex function, const CallValue* values, std::uint64_t result);
};
} // namespace renderengine::glbinding
