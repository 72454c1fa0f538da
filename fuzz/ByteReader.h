#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>

namespace renderengine::fuzz
{

/// Takes values from the bytes of an input, one behind the other; zeros behind its end.
class ByteReader
{
public:
    ByteReader(const uint8_t* bytes, size_t size) : m_bytes(bytes), m_end(bytes + size) {}

    bool empty() const { return m_bytes == m_end; }

    uint8_t byte() { return empty() ? uint8_t{0} : *m_bytes++; }

    bool flag() { return (byte() & 1) != 0; }

    /// Below \p limit, which is from 1 to 256.
    uint32_t below(uint32_t limit) { return byte() % limit; }

    uint32_t word()
    {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
        {
            value = value << 8 | byte();
        }
        return value;
    }

    /// Often a value at the edge of a type or of one of the engine's tables.
    uint32_t number()
    {
        static constexpr uint32_t EDGES[] = {0,     1,    2,     3,     4,          5,          6,          7,
                                             8,     9,    15,    16,    31,         32,         33,         84,
                                             85,    255,  256,   32767, 32768,      65535,      65536,      0x3FFFFFFF,
                                             16384, 4096, 16385, 21,    0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
        const uint8_t choice = byte();
        return choice < 0xC0 ? EDGES[choice % std::size(EDGES)] : word();
    }

    int32_t integer() { return static_cast<int32_t>(number()); }

    uint64_t wide()
    {
        const uint64_t high = number();
        const uint32_t shift = below(33);
        return high << shift | number();
    }

    float real()
    {
        using Limits = std::numeric_limits<float>;
        static constexpr float EDGES[] = {0.0f,
                                          -0.0f,
                                          1.0f,
                                          -1.0f,
                                          0.5f,
                                          1e6f,
                                          Limits::max(),
                                          Limits::lowest(),
                                          Limits::denorm_min(),
                                          Limits::infinity(),
                                          -Limits::infinity(),
                                          Limits::quiet_NaN()};
        const uint8_t choice = byte();
        if (choice < 0xC0)
        {
            return EDGES[choice % std::size(EDGES)];
        }
        const uint32_t bits = word();
        float value = 0.0f;
        std::memcpy(&value, &bits, sizeof(value));
        return value;
    }

    /// Short, at times with bytes that are not text; at times too long for the string itself.
    std::string text()
    {
        const uint8_t choice = byte();
        if (choice < 0x80)
        {
            static constexpr const char* NAMES[] = {"",       "position", "normal",    "color",
                                                    "matrix", "Lights",   "Transform", "KvrPointSize"};
            return NAMES[choice % std::size(NAMES)];
        }
        std::string made(choice & 31u, '\0');
        for (char& character : made)
        {
            character = static_cast<char>(byte());
        }
        return made;
    }

private:
    const uint8_t* m_bytes;
    const uint8_t* m_end;
};

} // namespace renderengine::fuzz
