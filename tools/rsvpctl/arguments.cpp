// Reading of arguments. The ranges of numbers come from the width of the field that they go into: the library passes
// numbers through, so a number that was cut on the way would be set as another one.
#include "arguments.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fmt/format.h>
#include <memory>

namespace rsvpctl {
namespace {

std::vector<std::string_view> Split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    for (size_t begin = 0;;) {
        const size_t end = text.find(separator, begin);
        parts.push_back(text.substr(begin, end - begin));
        if (end == std::string_view::npos)
            return parts;
        begin = end + 1;
    }
}

uint64_t MaximumOf(uint32_t width)
{
    return width >= 8 ? UINT64_MAX : (uint64_t{1} << (width * 8)) - 1;
}

// Host order numbers of a record's widths; memcpy, since a key may lie at any address.
void StoreNumber(std::byte *at, uint32_t width, uint64_t number)
{
    const auto byte = static_cast<uint8_t>(number);
    const auto half = static_cast<uint16_t>(number);
    const auto word = static_cast<uint32_t>(number);
    const void *from = width == 1   ? static_cast<const void *>(&byte)
                       : width == 2 ? static_cast<const void *>(&half)
                       : width == 4 ? static_cast<const void *>(&word)
                                    : static_cast<const void *>(&number);
    std::memcpy(at, from, width);
}

std::string StoreBytes(std::byte *at, uint32_t width, std::string_view text)
{
    if (text.size() != size_t{width} * 2)
        return fmt::format("takes {} hex digits", width * 2);
    for (uint32_t i = 0; i < width; ++i) {
        uint8_t byte = 0;
        const char *begin = text.data() + size_t{i} * 2;
        if (std::from_chars(begin, begin + 2, byte, 16).ptr != begin + 2)
            return fmt::format("takes {} hex digits", width * 2);
        at[i] = std::byte{byte};
    }
    return {};
}

std::string StoreLeaf(const Leaf &leaf, std::string_view text, void *record)
{
    std::byte *at = static_cast<std::byte *>(record) + leaf.offset;
    if (leaf.field->kind == FieldKind::Bytes) {
        const std::string wrong = StoreBytes(at, leaf.field->width, text);
        return wrong.empty() ? wrong : fmt::format("{} {}, not '{}'", leaf.path, wrong, text);
    }
    if (leaf.field->kind == FieldKind::Address) {
        if (const auto address = ParseAddress(text)) {
            StoreNumber(at, 4, *address);
            return {};
        }
    }
    const auto number = ParseNumber(text);
    const uint64_t maximum = MaximumOf(leaf.field->width);
    if (!number || *number > maximum)
        return fmt::format("{} takes {}0 to {}, not '{}'", leaf.path,
                           leaf.field->kind == FieldKind::Address ? "an IPv4 address or " : "", maximum, text);
    StoreNumber(at, leaf.field->width, *number);
    return {};
}

struct FileCloser {
    void operator()(FILE *file) const
    {
        if (file != stdin)
            (void)std::fclose(file); // only read from
    }
};

} // namespace

std::optional<uint64_t> ParseNumber(std::string_view text)
{
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex)
        text.remove_prefix(2);
    uint64_t number = 0;
    const char *end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number, hex ? 16 : 10);
    if (parsed.ec != std::errc{} || parsed.ptr != end)
        return std::nullopt;
    return number;
}

std::optional<uint32_t> ParseAddress(std::string_view text)
{
    in_addr address{};
    if (inet_pton(AF_INET, std::string(text).c_str(), &address) != 1)
        return std::nullopt;
    return ntohl(address.s_addr);
}

std::string ParseKey(const RecordDescription &description, std::string_view text, void *record)
{
    const std::vector<Leaf> leaves = Leaves(description);
    const std::vector<std::string_view> parts = Split(text, ',');
    const bool named = text.find('=') != std::string_view::npos;
    if (parts.size() != leaves.size())
        return fmt::format("takes {} of {}, not {}", leaves.size() == 1 ? "the number" : "the numbers",
                           KeyShape(description), parts.size());
    std::vector<bool> given(leaves.size());
    for (size_t i = 0; i < parts.size(); ++i) {
        size_t which = i;
        std::string_view value = parts[i];
        if (named) {
            const size_t equals = value.find('=');
            const std::string_view name = value.substr(0, equals);
            const auto leaf =
                std::find_if(leaves.begin(), leaves.end(), [&](const Leaf &one) { return one.path == name; });
            if (equals == std::string_view::npos || leaf == leaves.end())
                return fmt::format("'{}' is not NAME=VALUE with a name of {}", value, KeyShape(description));
            which = static_cast<size_t>(leaf - leaves.begin());
            value.remove_prefix(equals + 1);
        }
        if (given[which])
            return fmt::format("{} stands twice", leaves[which].path);
        given[which] = true;
        if (std::string wrong = StoreLeaf(leaves[which], value, record); !wrong.empty())
            return wrong;
    }
    return {};
}

