#pragma once

namespace renderengine
{

/// Forgets what the process has found out about `wglCreateContextAttribsARB` and that the GL binding was started, so
/// that a test can begin afresh on another platform layer.
void resetContextLookup();

} // namespace renderengine
