#pragma once

#include <glbinding/GLEWContextStruct.h>
#include <glbinding/WGLEWContextStruct.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

/// What the registry says of each function: which version, profile and extension brings it.
namespace renderengine::glbinding
{
#include "generated/FunctionCounts.inc"

/// The functions in the order of the members of GLEWContextStruct, without their "gl".
enum class FunctionIndex : std::uint16_t
{
#define GLBINDING_FUNCTION(name) name,
#include "generated/FunctionList.inc"
#undef GLBINDING_FUNCTION
};

struct FunctionInfo
{
    const char* name;
    /// First version that has it in the compatibility profile, major x 10 + minor; 0 for none.
    std::uint8_t since;
    /// First version that has it in the core profile, and in forward-compatible contexts; 0 for none.
    std::uint8_t coreSince;
    /// 1 + index of the extensions that bring it under this name; 0 for none.
    std::uint8_t extensions[2];
};

struct WGLFunctionInfo
{
    const char* name;
    /// 1 + index of the extension that brings it.
    std::uint8_t extension;
};

template <class Table> struct ExtensionInfo
{
    const char* name;
    bool Table::*flag;
};

extern const FunctionInfo functionTable[functionCount];
extern const WGLFunctionInfo wglFunctionTable[wglFunctionCount];
extern const ExtensionInfo<GLEWContextStruct> extensionTable[extensionCount];
extern const ExtensionInfo<WGLEWContextStruct> wglExtensionTable[wglExtensionCount];

/// A table of which every entry is a stub that reports its function's name and returns 0.
extern const GLEWContextStruct g_absentTable;
extern const WGLEWContextStruct g_silentWGLTable;

/// Remembers the version of the context that lacks the function, for the report of its stub.
void noteAbsent(std::size_t function, int majorVersion, int minorVersion);

using GenericProc = void(GLAPIENTRY*)();

// The entries of a table lie side by side at its beginning, so that a number finds them.
static_assert(sizeof(GenericProc) == sizeof(void*), "a function's address fits an object pointer");
static_assert(offsetof(GLEWContextStruct, majorVersion) == functionCount * sizeof(void*), "entries lie side by side");

template <class Table> void setEntry(Table& table, std::size_t function, const void* address)
{
    std::memcpy(reinterpret_cast<unsigned char*>(&table) + function * sizeof(void*), &address, sizeof(void*));
}

template <class Table> void copyEntry(Table& table, const Table& source, std::size_t function)
{
    std::memcpy(reinterpret_cast<unsigned char*>(&table) + function * sizeof(void*),
                reinterpret_cast<const unsigned char*>(&source) + function * sizeof(void*), sizeof(void*));
}
} // namespace renderengine::glbinding
