#pragma once

#include "CallTable.h"

#include <cstdint>
#include <string>
#include <type_traits>

namespace renderengine::glbinding
{
/// One argument of a call, without its type, which the call's ParameterInfo tells.
union CallValue
{
    std::int64_t integer;
    double real;
    const void* pointer;
};

template <class Type> CallValue packValue(Type argument)
{
    CallValue value{};
    if constexpr (std::is_floating_point_v<Type>)
    {
        value.real = static_cast<double>(argument);
    }
    else if constexpr (std::is_pointer_v<Type>)
    {
        value.pointer = reinterpret_cast<const void*>(argument);
    }
    else
    {
        value.integer = static_cast<std::int64_t>(argument);
    }
    return value;
}

/// The call as text, in the forms that RecordingGL describes. Reads the arrays and strings that the arguments lead to.
std::string callText(FunctionIndex function, const CallValue* values);

/// How many elements a call reads or writes for this enumerant: 4 for GL_AMBIENT or GL_COLOR, 1 for most.
std::int64_t elementsFor(std::int64_t enumerant);
} // namespace renderengine::glbinding
