#include "ViewerProgram.h"

#include <cstdlib>

#include <sys/wait.h>

namespace
{

std::string quoted(const std::string& text)
{
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

} // namespace

int runCommand(const std::vector<std::string>& command, const std::filesystem::path& folder,
               const std::filesystem::path& out, const std::filesystem::path& error)
{
    std::string line = "cd " + quoted(folder.string()) + " && exec";
    for (const std::string& argument : command)
        line += ' ' + quoted(argument);
    line += " >" + quoted(out.string()) + " 2>" + quoted(error.string());
    const int status = std::system(line.c_str());
    // The shell's own figures for what cannot be run begin at 126.
    return WIFEXITED(status) && WEXITSTATUS(status) < 126 ? WEXITSTATUS(status) : -1;
}
