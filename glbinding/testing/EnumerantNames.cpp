#include "EnumerantNames.h"

#include "CallTable.h"

#include <glbinding/GLEnums.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace renderengine::glbinding
{
namespace
{
// Numbers below this are counts as often as enumerants, so only a group gives them a name.
constexpr std::uint64_t smallestTellingValue = 0x100;

std::string hexadecimal(std::uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof(text), "0x%04llX", static_cast<unsigned long long>(value));
    return text;
}

const char* findInGroup(std::uint64_t value, std::uint8_t group)
{
    const GroupInfo& info = groupTable[group];
    const std::uint16_t* begin = groupMembers + info.firstMember;
    const std::uint16_t* end = begin + info.memberCount;
    const std::uint16_t* found = std::lower_bound(begin, end, value,
                                                  [](std::uint16_t place, std::uint64_t wanted)
                                                  { return enumerantTable[place].value < wanted; });
    return found != end && enumerantTable[*found].value == value ? enumerantTable[*found].name : nullptr;
}

const char* findAnywhere(std::uint64_t value)
{
    if (value < smallestTellingValue)
    {
        return nullptr;
    }
    const EnumerantInfo* end = enumerantTable + enumerantCount;
    const EnumerantInfo* found =
        std::lower_bound(enumerantTable, end, value,
                         [](const EnumerantInfo& info, std::uint64_t wanted) { return info.value < wanted; });
    for (; found != end && found->value == value; ++found)
    {
        if (!found->isBit)
        {
            return found->name;
        }
    }
    return nullptr;
}

enum class Holds
{
    Number,
    Enumerant,
    // GL_NONE or GL_ZERO and GL_ONE besides telling values.
    EnumerantOrNone,
    Swizzle
};

Holds whatHolds(std::int64_t parameterName)
{
    switch (parameterName)
    {
    case GL_TEXTURE_MIN_FILTER:
    case GL_TEXTURE_MAG_FILTER:
    case GL_TEXTURE_WRAP_S:
    case GL_TEXTURE_WRAP_T:
    case GL_TEXTURE_WRAP_R:
    case GL_TEXTURE_COMPARE_FUNC:
    case GL_DEPTH_STENCIL_TEXTURE_MODE:
    case GL_DEPTH_TEXTURE_MODE:
    case GL_TEXTURE_ENV_MODE:
    case GL_TEXTURE_GEN_MODE:
    case GL_COMBINE_RGB:
    case GL_COMBINE_ALPHA:
    case GL_SOURCE0_RGB:
    case GL_SOURCE1_RGB:
    case GL_SOURCE2_RGB:
    case GL_SOURCE0_ALPHA:
    case GL_SOURCE1_ALPHA:
    case GL_SOURCE2_ALPHA:
    case GL_OPERAND0_RGB:
    case GL_OPERAND1_RGB:
    case GL_OPERAND2_RGB:
    case GL_OPERAND0_ALPHA:
    case GL_OPERAND1_ALPHA:
    case GL_OPERAND2_ALPHA:
    case GL_FOG_MODE:
    case GL_FOG_COORD_SRC:
    case GL_LIGHT_MODEL_COLOR_CONTROL:
    case GL_POINT_SPRITE_COORD_ORIGIN:
        return Holds::Enumerant;
    case GL_TEXTURE_COMPARE_MODE:
        return Holds::EnumerantOrNone;
    case GL_TEXTURE_SWIZZLE_R:
    case GL_TEXTURE_SWIZZLE_G:
    case GL_TEXTURE_SWIZZLE_B:
    case GL_TEXTURE_SWIZZLE_A:
    case GL_TEXTURE_SWIZZLE_RGBA:
        return Holds::Swizzle;
    default:
        return Holds::Number;
    }
}
} // namespace

std::string enumerantName(std::uint64_t value, std::uint8_t group)
{
    const char* name = group != 0 ? findInGroup(value, group) : nullptr;
    if (name == nullptr)
    {
        name = findAnywhere(value);
    }
    if (name != nullptr)
    {
        return name;
    }
    return value < smallestTellingValue ? std::to_string(value) : hexadecimal(value);
}

std::string bitNames(std::uint64_t value, std::uint8_t group)
{
    if (value == 0)
    {
        return "0";
    }
    if (const char* name = group != 0 ? findInGroup(value, group) : nullptr)
    {
        return name;
    }
    std::vector<std::string> names;
    std::uint64_t rest = value;
    for (std::uint64_t bit = 1; bit != 0 && bit <= value; bit <<= 1)
    {
        const char* name = group != 0 && (value & bit) != 0 ? findInGroup(bit, group) : nullptr;
        if (name != nullptr)
        {
            names.push_back(name);
            rest &= ~bit;
        }
    }
    std::sort(names.begin(), names.end());
    if (rest != 0)
    {
        names.push_back(hexadecimal(rest));
    }
    std::string text;
    for (const std::string& name : names)
    {
        text += text.empty() ? name : " | " + name;
    }
    return text;
}

std::string parameterValueName(std::int64_t value, std::int64_t parameterName)
{
    const Holds holds = whatHolds(parameterName);
    if (holds == Holds::EnumerantOrNone && value == GL_NONE)
    {
        return "GL_NONE";
    }
    if (holds == Holds::Swizzle && (value == GL_ZERO || value == GL_ONE))
    {
        return value == GL_ZERO ? "GL_ZERO" : "GL_ONE";
    }
    return holds == Holds::Number || value < 0 ? std::to_string(value)
                                               : enumerantName(static_cast<std::uint64_t>(value), 0);
}
} // namespace renderengine::glbinding
