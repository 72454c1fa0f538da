#pragma once

#include "Program.h"

#include <string>

namespace viewer
{

/// What the user asked for on the command line.
struct Options : DrawOptions
{
    std::string model;
    bool info = false;
};

/// Reads the command line. Prints help or the wrong usage itself; then `exitCode` is what the program must return with
/// (0 or 2), and -1 otherwise. Throws OptionError for a value that cannot be used.
Options parseOptions(int argc, char** argv, int& exitCode);

} // namespace viewer
