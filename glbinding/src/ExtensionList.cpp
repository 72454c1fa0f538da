#include "ExtensionList.h"

#include <sstream>

namespace renderengine::glbinding
{
std::set<std::string> splitExtensions(const char* text)
{
    std::set<std::string> names;
    std::istringstream words(text != nullptr ? text : "");
    for (std::string name; words >> name;)
    {
        names.insert(name);
    }
    return names;
}
} // namespace renderengine::glbinding
