#pragma once

#include <renderengine/Export.h>
#include <renderengine/PlatformTypes.h>

#include <vector>

struct GLEWContextStruct;
struct WGLEWContextStruct;

namespace renderengine
{

struct ClearTargetProperties;
struct DepthStencilProperties;

/// Starts the library: the base library, the log, and once per process the GL binding. To be called from one thread at
/// a time, before the first context. A second call changes nothing. When no context is current it makes a hidden one
/// for the time of the call; throws `std::runtime_error` when the system gives no window for it.
RENDERENGINE_API void init();

/// Ends the base library. The log stays.
RENDERENGINE_API void finish();

/// The GL function table of the context that is current on the calling thread, made at the first call for a context on
/// a thread. It belongs to the engine and lives until `utils::GL::destroyContext` on this thread, or the thread's end.
/// Without a current context its functions do nothing.
RENDERENGINE_API GLEWContextStruct* glewGetContext();

/// The table of window-system functions beside `glewGetContext()`, with the same lifetime.
RENDERENGINE_API WGLEWContextStruct* wglewGetContext();

/// Makes sure that the context which is current on the calling thread has its function tables.
RENDERENGINE_API void initGlewForCurrentContext();

namespace utils::GL
{

/// The context that is current on the calling thread, also one that the host made current; null when there is none.
RENDERENGINE_API HGLRC getCurrentContext();

/// The display that the current context draws to; null when no context is current. A display of a context of the host
/// remembers both its surfaces and belongs to the engine.
RENDERENGINE_API HDC getCurrentDisplay();

/// Always 0: a drawable has no meaning beside an `HDC`.
RENDERENGINE_API int getCurrentDrawable();

/// True when `display` is not null.
RENDERENGINE_API bool isValidDisplay(HDC display);

/// A description of the pixel format that is set on `display`, from `malloc`; the caller gives it back with
/// `releaseVisualInfo`. The second argument is not used.
RENDERENGINE_API PIXELFORMATDESCRIPTOR* getWindowVisualInfo(HDC display, int drawable);

/// As above; the context is not used.
RENDERENGINE_API PIXELFORMATDESCRIPTOR* getWindowVisualInfo(HDC display, int drawable, HGLRC context);

/// Frees what `getWindowVisualInfo` gave; null is allowed.
RENDERENGINE_API void releaseVisualInfo(PIXELFORMATDESCRIPTOR* visualInfo);

/// Creates a context on `display`, sharing objects with `shared` when that is not null. `layer` names the layer plane
/// of a debug context; `pfd` and `direct` are not used. Returns null on failure, after at most one line in the log. The
/// caller owns the context.
RENDERENGINE_API HGLRC createContext(HDC display, PIXELFORMATDESCRIPTOR* pfd, HGLRC shared, bool direct, int layer);

/// Creates a context on `display` through `wglCreateContextAttribsARB`, sharing objects with `shared` when that is not
/// null. `attributes` is a zero-ended list of pairs; empty means the system's defaults; `pfd` and `direct` are not
/// used. What was current on entry is current again on return. Returns null on failure. The caller owns the context.
/// Not to be called by two threads at a time before the first call has returned.
RENDERENGINE_API HGLRC createContextAttribs(HDC display, PIXELFORMATDESCRIPTOR* pfd, HGLRC shared, bool direct,
                                            const std::vector<int>& attributes);

/// Makes `context` current on the calling thread, or nothing when it is null. A refusal is tried again, up to 5 times
/// in all. Returns false after one line in the log. `drawable` is not used.
RENDERENGINE_API bool makeCurrent(HDC display, int drawable, HGLRC context);

/// Deletes `context` and the function tables that the calling thread keeps for it. Returns false, after one line in the
/// log, for a null context and when the system refuses.
RENDERENGINE_API bool destroyContext(HDC display, HGLRC context);

/// Clears the framebuffer that is bound in the current context: colour, depth and stencil by the bits 0, 1 and 2 of
/// `properties.flags`, with the first colour. Sets the clear values and calls `glClear`, also for an empty mask.
RENDERENGINE_API void clearCurrentFrameBuffer(const ClearTargetProperties& properties);

/// Applies the depth test, the depth mask and the depth function of `properties` to the current context. With the test
/// off the other two stay as they are.
RENDERENGINE_API void setDepthParameters(const DepthStencilProperties& properties);

} // namespace utils::GL
} // namespace renderengine
