// Text to bytes and back. The values of items have the sizes that the protocol gives them and are filled with a
// pattern; a word can place the one number inside that a test looks at.
#include "tests/support/bytes.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <map>
#include <sstream>

namespace scripted {

Bytes Hex(const std::string &text)
{
    std::string digits = text;
    std::erase(digits, ' ');
    Bytes bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

std::string ToHex(const Bytes &bytes)
{
    std::string text;
    for (const char byte : bytes) {
        text += "0123456789abcdef"[(byte >> 4) & 15];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

void PutNet(Bytes &bytes, size_t offset, size_t width, uint64_t number)
{
    for (size_t i = 0; i < width; ++i)
        bytes.at(offset + i) = static_cast<char>(number >> 8 * (width - 1 - i));
}

uint32_t GetNet16(const Bytes &bytes, size_t offset)
{
    return static_cast<uint32_t>(static_cast<uint8_t>(bytes.at(offset)) << 8 |
                                 static_cast<uint8_t>(bytes.at(offset + 1)));
}

Bytes Pattern(size_t size)
{
    Bytes bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(0x11 + 7 * i);
    return bytes;
}

Bytes Item(uint32_t type, const Bytes &value)
{
    Bytes item(4, '\0');
    PutNet(item, 0, 2, type);
    PutNet(item, 2, 2, value.size());
    return item + value;
}

Bytes Reply(uint32_t status, const Bytes &body)
{
    Bytes reply = Hex("aabb 0000 00000000"); // the class and operation of a reply mean nothing
    PutNet(reply, 2, 2, body.size());
    PutNet(reply, 4, 4, status);
    return reply + body;
}

namespace {

Bytes List(size_t countWidth, size_t entrySize, size_t count)
{
    Bytes value = Bytes(countWidth, '\0') + Pattern(entrySize * count);
    PutNet(value, 0, countWidth, count);
    for (size_t i = 0; entrySize == 36 && i < count; ++i)
        value[countWidth + entrySize * i] = "\1\3\2"[i % 3]; // an address, a label, neither
    return value;
}

Bytes Value(unsigned long type, size_t count, uint32_t mark)
{
    if (type == 7 || type == 33)
        return List(2, 36, count);
    if (type >= 3 && type <= 6)
        return List(type == 6 ? 4 : 2, 12, count);
    if (type == 17 || type == 34)
        return "name";
    static const std::map<unsigned long, size_t> sizes = {{1, 128},  {11, 56}, {12, 124}, {13, 12},  {14, 44},
                                                          {15, 440}, {31, 84}, {32, 48},  {35, 268}, {36, 105},
                                                          {37, 22},  {38, 38}, {39, 61}};
    static const std::map<unsigned long, size_t> marks = {
        {13, 8}, {14, 40}, {32, 28}}; // label, slack term, first word
    const auto size = sizes.find(type);
    Bytes value = Pattern(size == sizes.end() ? 3 : size->second);
    if (marks.contains(type))
        PutNet(value, marks.at(type), 4, mark);
    return value;
}

} // namespace

Bytes Body(const std::string &words)
{
    Bytes body;
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        char *at = nullptr;
        const unsigned long type = std::strtoul(word.c_str(), &at, 10);
        const auto option = [&](char sign, unsigned long none) {
            const size_t found = word.find(sign);
            return found == std::string::npos ? none : std::stoul(word.substr(found + 1));
        };
        Bytes value = Value(type, option('x', 1), static_cast<uint32_t>(option('=', 0)));
        value.resize(option('/', value.size()), '\x77');
        body += Item(static_cast<uint32_t>(type), value);
    }
    return body;
}

Bytes ToHost(const std::string &layout, const Bytes &wire)
{
    Bytes host = wire;
    auto at = host.begin();
    std::istringstream stream(layout);
    for (std::string word; stream >> word;) {
        if (word == "t") {
            *at = static_cast<char>(*at == 1 ? 0 : *at == 3 ? 2 : 1);
            ++at;
        } else if (word[0] == 'r') {
            at += std::stol(word.substr(1));
        } else {
            const size_t star = word.find('*');
            const long width = std::stol(word);
            for (long i = star == std::string::npos ? 1 : std::stol(word.substr(star + 1)); i > 0; --i, at += width)
                if (std::endian::native == std::endian::little)
                    std::reverse(at, at + width);
        }
    }
    return host;
}

} // namespace scripted
