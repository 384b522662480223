// The top level of a scenario: one reader for each key that it may have.
#include "scenario.h"

#include "generator.h"
#include "scenario_rows.h"

#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iterator>

namespace rsvpsimd {

namespace {

const toml::table &AsTable(const toml::node &node, std::string_view key)
{
    if (!node.is_table())
        Refuse(node.source(), key, "must be a table");
    return *node.as_table();
}

template <typename Reader> void ForEachTable(const toml::node &node, std::string_view key, const Reader &read)
{
    if (!node.is_array())
        Refuse(node.source(), key, fmt::format("must be an array of tables, as in [[{}]]", key));
    for (const toml::node &element : *node.as_array())
        read(AsTable(element, key));
}

void ReadRows(Device &device, const toml::node &node, const RowKind &kind)
{
    ForEachTable(node, kind.name, [&](const toml::table &table) {
        try {
            if (!device.Rows(kind).Insert(EncodeRow(kind, ReadRow(table, kind))))
                Refuse(table.source(), kind.name, "another row has the same key");
        } catch (const std::invalid_argument &error) {
            Refuse(table.source(), kind.name, error.what());
        }
    });
}

void ReadCounters(Device &device, const toml::node &node)
{
    const auto counts = AllCounts();
    for (const auto &[key, value] : AsTable(node, "counters")) {
        if (std::ranges::find(counts, key.str(), &Count::name) == counts.end())
            Refuse(key.source(), key.str(), "there is no such count");
        device.SetCount(key.str(), static_cast<std::uint32_t>(ReadNumber(value, key.str(), 0xFFFFFFFF)));
    }
}

void ReadRowCounts(Device &device, const toml::node &node)
{
    for (const auto &[key, value] : AsTable(node, "rows")) {
        try {
            MakeRows(device, fmt::format("{}={}", key.str(), ReadNumber(value, key.str(), kMostRows)));
        } catch (const std::invalid_argument &error) {
            Refuse(key.source(), key.str(), error.what());
        }
    }
}

// The same words as on the command line, one key each: kind = "late", number = 200, class = 3, once = true.
Fault ReadFault(const toml::table &table)
{
    std::string kind;
    std::string selectors;
    for (const auto &[key, value] : table) {
        if (key.str() == "kind")
            kind.insert(0, value.value_or(std::string()));
        else if (key.str() == "number")
            kind += fmt::format("={}", ReadNumber(value, "number", 0xFFFFFFFF));
        else if (key.str() == "once" && value.is_boolean())
            selectors += *value.value<bool>() ? ",once" : ",always";
        else
            selectors += fmt::format(",{}={}", key.str(), ReadNumber(value, key.str(), 0xFFFF));
    }
    try {
        return ParseFault(kind + selectors);
    } catch (const std::invalid_argument &error) {
        Refuse(table.source(), "fault", error.what());
    }
}

Refusal ReadRefusal(const toml::table &table)
{
    Refusal refusal;
    for (const auto &[key, value] : table) {
        if (key.str() == "class")
            refusal.msgClass = static_cast<std::uint8_t>(ReadNumber(value, key.str(), 0xFF));
        else if (key.str() == "op")
            refusal.op = static_cast<std::uint8_t>(ReadNumber(value, key.str(), 0xFF));
        else if (key.str() == "item")
            refusal.item = static_cast<std::uint16_t>(ReadNumber(value, key.str(), 0xFFFF));
        else if (key.str() == "status")
            refusal.status = static_cast<std::uint32_t>(ReadNumber(value, key.str(), 0xFFFFFFFF));
        else
            Refuse(key.source(), key.str(), "there is no such key");
    }
    if (refusal.status == kOk)
        Refuse(table.source(), "refuse", "needs a status that is not 0");
    return refusal;
}

bool ReadTop(Daemon &daemon, const toml::table &top)
{
    bool trace = false;
    for (const auto &[key, node] : top) {
        const std::string_view name = key.str();
        const RowKind *kind = FindRowKind(name);
        if (kind != nullptr && kind->name == name)
            ReadRows(daemon.GetDevice(), node, *kind);
        else if (name == "global")
            daemon.GetDevice().SetGlobal(ReadRecord(AsTable(node, name), "globalInfo"));
        else if (name == "debug")
            daemon.GetDevice().SetDebug(ReadRecord(AsTable(node, name), "debugInfo"));
        else if (name == "counters")
            ReadCounters(daemon.GetDevice(), node);
        else if (name == "rows")
            ReadRowCounts(daemon.GetDevice(), node);
        else if (name == "fault")
            ForEachTable(node, name, [&](const toml::table &table) { daemon.Add(ReadFault(table)); });
        else if (name == "refuse")
            ForEachTable(node, name, [&](const toml::table &table) { daemon.Add(ReadRefusal(table)); });
        else if (name == "trace" && node.is_boolean())
            trace = *node.value<bool>();
        else
            Refuse(key.source(), name, "there is no such key");
    }
    return trace;
}

// What the parser makes of other characters is not defined in all cases, and a scenario needs none.
void RefuseOtherThanText(std::string_view text)
{
    std::size_t line = 1;
    for (const char c : text) {
        line += c == '\n' ? 1 : 0;
        if ((c < ' ' && c != '\t' && c != '\n' && c != '\r') || c > '~')
            throw ScenarioError(fmt::format("{}: a scenario is plain ASCII text, and here is a byte 0x{:02x}", line,
                                            static_cast<unsigned char>(c)));
    }
}

} // namespace

bool ReadScenario(Daemon &daemon, const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path))
        throw ScenarioError(fmt::format("{}: the file cannot be opened", path));
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return ReadScenarioText(daemon, text, path);
}

bool ReadScenarioText(Daemon &daemon, std::string_view text, const std::string &fileName)
{
    try {
        RefuseOtherThanText(text);
        return ReadTop(daemon, toml::parse(text));
    } catch (const toml::parse_error &error) {
        throw ScenarioError(fmt::format("{}:{}: {}", fileName, error.source().begin.line, error.description()));
    } catch (const NoToml &) {
        throw ScenarioError(fmt::format("{}: this is not TOML, and the parser cannot say where", fileName));
    } catch (const ScenarioError &error) {
        throw ScenarioError(fmt::format("{}:{}", fileName, error.what()));
    }
}

} // namespace rsvpsimd
