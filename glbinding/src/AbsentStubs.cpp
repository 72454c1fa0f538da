#include "FunctionTable.h"

#include <kavelor/SoError.h>

#include <atomic>

namespace renderengine::glbinding
{
namespace
{
// Version of the context that lacks the function, major x 10 + minor, and whether its absence was reported.
std::atomic<std::uint8_t> s_absentVersion[functionCount];
std::atomic<bool> s_reported[functionCount];

void reportAbsent(FunctionIndex function)
{
    const auto index = static_cast<std::size_t>(function);
    if (s_reported[index].exchange(true, std::memory_order_relaxed))
    {
        return;
    }
    const char* name = functionTable[index].name;
    const int version = s_absentVersion[index].load(std::memory_order_relaxed);
    SoDebugError::post(name, "%s is not available in this OpenGL context (version %d.%d).", name, version / 10,
                       version % 10);
}

template <FunctionIndex Function, class Pointer> struct AbsentStub;

template <FunctionIndex Function, class Result, class... Arguments>
struct AbsentStub<Function, Result(GLAPIENTRY*)(Arguments...)>
{
    static Result GLAPIENTRY call(Arguments...)
    {
        reportAbsent(Function);
        return Result();
    }
};
} // namespace

const GLEWContextStruct g_absentTable = {
#define GLBINDING_FUNCTION(name) \
    &AbsentStub<FunctionIndex::name, decltype(GLEWContextStruct::kvr_common__glew##name)>::call,
#include "generated/FunctionList.inc"
#undef GLBINDING_FUNCTION
};

void noteAbsent(std::size_t function, int majorVersion, int minorVersion)
{
    s_absentVersion[function].store(static_cast<std::uint8_t>(majorVersion * 10 + minorVersion),
                                    std::memory_order_relaxed);
}
} // namespace renderengine::glbinding
