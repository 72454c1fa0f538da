#pragma once

#include <glbinding/GLEWContextStruct.h>

#include <string>
#include <vector>

namespace renderengine::testing
{

/// The GL objects that were made and not deleted since watching began, of every kind that has a function to make and
/// one to delete. Any thread may make and delete them.
class LiveObjects
{
public:
    /// Puts counting entries before those of the table and forgets what was counted.
    static void watch(GLEWContextStruct& table);
    /// Lets the tables that are filled from now on have counting entries, and forgets what was counted. A program whose
    /// tests make contexts through the engine links ObjectBalance.cpp, which does this for each of them.
    static void watchEveryContext();

    /// One text a kind that has live objects, such as "buffers: 3 7".
    static std::vector<std::string> list();
};

} // namespace renderengine::testing
