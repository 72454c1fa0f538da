#include "CallOutput.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace renderengine::glbinding
{
namespace
{
template <class Element> void store(const void* output, std::size_t index, Element element)
{
    // Queries take their output as a pointer to something writable; CallValue has only dropped that from its type.
    std::memcpy(static_cast<Element*>(const_cast<void*>(output)) + index, &element, sizeof(Element));
}

void storeNumber(const void* output, std::size_t index, ValueKind kind, const Number& number)
{
    switch (kind)
    {
    case ValueKind::Boolean:
        store(output, index, static_cast<GLboolean>(number.integer != 0 || number.real != 0.0));
        break;
    case ValueKind::Double:
        store(output, index, static_cast<GLdouble>(number.real));
        break;
    case ValueKind::Float:
        store(output, index, static_cast<GLfloat>(number.real));
        break;
    case ValueKind::Int64:
    case ValueKind::UInt64:
        store(output, index, number.integer);
        break;
    case ValueKind::Pointer:
    case ValueKind::Sync:
    case ValueKind::Text:
        break;
    case ValueKind::Int16:
    case ValueKind::UInt16:
        store(output, index, static_cast<GLushort>(number.integer));
        break;
    case ValueKind::Int8:
    case ValueKind::UInt8:
        store(output, index, static_cast<GLubyte>(number.integer));
        break;
    default:
        store(output, index, static_cast<GLuint>(number.integer));
        break;
    }
}
} // namespace

Number Number::fromReal(double value)
{
    Number number(std::llround(value));
    number.real = value;
    return number;
}

void writeNumbers(const void* output, ValueKind kind, const Numbers& numbers)
{
    if (output == nullptr)
    {
        return;
    }
    for (std::size_t index = 0; index < numbers.size(); ++index)
    {
        storeNumber(output, index, kind, numbers[index]);
    }
}

void writeLast(FunctionIndex function, const CallValue* values, const Numbers& numbers)
{
    const auto index = static_cast<std::size_t>(function);
    const std::size_t last = firstParameter[index + 1] - 1u;
    writeNumbers(values[last - firstParameter[index]].pointer, parameterTable[last].kind, numbers);
}

void writeInt(const CallValue& output, std::int64_t number)
{
    writeNumbers(output.pointer, ValueKind::Int32, {number});
}

void writeText(const std::string& text, const CallValue& capacity, const CallValue& length, const CallValue& output)
{
    if (output.pointer == nullptr || capacity.integer <= 0)
    {
        writeInt(length, 0);
        return;
    }
    const std::size_t size = std::min(text.size(), static_cast<std::size_t>(capacity.integer) - 1);
    char* destination = static_cast<char*>(const_cast<void*>(output.pointer));
    std::memcpy(destination, text.data(), size);
    destination[size] = '\0';
    writeInt(length, static_cast<std::int64_t>(size));
}

void writeZeros(FunctionIndex function, const CallValue* values)
{
    const auto index = static_cast<std::size_t>(function);
    for (std::size_t parameter = firstParameter[index]; parameter < firstParameter[index + 1]; ++parameter)
    {
        const ParameterInfo& info = parameterTable[parameter];
        const CallValue& value = values[parameter - firstParameter[index]];
        if (info.passing != Passing::Out)
        {
            continue;
        }
        if (info.kind != ValueKind::Text)
        {
            writeNumbers(value.pointer, info.kind, {0});
        }
        else if (info.length == Length::Counted)
        {
            writeText({}, values[info.place], CallValue{}, value);
        }
    }
}
} // namespace renderengine::glbinding
