#pragma once

#include <kavelor/KavelorApi.h>

/// Start and end of the base library. Calls are counted: the library is up from the first init until as many calls of
/// finish. Any thread may call.
class KAVELOR_API SoKavelorBase
{
public:
    static void init();
    /// A call without its init is reported as an error and changes nothing.
    static void finish();
    static bool isInitialized();

    SoKavelorBase() = delete;
};
