#pragma once

#include "FunctionTable.h"

/// What the recording knows of each call beyond its types: how to print it, and which enumerants it means.
namespace renderengine::glbinding
{
enum class ValueKind : std::uint8_t
{
    Boolean,
    Bitfield,
    Double,
    Enum,
    Float,
    Int8,
    Int16,
    Int32,
    Int64,
    // Numbers that hold an enumerant for some values of the parameter "pname" before them.
    ParameterFloat,
    ParameterInt32,
    ParameterUInt32,
    Pointer,
    Sync,
    Text,
    UInt8,
    UInt16,
    UInt32,
    UInt64
};

enum class Passing : std::uint8_t
{
    Value,
    // Points to elements that the call reads, or to pointers to such.
    In,
    Ins,
    // Points to what the call writes, or to names that it makes.
    Out,
    Names
};

enum class Length : std::uint8_t
{
    Unknown,
    // `factor` elements.
    Constant,
    // As many as the parameter at `place` says, times `factor`.
    Counted,
    // As many as the enumerant in the parameter at `place` calls for.
    ByEnumerant
};

struct ParameterInfo
{
    ValueKind kind;
    Passing passing;
    Length length;
    std::uint8_t place;
    std::uint8_t factor;
    // Of groupTable; 0 for none.
    std::uint8_t group;
};

struct EnumerantInfo
{
    std::uint64_t value;
    const char* name;
    bool isBit;
};

struct GroupInfo
{
    std::uint16_t firstMember;
    std::uint16_t memberCount;
};

// The parameters of all functions in a row; function f has those from firstParameter[f] to firstParameter[f + 1].
extern const ParameterInfo parameterTable[];
extern const std::uint16_t firstParameter[functionCount + 1];
// By rising value; of one value the preferred name first.
extern const EnumerantInfo enumerantTable[];
extern const std::size_t enumerantCount;
extern const GroupInfo groupTable[];
// Places in enumerantTable, rising within a group.
extern const std::uint16_t groupMembers[];
} // namespace renderengine::glbinding
