// Copies the parser's tree, so that nothing else depends on the parser.
#include "toml/document.h"

#include "toml/parser.h"

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

} // namespace

void Refuse(size_t line, std::string_view key, std::string_view problem)
{
    throw Mistake(line, fmt::format("{}: {}", key, problem));
}

Node ParseDocument(std::string_view text)
{
    RefuseOtherThanText(text);
    try {
        return Convert(toml::parse(text));
    } catch (const toml::parse_error &error) {
        throw Mistake(error.source().begin.line, std::string(error.description()));
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
