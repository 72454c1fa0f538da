#pragma once

#include <glbinding/CurrentTable.h>

#include <set>
#include <string>
#include <vector>

/// A context that exists only in its answers, behind a loader that knows every name, as some platforms' loaders do.
struct FakeContext
{
    /// What GL_VERSION tells; null strings stand for no current context.
    const char* version = "4.6";
    std::vector<std::string> extensions;
    GLint profileMask = 0;
    GLint contextFlags = 0;
    /// Names for which the loader has no address.
    std::set<std::string> unknownNames;
    /// What the display lists, null for a platform without WGL.
    const char* wglExtensions = nullptr;
};

/// Installs the loader for the fake context and removes it at its end.
class FakeLoader
{
public:
    explicit FakeLoader(const FakeContext& context);
    ~FakeLoader();
    FakeLoader(const FakeLoader&) = delete;
    FakeLoader& operator=(const FakeLoader&) = delete;

    /// The address that the loader has for all functions but those that describe the context.
    static void* address();
};

/// True when the entry is the loader's address and no stub.
template <class Pointer> bool isLoaded(Pointer entry)
{
    return reinterpret_cast<void*>(entry) == FakeLoader::address();
}
