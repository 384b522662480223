// `set` and `undo`: one command a setting, made from the table of settings. A setting that exists at several levels
// is one command, and --interface and --peer choose the row.
#include "command_line.h"
#include "settings.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

/** One command: the rows of the table that it stands for, and where its arguments are. */
struct SettingCommand {
    std::vector<const Setting *> rows;
    bool undo = false;
    const CLI::Option *ifIndex = nullptr;
    const CLI::Option *peer = nullptr;
    const CLI::Option *number = nullptr;
    const CLI::Option *secondNumber = nullptr;
    const CLI::Option *keyFile = nullptr;
};

bool IsGiven(const CLI::Option *option)
{
    return option != nullptr && option->count() != 0;
}

// "set interface 3" and "set peer A": the interface or the peer is what is set, not where.
bool IsLevelItself(const Setting &row)
{
    const std::string_view name = row.name;
    return name == "interface" || name == "peer";
}

const Setting *RowAt(const std::vector<const Setting *> &rows, Level level)
{
    for (const Setting *row : rows)
        if (row->level == level)
            return row;
    return nullptr;
}

std::string Where(const SettingCommand &command)
{
    if (IsGiven(command.ifIndex))
        return " for interface " + TextValue(command.ifIndex);
    return IsGiven(command.peer) ? " for peer " + TextValue(command.peer) : std::string{};
}

// The row that the options choose. An undo that exists at one level need not exist at another.
const Setting &Chosen(const SettingCommand &command)
{
    const Level level = IsGiven(command.ifIndex) ? Level::Interface
                        : IsGiven(command.peer)  ? Level::Peer
                                                 : Level::Global;
    const Setting *row = RowAt(command.rows, level);
    if (row == nullptr)
        throw UsageError(fmt::format("{}: name the {}", command.rows.front()->name,
                                     RowAt(command.rows, Level::Interface) != nullptr ? "interface with --interface N"
                                                                                      : "peer with --peer A.B.C.D"));
    if (command.undo && row->undo == Undo::None)
        throw UsageError(fmt::format("undo {}{}: the daemon cannot take it back; set the {} that you want instead",
                                     row->name, Where(command), row->argument));
    return *row;
}

void ReadArguments(const SettingCommand &command, const Setting &row, SettingArguments &arguments)
{
    arguments.undo = command.undo;
    arguments.ifIndex = IsGiven(command.ifIndex) ? NumberValue(command.ifIndex) : 0;
    arguments.peer = IsGiven(command.peer) ? AddressValue(command.peer) : 0;
    arguments.number = IsGiven(command.number) ? NumberValue(command.number) : 0;
    arguments.secondNumber = IsGiven(command.secondNumber) ? NumberValue(command.secondNumber) : 0;
    if (IsGiven(command.keyFile))
        arguments.key.Read(TextValue(command.keyFile));
    if (command.undo && row.undo == Undo::Number && !IsGiven(command.number))
        throw UsageError(fmt::format("undo {}: give the {} to go back to", row.name, row.argument));
}

// What was asked for, without any key: this is printed.
std::string Asked(const SettingCommand &command, const Setting &row)
{
    std::string numbers = TextValue(command.number);
    if (IsGiven(command.secondNumber))
        numbers += " " + TextValue(command.secondNumber);
    if (IsLevelItself(row))
        return TextValue(row.level == Level::Interface ? command.ifIndex : command.peer);
    const std::string where = Where(command);
    return numbers.empty() && !where.empty() ? where.substr(1) : numbers + where;
}

Exit RunSetting(Output &out, const std::string &operation, const SettingCommand &command)
{
    const Setting &row = Chosen(command);
    SettingArguments arguments;
    ReadArguments(command, row, arguments);
    const std::string asked = Asked(command, row);
    const uint32_t status = row.apply(command.undo ? 1 : 0, arguments);
    return status == RSVP_MOR_OK ? out.Done(operation, asked) : out.Failed({operation, row.function, asked, status});
}

std::vector<WireRequest> RequestsOfSetting(const SettingCommand &command)
{
    const Setting &row = Chosen(command);
    SettingArguments arguments;
    ReadArguments(command, row, arguments);
    return {RequestOf(row, arguments)};
}

