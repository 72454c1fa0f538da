#include <kavelor/SoDevice.h>

#if defined(_WIN32)
#include <windows.h>
#endif

void SoDevice::readSystemVersion(int& major, int& minor)
{
    major = 6;
    minor = 0;
#if defined(_WIN32)
    OSVERSIONINFOA info = {};
    info.dwOSVersionInfoSize = sizeof(info);
    if (GetVersionExA(&info))
    {
        major = static_cast<int>(info.dwMajorVersion);
        minor = static_cast<int>(info.dwMinorVersion);
    }
#endif
}
