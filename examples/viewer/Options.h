#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace viewer
{

/// What the user asked for on the command line.
struct Options
{
    std::string model;
    std::string output = "out.png";
    uint32_t width = 1280;
    uint32_t height = 800;
    unsigned frames = 1;
    /// One of "GL", "GL41", "NULL", "LOG", in upper case.
    std::string renderer = "GL";
    bool thread = true;
    bool debug = false;
    bool info = false;
};

/// An option has a value that cannot be used. what() is one sentence for the user.
class OptionError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the command line. Prints help or the wrong usage itself; then `exitCode` is what the program must return with
/// (0 or 2), and -1 otherwise. Throws OptionError for a value that cannot be used.
Options parseOptions(int argc, char** argv, int& exitCode);

} // namespace viewer
