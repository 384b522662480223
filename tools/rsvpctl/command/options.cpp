// Options on top of the library that parses command lines. The ranges of numbers come from the width of the field
// that they go into: the library passes numbers through, so a number that was cut on the way would be set as another
// one.
#include "tools/rsvpctl/command/options.h"

#include "manager/record/key.h"
#include "manager/record/text.h"
#include "tools/rsvpctl/command/input_file.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace rsvpctl {
namespace {

using manager::ParseAddress, manager::ParseNumber;

constexpr size_t kLongestKeyFile = 65536;
constexpr int kMostWords = 1000;

// The names of the dictionary are found when a key is read, not when its option is made.
manager::KeyAliases AliasesOf(const KeySpec &key)
{
    return key.table == nullptr ? manager::KeyAliases() : manager::AliasesOf(*key.table, Names());
}

} // namespace

std::string DurationProblem(const std::string &text, std::chrono::milliseconds min, std::chrono::milliseconds max)
{
    const auto duration = manager::ParseDuration(text);
    return duration && *duration >= min && *duration <= max
               ? std::string()
               : fmt::format("takes a duration from {} to {} (500ms, 2s, 1m; a plain number is seconds){}'{}'",
                             manager::DurationText(min), manager::DurationText(max), kButGiven, text);
}

bool Option::IsGiven() const
{
    return option_ != nullptr && option_->count() != 0;
}

std::string Option::Text() const
{
    return IsGiven() ? option_->results().at(0) : std::string{};
}

std::vector<std::string> Option::Words() const
{
    return IsGiven() ? option_->results() : std::vector<std::string>{};
}

uint32_t Option::NumberOr(uint32_t value) const
{
    return IsGiven() ? static_cast<uint32_t>(ParseNumber(Text()).value()) : value;
}

uint32_t Option::Address() const
{
    return IsGiven() ? ParseAddress(Text()).value() : 0;
}

std::chrono::milliseconds Option::DurationOr(std::chrono::milliseconds value) const
{
    return IsGiven() ? manager::ParseDuration(Text()).value() : value;
}

Option Option::Required(bool required) const
{
    option_->required(required);
    return *this;
}

Option Option::Excludes(Option other) const
{
    option_->excludes(other.option_);
    return *this;
}

Option Option::Needs(Option other) const
{
    option_->needs(other.option_);
    return *this;
}

std::string PathOf(const CLI::App &app)
{
    if (app.get_parent() == nullptr)
        return {};
    const std::string before = PathOf(*app.get_parent());
    return before.empty() ? app.get_name() : before + " " + app.get_name();
}

void Node::AddAlias(const std::string &name) const
{
    app_->alias(name);
}

Option Node::AddFlag(const std::string &names, const std::string &help) const
{
    return Option(app_->add_flag(names)->description(help));
}

Option Node::AddFlagWithFile(const std::string &name, const std::string &none, const std::string &help) const
{
    return Option(app_->add_flag(fmt::format("{}{{{}}}", name, none))->description(help));
}

Option Node::AddNumber(const std::string &names, uint64_t max, const std::string &help, const std::string &unit) const
{
    const std::string type = fmt::format("0..{}{}{}", max, unit.empty() ? "" : " ", unit);
    const std::string takes = fmt::format("takes a number {}{}from 0 to {}", unit.empty() ? "" : "of ",
                                          unit.empty() ? "" : unit + " ", max);
    return Option(app_->add_option(names, help)->type_name(type)->check([max, takes](const std::string &text) {
        const auto number = ParseNumber(text);
        return number && *number <= max ? std::string() : fmt::format("{}{}'{}'", takes, kButGiven, text);
    }));
}

Option Node::AddAddress(const std::string &names, const std::string &help) const
{
    return Option(app_->add_option(names, help)->type_name("A.B.C.D")->check([](const std::string &text) {
        return ParseAddress(text) ? std::string()
                                  : fmt::format("takes an IPv4 address (10.0.0.9){}'{}'", kButGiven, text);
    }));
}

Option Node::AddDuration(const std::string &names, std::chrono::milliseconds min, std::chrono::milliseconds max,
                         const std::string &help) const
{
    const auto check = [min, max](const std::string &text) { return DurationProblem(text, min, max); };
    return Option(app_->add_option(names, help)->type_name("DURATION")->check(check));
}

Option Node::AddChoice(const std::string &names, const std::string &type, const std::vector<std::string> &choices,
                       const std::string &help) const
{
    const auto check = [choices](const std::string &text) {
        return std::find(choices.begin(), choices.end(), text) != choices.end()
                   ? std::string()
                   : fmt::format("takes {}{}'{}'", manager::Joined(choices, " or "), kButGiven, text);
    };
    return Option(
        app_->add_option(names, help)->type_name(type)->check(check, "{" + manager::Joined(choices, ",") + "}"));
}

Option Node::AddText(const std::string &names, const std::string &type,
                     std::function<std::string(const std::string &)> check, const std::string &help) const
{
    CLI::Option *option = app_->add_option(names, help)->type_name(type);
    return Option(check == nullptr ? option : option->check(std::move(check)));
}

Option Node::AddWords(const std::string &names, const std::string &type, const std::string &help) const
{
    return Option(app_->add_option(names, help)->type_name(type)->expected(1, kMostWords)->allow_extra_args());
}

Option Node::AddFile(const std::string &names, const std::string &help) const
{
    return Option(app_->add_option(names, help)->type_name("FILE"));
}

Option Node::AddKey(const std::string &names, const KeySpec &key, const std::string &help) const
{
    return Option(app_->add_option(names, help)
                      ->type_name(KeyShape(*key.description))
                      ->check([key](const std::string &text) -> std::string {
                          std::vector<std::byte> scratch(key.description->size);
                          try {
                              ReadKey(*key.description, text, scratch.data(), AliasesOf(key));
                          } catch (const manager::KeyError &error) {
                              return error.what();
                          }
                          return {};
                      }));
}

Option Node::AddKeyWords(const std::string &names, const KeySpec &key, const std::string &help) const
{
    return Option(app_->add_option(names, help)
                      ->type_name("FIELD=VALUE...")
                      ->expected(1, static_cast<int>(Leaves(*key.description).size())));
}

void RequireKey(const KeySpec &key, const std::string &text, void *record)
{
    try {
        ReadKey(*key.description, text, record, AliasesOf(key));
    } catch (const manager::KeyError &error) {
        throw UsageError(std::string("key: ") + error.what());
    }
}

KeyOptions AddKeyOptions(const Node &node, const KeySpec &key, bool isLong)
{
    const Option words =
        !isLong ? node.AddKey("key,--key", key, "One row only")
                : node.AddKeyWords("--key", key,
                                   "The key: every field, or all values in their order (" +
                                       KeyShape(*key.description) + "); a number may be written as an address");
    const Option file =
        node.AddFile("--key-file", "JSON file with the key: an object of field names with values").Excludes(words);
    return {key, words, file};
}

void RequireKey(const KeyOptions &options, void *record)
{
    if (options.words.IsGiven())
        return RequireKey(*options.key, manager::Joined(options.words.Words(), ","), record);
    if (!options.file.IsGiven())
        throw UsageError("key: --key or --key-file is needed");
    const std::string file = options.file.Text();
    try {
        ReadJsonKey(*options.key->description, ReadInput("--key-file", file, kLongestKeyFile), record,
                    AliasesOf(*options.key));
    } catch (const manager::KeyError &error) {
        throw UsageError(fmt::format("--key-file: {}: {}", file, error.what()));
    }
}

} // namespace rsvpctl
