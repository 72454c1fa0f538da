#pragma once

#include "CallText.h"

#include <string>
#include <vector>

namespace renderengine::glbinding
{
/// A number that a query tells, in the form in which it was given and in the other one.
struct Number
{
    Number(std::int64_t value) : integer(value), real(static_cast<double>(value)) {}
    static Number fromReal(double value);

    std::int64_t integer;
    double real;
};

using Numbers = std::vector<Number>;

/// Writes the numbers one after the other as elements of that kind; null is ignored.
void writeNumbers(const void* output, ValueKind kind, const Numbers& numbers);

/// Writes what the call's last parameter leads to.
void writeLast(FunctionIndex function, const CallValue* values, const Numbers& numbers);

/// Writes one number where a call takes a `GLint*`, `GLsizei*`, `GLuint*` or `GLenum*`; null is ignored.
void writeInt(const CallValue& output, std::int64_t number);

/// Writes as much of the text as fits with its closing null, and the length without it. Either may be null.
void writeText(const std::string& text, const CallValue& capacity, const CallValue& length, const CallValue& output);

/// Writes 0 and empty texts to all that the call writes, so that no query leaves memory as it was.
void writeZeros(FunctionIndex function, const CallValue* values);
} // namespace renderengine::glbinding
