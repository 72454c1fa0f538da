#pragma once

#include <renderengine/PlatformTypes.h>

#include <glbinding/CurrentTable.h>
#include <glbinding/SoGLGlew.h>

#include <memory>

namespace bench
{

/// An OpenGL context without debug output, on a hidden window. Throws std::runtime_error when the system gives none.
class BenchContext
{
public:
    BenchContext();
    ~BenchContext();
    BenchContext(const BenchContext&) = delete;
    BenchContext& operator=(const BenchContext&) = delete;

    /// While it lives, the context is current on this thread and its functions are the thread's table.
    class Current
    {
    public:
        explicit Current(BenchContext& context);
        ~Current();
        Current(const Current&) = delete;
        Current& operator=(const Current&) = delete;

    private:
        renderengine::glbinding::ScopedTable m_scope;
    };

private:
    void release();

    HWND m_window = nullptr;
    HDC m_display = nullptr;
    HGLRC m_context = nullptr;
    SoGLGlew m_functions;
};

} // namespace bench
