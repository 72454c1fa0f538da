#pragma once

#include <vector>

#include <kavelor/KavelorApi.h>
#include <kavelor/SbString.h>

/// Named settings with a default at the point of use. A value that the program set wins over the environment variable
/// of the same name, and that over the default; an environment variable that is empty counts as not set. Any thread may
/// call these functions, but a host that changes its environment meanwhile does so at its own risk.
///
/// A value that cannot be read as the type that is asked for gives the default, and is told once through SoDebugError
/// for each key and value.
class KAVELOR_API SoPreferences
{
public:
    enum class Type
    {
        Bool,
        Int,
        Float,
        String
    };

    /// Where a value comes from, in rising order of precedence.
    enum class Source
    {
        Default,
        Environment,
        Program
    };

    /// One key that some code has asked for, with a value as it is now.
    struct AskedKey
    {
        SbString name;
        Type type;
        /// The default that was given last.
        SbString defaultValue;
        /// What the getter would return now.
        SbString value;
        /// Default as well when the value that was set cannot be read as the type.
        Source source;
    };

    /// True for "1", "true", "on", "yes", false for "0", "false", "off", "no", whatever the case.
    static bool getBool(const SbString& name, bool defaultValue);
    /// A decimal number with an optional sign.
    static int getInt(const SbString& name, int defaultValue);
    /// A decimal number with a point, whatever the locale, with an optional sign and exponent.
    static float getFloat(const SbString& name, float defaultValue);
    static SbString getString(const SbString& name, const SbString& defaultValue);

    /// Set a value from the program, from now on. Values that the engine keeps for the life of the process have to be
    /// set before their first use.
    static void setBool(const SbString& name, bool value);
    static void setInt(const SbString& name, int value);
    static void setFloat(const SbString& name, float value);
    static void setString(const SbString& name, const SbString& value);

    /// Forgets the program's value, so that the environment and the default count again.
    static void unset(const SbString& name);

    /// All keys that were asked for, ordered by name, then by type.
    static std::vector<AskedKey> getAskedKeys();

    SoPreferences() = delete;
};
