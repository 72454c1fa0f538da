#pragma once

#include <cstdint>

namespace renderengine
{

class ContextInterface;

/// Bits of the flags byte of a context.
enum ContextFlag : uint8_t
{
    ContextMultithread = 1, ///< Runs its frames on a render thread of its own.
    ContextShare = 2,       ///< Shares device objects with what is current on the thread that calls init().
    ContextDebug = 4        ///< Makes a debug device context and reports its messages.
};

/// The flags byte for the settings as they stand now. Sharing is always on.
uint8_t contextFlags();

/// Makes an OpenGL context with the given flags; its init() reads the setting KVR_RENDERENGINE_RENDERER. The caller
/// owns it. Touches no device.
ContextInterface* createContext(uint8_t flags);

} // namespace renderengine
