// Copies the parser's tree, so that nothing else depends on the parser.
#include "toml/document.h"

#include "toml/parser.h"

#include <algorithm>
#include <fmt/format.h>

namespace rsvp_toml {

namespace {

// The parser does not define what it makes of every other character, and no file of ours needs them.
void RefuseOtherThanText(std::string_view text)
{
    size_t line = 1;
    for (const char c : text) {
        line += c == '\n' ? 1 : 0;
        if ((c < ' ' && c != '\t' && c != '\n' && c != '\r') || c > '~')
            throw Mistake(line, fmt::format("the file must be plain ASCII text, and here is a byte 0x{:02x}",
                                            static_cast<unsigned char>(c)));
    }
}

// Where the string that begins here ends: its last character.
size_t EndOfString(std::string_view text, size_t begin)
{
    const char quote = text[begin];
    const std::string threeQuotes(3, quote);
    const bool manyLines = text.substr(begin, 3) == threeQuotes;
    for (size_t i = begin + (manyLines ? 3 : 1); i < text.size(); ++i) {
        if (text[i] == '\\' && quote == '"') {
            ++i;
        } else if (manyLines && text.substr(i, 3) == threeQuotes) {
            // Up to two more quotes belong to the text, and the last three end it.
            return std::min(text.find_first_not_of(quote, i), std::min(i + 5, text.size())) - 1;
        } else if (!manyLines && (text[i] == quote || text[i] == '\n')) {
            return i;
        }
    }
    return text.size() - 1;
}

// The parser makes a table inside a table for each dot of a key and each bracket, and what walks through them, its
// own destructors too, calls itself for each. Text can be deeper than the stack; a scenario has no use for that.
void RefuseDeepNesting(std::string_view text)
{
    constexpr size_t kDeepest = 32;
    size_t dots = 0;
    size_t brackets = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"' || c == '\'') {
            i = EndOfString(text, i);
            continue;
        }
        if (c == '#')
            i = std::min(text.find('\n', i), text.size() - 1);
        if (c == '[' || c == '{')
            ++brackets;
        else if ((c == ']' || c == '}') && brackets > 0)
            --brackets;
        if (c == '.')
            ++dots;
        else if (std::string_view("[]{},=#\n").find(c) != std::string_view::npos)
            dots = 0;
        if (dots > kDeepest || brackets > kDeepest)
            throw Mistake(static_cast<size_t>(std::ranges::count(text.substr(0, i), '\n')) + 1,
                          fmt::format("keys and brackets nest at most {} deep", kDeepest));
    }
}

Node Convert(const toml::node &from)
{
    Node node;
    node.line = from.source().begin.line;
    if (const toml::table *table = from.as_table()) {
        Node::Table members;
        for (const auto &[key, child] : *table)
            members.push_back({std::string(key.str()), key.source().begin.line, Convert(child)});
        node.value = std::move(members);
    } else if (const toml::array *array = from.as_array()) {
        Node::Array elements;
        for (const toml::node &element : *array)
            elements.push_back(Convert(element));
        node.value = std::move(elements);
    } else if (const auto *flag = from.as_boolean()) {
        node.value = flag->get();
    } else if (const auto *number = from.as_integer()) {
        node.value = number->get();
    } else if (const auto *real = from.as_floating_point()) {
        node.value = real->get();
    } else if (const auto *string = from.as_string()) {
        node.value = string->get();
    }
    return node;
}

// The parser repeats a number that does not fit, and somebody may have written a key as one.
std::string WithoutNumber(std::string message)
{
    const size_t begin = message.find_first_of('\'');
    const size_t end = message.find_last_of('\'');
    if (begin != end && std::string_view("+-0123456789").find(message[begin + 1]) != std::string_view::npos)
        message.replace(begin, end - begin + 1, "the number");
    return message;
}

} // namespace

void Refuse(size_t line, std::string_view key, std::string_view problem)
{
    throw Mistake(line, fmt::format("{}: {}", key, problem));
}

Node ParseDocument(std::string_view text)
{
    RefuseOtherThanText(text);
    RefuseDeepNesting(text);
    try {
        return Convert(toml::parse(text));
    } catch (const toml::parse_error &error) {
        throw Mistake(error.source().begin.line, WithoutNumber(std::string(error.description())));
    } catch (const TomlAssertion &) {
        throw Mistake(0, "this is not TOML, and the parser cannot say where");
    }
}

uint64_t NumberIn(const Member &member, uint64_t most)
{
    const auto *number = member.node.As<int64_t>();
    if (number == nullptr || *number < 0 || static_cast<uint64_t>(*number) > most)
        Refuse(member.node.line, member.name, fmt::format("must be a whole number from 0 to {}", most));
    return static_cast<uint64_t>(*number);
}

} // namespace rsvp_toml
