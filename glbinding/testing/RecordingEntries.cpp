#include "RecordingEntries.h"

namespace renderengine::glbinding
{
namespace
{
template <FunctionIndex Function, class Pointer> struct RecordingEntry;

template <FunctionIndex Function, class Result, class... Arguments>
struct RecordingEntry<Function, Result(GLAPIENTRY*)(Arguments...)>
{
    static Result GLAPIENTRY call(Arguments... arguments)
    {
        // One more than there are, since an array has at least one element.
        const CallValue values[sizeof...(Arguments) + 1] = {packValue(arguments)...};
        [[maybe_unused]] const std::uint64_t result = recordCall(Function, values);
        if constexpr (std::is_pointer_v<Result>)
        {
            return reinterpret_cast<Result>(static_cast<std::uintptr_t>(result));
        }
        else if constexpr (!std::is_void_v<Result>)
        {
            return static_cast<Result>(result);
        }
    }
};
} // namespace

const GLEWContextStruct g_recordingTable = {
#define GLBINDING_FUNCTION(name) \
    &RecordingEntry<FunctionIndex::name, decltype(GLEWContextStruct::kvr_common__glew##name)>::call,
#include "generated/FunctionList.inc"
#undef GLBINDING_FUNCTION
};
} // namespace renderengine::glbinding
