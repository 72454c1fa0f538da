#include "CallText.h"

#include "EnumerantNames.h"

#include <glbinding/GLEnums.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace renderengine::glbinding
{
namespace
{
constexpr std::int64_t mostElements = 64;
// Offsets into a bound buffer pass as pointers; no memory of a process lies this low.
constexpr std::uintptr_t firstAddress = 65536 * 16;

// What surrounds the value that is being printed.
struct Place
{
    const ParameterInfo& info;
    // Value of the call's parameter "pname", if it has one.
    std::int64_t parameterName;
    // The lengths of the strings of an array of strings; null when they end in null.
    const GLint* stringLengths;
};

template <class Real> std::string shortest(Real value, int mostDigits)
{
    char text[40];
    for (int digits = 1; digits <= mostDigits; ++digits)
    {
        std::snprintf(text, sizeof(text), "%.*g", digits, static_cast<double>(value));
        if (static_cast<Real>(std::strtod(text, nullptr)) == value)
        {
            break;
        }
    }
    return text;
}

std::string quoted(const char* text, std::int64_t length)
{
    if (text == nullptr)
    {
        return "null";
    }
    const std::size_t size = length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
    std::string result = "\"";
    for (const char* c = text; c != text + size; ++c)
    {
        if (*c == '\n')
        {
            result += "\\n";
            continue;
        }
        if (*c == '"' || *c == '\\')
        {
            result += '\\';
        }
        result += *c;
    }
    return result + '"';
}

std::string address(const void* pointer)
{
    const auto number = reinterpret_cast<std::uintptr_t>(pointer);
    if (number == 0)
    {
        return "null";
    }
    return number < firstAddress ? std::to_string(number) : "<pointer>";
}

std::string parameterReal(double value, std::int64_t parameterName)
{
    if (!(value >= 0.0 && value <= 4294967295.0))
    {
        return shortest(static_cast<float>(value), 9); // no enumerant, and perhaps no integer
    }
    const auto whole = static_cast<std::int64_t>(value);
    std::string name = parameterValueName(whole, parameterName);
    const bool isName = static_cast<double>(whole) == value && name.compare(0, 3, "GL_") == 0;
    return isName ? name : shortest(static_cast<float>(value), 9);
}

std::string valueText(const CallValue& value, const Place& place)
{
    const auto bits = static_cast<std::uint64_t>(value.integer);
    switch (place.info.kind)
    {
    case ValueKind::Boolean:
        return bits == GL_FALSE ? "GL_FALSE" : bits == GL_TRUE ? "GL_TRUE" : std::to_string(bits);
    case ValueKind::Bitfield:
        return bitNames(bits & 0xFFFFFFFFu, place.info.group);
    case ValueKind::Enum:
        return enumerantName(bits & 0xFFFFFFFFu, place.info.group);
    case ValueKind::Double:
        return shortest(value.real, 17);
    case ValueKind::Float:
        return shortest(static_cast<float>(value.real), 9);
    case ValueKind::ParameterFloat:
        return parameterReal(value.real, place.parameterName);
    case ValueKind::ParameterInt32:
    case ValueKind::ParameterUInt32:
        return parameterValueName(value.integer, place.parameterName);
    case ValueKind::Sync:
        return value.pointer == nullptr ? "null" : "<sync " + std::to_string(bits) + ">";
    case ValueKind::UInt64:
        return std::to_string(bits);
    case ValueKind::Pointer:
    case ValueKind::Text:
        return address(value.pointer);
    default:
        return std::to_string(value.integer);
    }
}

template <class Element> CallValue readElement(const void* array, std::int64_t index)
{
    Element element;
    std::memcpy(&element, static_cast<const Element*>(array) + index, sizeof(Element));
    return packValue(element);
}

CallValue elementOf(const void* array, std::int64_t index, ValueKind kind)
{
    switch (kind)
    {
    case ValueKind::Boolean:
    case ValueKind::UInt8:
        return readElement<GLubyte>(array, index);
    case ValueKind::Int8:
    case ValueKind::Text:
        return readElement<GLbyte>(array, index);
    case ValueKind::Int16:
        return readElement<GLshort>(array, index);
    case ValueKind::UInt16:
        return readElement<GLushort>(array, index);
    case ValueKind::Int32:
    case ValueKind::ParameterInt32:
        return readElement<GLint>(array, index);
    case ValueKind::Int64:
        return readElement<GLint64>(array, index);
    case ValueKind::UInt64:
        return readElement<GLuint64>(array, index);
    case ValueKind::Float:
    case ValueKind::ParameterFloat:
        return readElement<GLfloat>(array, index);
    case ValueKind::Double:
        return readElement<GLdouble>(array, index);
    case ValueKind::Pointer:
    case ValueKind::Sync:
        return readElement<const void*>(array, index);
    default:
        return readElement<GLuint>(array, index);
    }
}

// The number of elements, or -1 where the call does not tell it.
std::int64_t lengthOf(const ParameterInfo& info, const CallValue* values)
{
    switch (info.length)
    {
    case Length::Constant:
        return info.factor;
    case Length::Counted:
        return values[info.place].integer * info.factor;
    case Length::ByEnumerant:
        return elementsFor(values[info.place].integer);
    default:
        return -1;
    }
}

std::string arrayText(const void* array, std::int64_t length, const Place& place)
{
    std::string text = "{";
    for (std::int64_t index = 0; index < std::min(length, mostElements); ++index)
    {
        text += index == 0 ? "" : ", ";
        if (place.info.kind == ValueKind::Text)
        {
            const std::int64_t size = place.stringLengths != nullptr ? place.stringLengths[index] : -1;
            text += quoted(static_cast<const char* const*>(array)[index], size);
            continue;
        }
        text += valueText(elementOf(array, index, place.info.kind), place);
    }
    return text + (length > mostElements ? ", ...}" : "}");
}

std::string namesText(const void* array, std::int64_t length, const Place& place)
{
    if (length == 1)
    {
        return "-> " + valueText(elementOf(array, 0, place.info.kind), place);
    }
    return "-> " + arrayText(array, length, place);
}

std::string argumentText(const CallValue& value, std::int64_t length, const Place& place)
{
    if (place.info.passing == Passing::Value)
    {
        return valueText(value, place);
    }
    if (value.pointer == nullptr)
    {
        return "null";
    }
    const bool isText = place.info.kind == ValueKind::Text;
    const bool isData = place.info.kind == ValueKind::Pointer;
    switch (place.info.passing)
    {
    case Passing::Names:
        return namesText(value.pointer, length, place);
    case Passing::In:
        if (isText)
        {
            return quoted(static_cast<const char*>(value.pointer), length);
        }
        return isData || length < 0 ? address(value.pointer) : arrayText(value.pointer, length, place);
    case Passing::Ins:
        return length < 0 ? address(value.pointer) : arrayText(value.pointer, length, place);
    default:
        return address(value.pointer);
    }
}

// An array of lengths stands directly behind the array of strings that it belongs to.
const GLint* stringLengthsOf(std::size_t parameter, std::size_t first, std::size_t last, const CallValue* values)
{
    const ParameterInfo& info = parameterTable[parameter];
    if (info.kind != ValueKind::Text || info.passing != Passing::Ins || parameter + 1 == last)
    {
        return nullptr;
    }
    const ParameterInfo& next = parameterTable[parameter + 1];
    const bool isLengths = next.kind == ValueKind::Int32 && next.passing == Passing::In && next.place == info.place;
    return isLengths ? static_cast<const GLint*>(values[parameter + 1 - first].pointer) : nullptr;
}

std::int64_t parameterNameOf(std::size_t first, std::size_t last, const CallValue* values)
{
    // The parameter that the value belongs to stands directly before it.
    for (std::size_t index = first + 1; index < last; ++index)
    {
        const ValueKind kind = parameterTable[index].kind;
        if (kind == ValueKind::ParameterInt32 || kind == ValueKind::ParameterUInt32 ||
            kind == ValueKind::ParameterFloat)
        {
            return values[index - first - 1].integer;
        }
    }
    return 0;
}
} // namespace

std::string callText(FunctionIndex function, const CallValue* values)
{
    const auto index = static_cast<std::size_t>(function);
    const std::size_t first = firstParameter[index];
    const std::size_t last = firstParameter[index + 1];
    const std::int64_t parameterName = parameterNameOf(first, last, values);
    std::string text = functionTable[index].name;
    text += '(';
    for (std::size_t parameter = first; parameter < last; ++parameter)
    {
        const ParameterInfo& info = parameterTable[parameter];
        text += parameter == first ? "" : ", ";
        const Place place{info, parameterName, stringLengthsOf(parameter, first, last, values)};
        text += argumentText(values[parameter - first], lengthOf(info, values), place);
    }
    return text + ')';
}

std::int64_t elementsFor(std::int64_t enumerant)
{
    switch (enumerant)
    {
    case GL_AMBIENT:
    case GL_DIFFUSE:
    case GL_SPECULAR:
    case GL_EMISSION:
    case GL_AMBIENT_AND_DIFFUSE:
    case GL_POSITION:
    case GL_LIGHT_MODEL_AMBIENT:
    case GL_TEXTURE_BORDER_COLOR:
    case GL_TEXTURE_SWIZZLE_RGBA:
    case GL_TEXTURE_ENV_COLOR:
    case GL_OBJECT_PLANE:
    case GL_EYE_PLANE:
    case GL_FOG_COLOR:
    case GL_COLOR:
    case GL_PATCH_DEFAULT_OUTER_LEVEL:
        return 4;
    case GL_SPOT_DIRECTION:
    case GL_COLOR_INDEXES:
    case GL_POINT_DISTANCE_ATTENUATION:
        return 3;
    case GL_PATCH_DEFAULT_INNER_LEVEL:
        return 2;
    default:
        return 1;
    }
}
} // namespace renderengine::glbinding
