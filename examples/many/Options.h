#pragma once

#include "Program.h"

namespace many
{

/// What the user asked for on the command line.
struct Options : viewer::DrawOptions
{
    unsigned cubes = 10000;
};

/// Reads the command line. Prints help or the wrong usage itself; then `exitCode` is what the program must return with
/// (0 or 2), and -1 otherwise. Throws viewer::OptionError for a value that cannot be used.
Options parseOptions(int argc, char** argv, int& exitCode);

} // namespace many