void AddOptions(CLI::App &app, SettingCommand &command)
{
    const Setting &first = *command.rows.front();
    const bool several = command.rows.size() > 1;
    CLI::Option *ifIndex = nullptr;
    if (RowAt(command.rows, Level::Interface) != nullptr) {
        const std::string names = IsLevelItself(first) ? "ifIndex,--interface" : "--interface";
        ifIndex = AddNumber(app, names, UINT32_MAX, "Interface index")->required(!several);
    }
    CLI::Option *peer = nullptr;
    if (RowAt(command.rows, Level::Peer) != nullptr) {
        peer = AddAddress(app, IsLevelItself(first) ? "address,--peer" : "--peer", "Peer")->required(!several);
        if (ifIndex != nullptr)
            peer->excludes(ifIndex);
    }
    command.ifIndex = ifIndex;
    command.peer = peer;
    if (first.argument != nullptr) {
        const std::string argument = first.argument;
        const uint64_t max = MaximumOf(first.kind);
        command.number = AddNumber(app, argument + ",--" + argument, max, first.help)->required(!command.undo);
        if (first.kind == ValueKind::Pair)
            command.secondNumber = AddNumber(app, "second,--second", max, "Second number")->required(!command.undo);
    }
    if (first.kind == ValueKind::Key)
        command.keyFile =
            app.add_option("--key-file")
                ->description("File with the key, at most 68 bytes, or - for standard input; a line end "
                              "behind a shorter key is dropped")
                ->type_name("FILE")
                ->required(!command.undo);
}

std::string Example(const std::string &verb, const Setting &row)
{
    const bool numbers = row.argument != nullptr && (verb == "set" || row.undo == Undo::Number);
    std::string text = "  rsvpctl " + verb + " " + row.name;
    if (IsLevelItself(row))
        return text + (row.level == Level::Interface ? " 3" : " 10.0.0.9");
    if (numbers)
        text += row.kind == ValueKind::Pair ? " 500 2" : " 30";
    if (row.kind == ValueKind::Key && verb == "set")
        text += " --key-file key.txt";
    return text + (row.level == Level::Interface ? " --interface 3"
                   : row.level == Level::Peer    ? " --peer 10.0.0.9"
                                                 : "");
}

std::string UndoNote(const Setting &row)
{
    switch (row.undo) {
    case Undo::None:
        return "  (cannot be taken back; set another number)";
    case Undo::Number:
        return "  (takes the number to go back to)";
    default:
        return "";
    }
}

void AddVerb(CommandLine &line, const std::string &verb, const std::string &help, const std::string &examples)
{
    CLI::App &group = line.AddGroup(line.Root(), verb, help, examples);
    const bool undo = verb == "undo";
    const auto all = AllSettings();
    for (size_t i = 0; i < all.size();) {
        auto setting = std::make_shared<SettingCommand>();
        setting->undo = undo;
        std::string lines;
        const std::string_view name = all[i].name;
        for (; i < all.size() && all[i].name == name; ++i) {
            setting->rows.push_back(&all[i]);
            lines += (lines.empty() ? "" : "\n") + Example(verb, all[i]) + (undo ? UndoNote(all[i]) : "");
        }
        Command &command = line.Add(group, std::string(name), setting->rows.front()->help, lines);
        AddOptions(*command.parser, *setting);
        command.run = [&command, setting](Output &out) { return RunSetting(out, command.name, *setting); };
        command.requests = [setting] { return RequestsOfSetting(*setting); };
    }
}

} // namespace

void AddSettingCommands(CommandLine &line)
{
    AddVerb(line, "set", "Change a setting of the daemon, an interface or a peer",
            "  rsvpctl set refresh-interval 30\n"
            "  rsvpctl set interface 3\n"
            "  rsvpctl set retrans-interval 500 --interface 3\n"
            "  rsvpctl set auth-key --key-file key.txt --peer 10.0.0.9");
    AddVerb(line, "undo", "Take a setting back",
            "  rsvpctl undo interface 3\n"
            "  rsvpctl undo bfd --interface 3\n"
            "  rsvpctl undo auth-key --peer 10.0.0.9");
}

} // namespace rsvpctl
