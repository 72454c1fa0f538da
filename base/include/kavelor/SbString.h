#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <utility>

/// A string of bytes, UTF-8 by convention, that owns its characters and ends in a null. It is made from a C string or a
/// std::string without a cast; a null pointer gives the empty string.
class SbString
{
public:
    SbString() = default;
    SbString(const char* text) : m_text(text ? text : "") {}
    SbString(std::string text) : m_text(std::move(text)) {}

    /// The characters with a null at the end; valid until this string is changed or destroyed.
    const char* getString() const noexcept { return m_text.c_str(); }

    const std::string& toStdString() const& noexcept { return m_text; }
    std::string toStdString() && noexcept { return std::move(m_text); }

    /// Number of bytes, without the null.
    std::size_t getLength() const noexcept { return m_text.size(); }
    bool isEmpty() const noexcept { return m_text.empty(); }

    /// A copy with the letters a to z in upper case. Other bytes stay, whatever the locale.
    SbString upper() const { return mapped('a', 'z', 'A'); }
    /// A copy with the letters A to Z in lower case. Other bytes stay, whatever the locale.
    SbString lower() const { return mapped('A', 'Z', 'a'); }

    SbString& operator+=(const SbString& other)
    {
        m_text += other.m_text;
        return *this;
    }

    friend SbString operator+(SbString a, const SbString& b) { return a += b; }

    friend bool operator==(const SbString& a, const SbString& b) noexcept { return a.m_text == b.m_text; }
    friend bool operator!=(const SbString& a, const SbString& b) noexcept { return a.m_text != b.m_text; }
    friend bool operator==(const SbString& a, const char* b) { return a.m_text == (b ? b : ""); }
    friend bool operator!=(const SbString& a, const char* b) { return !(a == b); }
    friend bool operator==(const char* a, const SbString& b) { return b == a; }
    friend bool operator!=(const char* a, const SbString& b) { return !(b == a); }
    /// Order by bytes.
    friend bool operator<(const SbString& a, const SbString& b) noexcept { return a.m_text < b.m_text; }

    friend std::ostream& operator<<(std::ostream& stream, const SbString& string) { return stream << string.m_text; }

private:
    SbString mapped(char first, char last, char target) const
    {
        SbString result(*this);
        for (char& c : result.m_text)
        {
            if (c >= first && c <= last)
            {
                c = static_cast<char>(c - first + target);
            }
        }
        return result;
    }

    std::string m_text;
};

template <> struct std::hash<SbString>
{
    std::size_t operator()(const SbString& string) const noexcept
    {
        return std::hash<std::string>()(string.toStdString());
    }
};
