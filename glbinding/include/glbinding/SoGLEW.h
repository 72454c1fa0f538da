#pragma once

#include <glbinding/GLEWContextStruct.h>
#include <glbinding/WGLEWContextStruct.h>

/// Fills tables from the context that is current on the calling thread. Needs a loader, see
/// renderengine::glbinding::setProcAddressLoader.
class SoGLEW
{
public:
    /// What the init functions return.
    enum Error : unsigned
    {
        NO_ERROR_FOUND = 0,
        /// The context tells no version: none is current, or glGetString is not found.
        NO_GL_VERSION = 1,
        /// No loader is installed, or there is no table to fill.
        NO_LOADER = 2
    };

    /// Fills `table` from the current context. The context's version, its profile and its list of extensions decide
    /// which functions exist; an address that the loader gives for any other name is not used. A function that does not
    /// exist, or for which the loader has no address, becomes a stub which reports through SoDebugError, once a
    /// function and process, and returns 0. On an error all entries are silent stubs.
    ///
    /// @return 0 on success, else one of Error.
    static unsigned glewContextInit(GLEWContextStruct* table);

    /// Fills `table` with the WGL extension functions. The display's list of extensions decides which exist; the others
    /// are silent stubs. The loader is also asked for "wglGetCurrentDC", whose answer tells the display.
    ///
    /// @return 0 on success, also when the platform has no WGL; NO_LOADER without a loader or table.
    static unsigned wglewContextInit(WGLEWContextStruct* table);
};