void RequireKey(const RecordDescription &description, std::string_view text, void *record)
{
    if (const std::string wrong = ParseKey(description, text, record); !wrong.empty())
        throw UsageError("key: " + wrong);
}

std::string KeyText(const RecordDescription &description, const void *record)
{
    std::string text;
    for (const Leaf &leaf : Leaves(description)) {
        const auto value = ScalarToJson(*leaf.field, static_cast<const std::byte *>(record) + leaf.offset);
        text += (text.empty() ? "" : ",") + (value.is_string() ? value.get<std::string>() : value.dump());
    }
    return text;
}

std::string KeyShape(const RecordDescription &description)
{
    std::string shape;
    for (const Leaf &leaf : Leaves(description))
        shape += (shape.empty() ? "" : ",") + leaf.path;
    return shape;
}

CLI::Option *AddNumber(CLI::App &app, const std::string &names, uint64_t max, const std::string &help)
{
    const std::string range = fmt::format("0..{}", max);
    std::string refusal = fmt::format("takes a number from 0 to {}", max);
    return app.add_option(names, help)
        ->type_name(range)
        ->check([max, refusal](const std::string &text) -> std::string {
            const auto number = ParseNumber(text);
            return number && *number <= max ? "" : refusal + ", not '" + text + "'";
        });
}

uint32_t NumberValue(const CLI::Option *option)
{
    return static_cast<uint32_t>(ParseNumber(option->results().at(0)).value());
}

CLI::Option *AddAddress(CLI::App &app, const std::string &names, const std::string &help)
{
    return app.add_option(names, help)->type_name("A.B.C.D")->check([](const std::string &text) -> std::string {
        return ParseAddress(text) ? "" : "takes an IPv4 address (10.0.0.9), not '" + text + "'";
    });
}

uint32_t AddressValue(const CLI::Option *option)
{
    return ParseAddress(option->results().at(0)).value();
}

CLI::Option *AddKey(CLI::App &app, const std::string &names, const RecordDescription &description,
                    const std::string &help)
{
    return app.add_option(names, help)
        ->type_name(KeyShape(description))
        ->check([&description](const std::string &text) {
            std::vector<std::byte> scratch(description.size);
            return ParseKey(description, text, scratch.data());
        });
}

std::string TextValue(const CLI::Option *option)
{
    return option == nullptr || option->count() == 0 ? std::string{} : option->results().at(0);
}

AuthKey::~AuthKey()
{
    explicit_bzero(bytes_.data(), bytes_.size());
}

void AuthKey::Read(const std::string &name)
{
    const std::unique_ptr<FILE, FileCloser> file(name == "-" ? stdin : std::fopen(name.c_str(), "rbe"));
    if (file == nullptr)
        throw UsageError(fmt::format("--key-file: {}: {}", name, std::strerror(errno)));
    (void)std::setvbuf(file.get(), nullptr, _IONBF, 0); // no copy of a key stays in a buffer
    const size_t size = std::fread(bytes_.data(), 1, bytes_.size(), file.get());
    const int behind = size == bytes_.size() ? std::fgetc(file.get()) : EOF;
    const bool lineEnd = behind == '\n' && std::fgetc(file.get()) == EOF;
    if (std::ferror(file.get()) != 0)
        throw UsageError(fmt::format("--key-file: {}: {}", name, std::strerror(errno)));
    if (behind != EOF && !lineEnd)
        throw UsageError(fmt::format("--key-file: {}: a key has at most {} bytes", name, bytes_.size()));
    const bool ownLineEnd = size > 0 && size < bytes_.size() && bytes_[size - 1] == '\n';
    if (size == (ownLineEnd ? 1U : 0U))
        throw UsageError(fmt::format("--key-file: {}: there is no key in it", name));
    if (ownLineEnd)
        bytes_[size - 1] = 0;
}

} // namespace rsvpctl
