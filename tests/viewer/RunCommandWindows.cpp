#include "ViewerProgram.h"

#include <windows.h>

namespace
{

/// A new file that a child process can write to.
HANDLE createOutput(const std::filesystem::path& path)
{
    SECURITY_ATTRIBUTES inherited = {};
    inherited.nLength = sizeof(inherited);
    inherited.bInheritHandle = TRUE;
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

} // namespace

int runCommand(const std::vector<std::string>& command, const std::filesystem::path& folder,
               const std::filesystem::path& out, const std::filesystem::path& error)
{
    // No argument of the tests holds a quotation mark.
    std::string line;
    for (const std::string& argument : command)
        line += (line.empty() ? "\"" : " \"") + argument + '"';

    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = createOutput(out);
    startup.hStdError = createOutput(error);
    PROCESS_INFORMATION process = {};
    const bool isStarted = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                          folder.string().c_str(), &startup, &process) != FALSE;
    DWORD status = MAXDWORD;
    if (isStarted)
    {
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &status);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    // A crash ends with the number of its exception.
    return status < 128 ? static_cast<int>(status) : -1;
}
