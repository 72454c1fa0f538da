#include "FunctionTable.h"

#include <glbinding/CurrentTable.h>

namespace renderengine::glbinding
{
namespace
{
// One stub a signature: it knows no more than what to return.
template <class Pointer> struct SilentStub;

template <class Result, class... Arguments> struct SilentStub<Result(GLAPIENTRY*)(Arguments...)>
{
    static Result GLAPIENTRY call(Arguments...) { return Result(); }
};
} // namespace

const GLEWContextStruct g_silentTable = {
#define GLBINDING_FUNCTION(name) &SilentStub<decltype(GLEWContextStruct::kvr_common__glew##name)>::call,
#include "generated/FunctionList.inc"
#undef GLBINDING_FUNCTION
};

const WGLEWContextStruct g_silentWGLTable = {
#define WGLBINDING_FUNCTION(name) &SilentStub<decltype(WGLEWContextStruct::kvr_common__wglew##name)>::call,
#include "generated/FunctionList.inc"
#undef WGLBINDING_FUNCTION
};
} // namespace renderengine::glbinding
