#include <kavelor/SoPreferences.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include <kavelor/SoError.h>

namespace
{

using Type = SoPreferences::Type;
using Source = SoPreferences::Source;

struct Registry
{
    std::mutex mutex;
    std::map<std::string, std::string> programValues;
    /// Key and type of what was asked for, with the default as text.
    std::map<std::pair<std::string, Type>, std::string> askedKeys;
    /// Keys, types and values that were told to be malformed.
    std::set<std::tuple<std::string, Type, std::string>> toldValues;
};

// Never destroyed: threads that outlive main may still ask.
Registry& registry()
{
    static Registry& instance = *new Registry;
    return instance;
}

struct FoundValue
{
    std::string text;
    Source source;
};

/// The text behind a key, if any; the registry's mutex is held.
std::optional<FoundValue> findValue(const Registry& values, const std::string& name)
{
    const auto found = values.programValues.find(name);
    if (found != values.programValues.end())
    {
        return FoundValue{found->second, Source::Program};
    }
    const char* const text = std::getenv(name.c_str());
    if (text && *text != '\0')
    {
        return FoundValue{text, Source::Environment};
    }
    return std::nullopt;
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
    {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <class Number> std::optional<Number> parseNumber(std::string_view text)
{
    text = trimmed(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
    {
        text.remove_prefix(1);
    }
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
    {
        return std::nullopt;
    }
    return number;
}

std::optional<bool> parseBool(std::string_view text)
{
    constexpr std::array<std::string_view, 4> yes = {"1", "true", "on", "yes"};
    constexpr std::array<std::string_view, 4> no = {"0", "false", "off", "no"};
    const std::string word = SbString(std::string(trimmed(text))).lower().toStdString();
    for (std::size_t i = 0; i < yes.size(); ++i)
    {
        if (word == yes[i] || word == no[i])
        {
            return word == yes[i];
        }
    }
    return std::nullopt;
}

template <class Value> struct Traits;

template <> struct Traits<bool>
{
    static constexpr Type type = Type::Bool;
    static constexpr const char* function = "SoPreferences::getBool";
    static constexpr const char* kind = "truth value";
    static std::optional<bool> parse(const std::string& text) { return parseBool(text); }
    static std::string print(bool value) { return value ? "1" : "0"; }
};

template <> struct Traits<int>
{
    static constexpr Type type = Type::Int;
    static constexpr const char* function = "SoPreferences::getInt";
    static constexpr const char* kind = "integer";
    static std::optional<int> parse(const std::string& text) { return parseNumber<int>(text); }
    static std::string print(int value) { return std::to_string(value); }
};

template <> struct Traits<float>
{
    static constexpr Type type = Type::Float;
    static constexpr const char* function = "SoPreferences::getFloat";
    static constexpr const char* kind = "number";
    static std::optional<float> parse(const std::string& text) { return parseNumber<float>(text); }
    static std::string print(float value)
    {
        char buffer[32];
        const auto [end, error] = std::to_chars(buffer, buffer + sizeof(buffer), value);
        return error == std::errc() ? std::string(buffer, end) : std::string();
    }
};

template <> struct Traits<std::string>
{
    static constexpr Type type = Type::String;
    static constexpr const char* function = "SoPreferences::getString";
    static constexpr const char* kind = "string";
    static std::optional<std::string> parse(const std::string& text) { return text; }
    static std::string print(const std::string& value) { return value; }
};

template <class Value> Value getValue(const SbString& name, const Value& defaultValue)
{
    using Kind = Traits<Value>;
    const std::string& key = name.toStdString();
    std::optional<FoundValue> found;
    bool tell = false;
    {
        Registry& values = registry();
        const std::lock_guard<std::mutex> lock(values.mutex);
        values.askedKeys[{key, Kind::type}] = Kind::print(defaultValue);
        found = findValue(values, key);
        if (!found)
        {
            return defaultValue;
        }
        if (const std::optional<Value> value = Kind::parse(found->text))
        {
            return *value;
        }
        tell = values.toldValues.emplace(key, Kind::type, found->text).second;
    }
    // Told without the lock: a handler may ask for preferences.
    if (tell)
    {
        SoDebugError::post(Kind::function, "%s is \"%s\", which is no %s; the default %s is taken.", name.getString(),
                           found->text.c_str(), Kind::kind, Kind::print(defaultValue).c_str());
    }
    return defaultValue;
}

template <class Value> void setValue(const SbString& name, const Value& value)
{
    Registry& values = registry();
    const std::lock_guard<std::mutex> lock(values.mutex);
    values.programValues[name.toStdString()] = Traits<Value>::print(value);
}

/// The text that a getter of the type would return for a text, if it can be read.
std::optional<std::string> normalized(Type type, const std::string& text)
{
    const auto convert = [](const auto& value, auto print)
    { return value ? std::optional<std::string>(print(*value)) : std::nullopt; };
    switch (type)
    {
    case Type::Bool:
        return convert(Traits<bool>::parse(text), Traits<bool>::print);
    case Type::Int:
        return convert(Traits<int>::parse(text), Traits<int>::print);
    case Type::Float:
        return convert(Traits<float>::parse(text), Traits<float>::print);
    case Type::String:
        break;
    }
    return text;
}

} // namespace

bool SoPreferences::getBool(const SbString& name, bool defaultValue)
{
    return getValue<bool>(name, defaultValue);
}

int SoPreferences::getInt(const SbString& name, int defaultValue)
{
    return getValue<int>(name, defaultValue);
}

float SoPreferences::getFloat(const SbString& name, float defaultValue)
{
    return getValue<float>(name, defaultValue);
}

SbString SoPreferences::getString(const SbString& name, const SbString& defaultValue)
{
    return getValue<std::string>(name, defaultValue.toStdString());
}

void SoPreferences::setBool(const SbString& name, bool value)
{
    setValue<bool>(name, value);
}

void SoPreferences::setInt(const SbString& name, int value)
{
    setValue<int>(name, value);
}

void SoPreferences::setFloat(const SbString& name, float value)
{
    setValue<float>(name, value);
}

void SoPreferences::setString(const SbString& name, const SbString& value)
{
    setValue<std::string>(name, value.toStdString());
}

void SoPreferences::unset(const SbString& name)
{
    Registry& values = registry();
    const std::lock_guard<std::mutex> lock(values.mutex);
    values.programValues.erase(name.toStdString());
}

std::vector<SoPreferences::AskedKey> SoPreferences::getAskedKeys()
{
    Registry& values = registry();
    const std::lock_guard<std::mutex> lock(values.mutex);
    std::vector<AskedKey> keys;
    keys.reserve(values.askedKeys.size());
    for (const auto& [nameAndType, defaultText] : values.askedKeys)
    {
        const auto& [name, type] = nameAndType;
        AskedKey key{name, type, defaultText, defaultText, Source::Default};
        if (const std::optional<FoundValue> found = findValue(values, name))
        {
            if (const std::optional<std::string> text = normalized(type, found->text))
            {
                key.value = *text;
                key.source = found->source;
            }
        }
        keys.push_back(std::move(key));
    }
    return keys;
}
