#pragma once

#include <kavelor/KavelorApi.h>

/// Facts about the machine.
class KAVELOR_API SoDevice
{
public:
    /// Writes the version of the operating system in Windows' numbering, in which 6 and above mean Vista or later.
    /// Other systems report 6.0, whatever the number of their kernel, since all of them compose their windows.
    static void readSystemVersion(int& major, int& minor);

    SoDevice() = delete;
};
