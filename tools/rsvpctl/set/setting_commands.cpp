// `set` and `undo`: one command a setting, made from the table of settings. A setting that exists at several levels
// is one command, and --interface and --peer choose the row.
#include "tools/rsvpctl/command/run.h"
#include "tools/rsvpctl/print/usage_error.h"
#include "tools/rsvpctl/set/commands.h"
#include "tools/rsvpctl/set/settings.h"
#include "tools/rsvpctl/set/verify.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

/** One command: the rows of the table that it stands for, and where its arguments are. */
struct SettingCommand {
    std::vector<const Setting *> rows;
    bool undo = false;
    Option ifIndex;
    Option peer;
    Option number;
    Option secondNumber;
    Option keyFile;
};

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
    if (command.ifIndex.IsGiven())
        return " for interface " + command.ifIndex.Text();
    return command.peer.IsGiven() ? " for peer " + command.peer.Text() : std::string{};
}

// The row that the options choose. An undo that exists at one level need not exist at another.
const Setting &Chosen(const SettingCommand &command)
{
    const Level level = command.ifIndex.IsGiven() ? Level::Interface
                        : command.peer.IsGiven()  ? Level::Peer
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
    arguments.ifIndex = command.ifIndex.Number();
    arguments.peer = command.peer.Address();
    arguments.number = command.number.Number();
    arguments.secondNumber = command.secondNumber.Number();
    if (command.keyFile.IsGiven())
        arguments.key.Read(command.keyFile.Text());
    if (command.undo && row.undo == Undo::Number && !command.number.IsGiven())
        throw UsageError(fmt::format("undo {}: give the {} to go back to", row.name, row.argument));
}

// What was asked for, without any key: this is printed.
std::string Asked(const SettingCommand &command, const Setting &row)
{
    std::string numbers = command.number.Text();
    if (command.secondNumber.IsGiven())
        numbers += " " + command.secondNumber.Text();
    if (IsLevelItself(row))
        return (row.level == Level::Interface ? command.ifIndex : command.peer).Text();
    const std::string where = Where(command);
    return numbers.empty() && !where.empty() ? where.substr(1) : numbers + where;
}

Exit RunSetting(Output &out, const std::string &operation, const SettingCommand &command)
{
    const Setting &row = Chosen(command);
    SettingArguments arguments;
    ReadArguments(command, row, arguments);
    const uint32_t status = row.apply(command.undo ? 1 : 0, arguments);
    return ReportChange(out, {operation, row.function, Asked(command, row), status});
}

// The command that takes a setting back.
std::string UndoOf(const SettingCommand &command, const Setting &row)
{
    if (IsLevelItself(row))
        return fmt::format("undo {} {}", row.name, Asked(command, row));
    const std::string level = command.ifIndex.IsGiven() ? " --interface " + command.ifIndex.Text()
                              : command.peer.IsGiven()  ? " --peer " + command.peer.Text()
                                                        : "";
    return fmt::format("undo {}{}", row.name, level);
}

Rehearsal RehearseSetting(const SettingCommand &command)
{
    const Setting &row = Chosen(command);
    SettingArguments arguments;
    ReadArguments(command, row, arguments);
    Rehearsal rehearsal;
    rehearsal.requests = {RequestOf(row, arguments)};
    if (command.undo)
        return rehearsal;
    if (row.undo == Undo::Sent)
        rehearsal.undo = UndoOf(command, row);
    else
        rehearsal.noUndo = fmt::format("set the {} that it has now again", row.argument);
    return rehearsal;
}

void AddOptions(const Node &node, SettingCommand &command)
{
    const Setting &first = *command.rows.front();
    const bool several = command.rows.size() > 1;
    const bool ofInterface = RowAt(command.rows, Level::Interface) != nullptr;
    if (ofInterface)
        command.ifIndex = node.AddNumber(IsLevelItself(first) ? "ifIndex,--interface" : "--interface", UINT32_MAX,
                                         "Interface index")
                              .Required(!several);
    if (RowAt(command.rows, Level::Peer) != nullptr) {
        command.peer = node.AddAddress(IsLevelItself(first) ? "address,--peer" : "--peer", "Peer").Required(!several);
        if (ofInterface)
            command.peer.Excludes(command.ifIndex);
    }
    if (first.argument != nullptr) {
        const std::string argument = first.argument;
        const uint64_t max = MaximumOf(first);
        const std::string unit = first.unit == nullptr ? "" : first.unit;
        const bool pair = first.kind == ValueKind::Pair;
        command.number = node.AddNumber(argument + ",--" + argument, max, pair ? "First number" : first.help, unit)
                             .Required(!command.undo);
        if (pair)
            command.secondNumber = node.AddNumber("second,--second", max, "Second number").Required(!command.undo);
    }
    if (first.kind == ValueKind::Key)
        command.keyFile =
            node.AddFile("--key-file", "File with the key, 1 to 68 bytes, or - for standard input; a line "
                                       "end after a shorter key is dropped")
                .Required(!command.undo);
}

constexpr const char *kMakeKey = "  head -c 48 /dev/urandom | base64 > key.txt\n";

// What can be undone by no message is undone by setting another number.
std::string Example(const Setting &row, bool undo)
{
    const std::string verb = undo && row.undo != Undo::None ? "undo" : "set";
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
        return "  # has no undo: set another number";
    case Undo::Number:
        return "  # takes the number to go back to";
    default:
        return "";
    }
}

void AddVerb(CommandLine &line, const std::string &verb, const std::string &help, const std::string &examples)
{
    const Node group = line.AddGroup(line.Root(), verb, help, examples);
    const bool undo = verb == "undo";
    const auto all = AllSettings();
    for (size_t i = 0; i < all.size();) {
        auto setting = std::make_shared<SettingCommand>();
        setting->undo = undo;
        std::string lines = all[i].kind == ValueKind::Key && !undo ? kMakeKey : "";
        const std::string_view name = all[i].name;
        for (; i < all.size() && all[i].name == name; ++i) {
            setting->rows.push_back(&all[i]);
            lines += (lines.empty() || lines.ends_with('\n') ? "" : "\n") + Example(all[i], undo) +
                     (undo ? UndoNote(all[i]) : "");
        }
        Command &command = line.Add(group, std::string(name), setting->rows.front()->help, lines);
        command.takesSecret = setting->rows.front()->kind == ValueKind::Key;
        AddOptions(command.node, *setting);
        command.run = [&command, setting](Output &out) { return RunSetting(out, command.name, *setting); };
        MakeRehearsable(command, [setting] { return RehearseSetting(*setting); });
    }
}

} // namespace

void AddSettingCommands(CommandLine &line)
{
    AddVerb(line, "set", "Change a setting of the daemon, an interface or a peer",
            "  rsvpctl set refresh-interval 30\n"
            "  rsvpctl set interface 3\n"
            "  rsvpctl set retrans-interval 500 --interface 3\n"
            "  head -c 48 /dev/urandom | base64 > key.txt\n"
            "  rsvpctl set auth-key --key-file key.txt --peer 10.0.0.9");
    AddVerb(line, "undo", "Take a setting back",
            "  rsvpctl undo interface 3\n"
            "  rsvpctl undo bfd --interface 3\n"
            "  rsvpctl undo auth-key --peer 10.0.0.9");
}

} // namespace rsvpctl
