// The top level of a scenario: one reader for each key it may have.
#include "host/daemon/scenario/scenario.h"

#include "host/daemon/scenario/events.h"
#include "host/daemon/scenario/generator.h"
#include "host/daemon/scenario/network.h"
#include "host/daemon/scenario/rows.h"

#include <filesystem>
#include <fmt/format.h>
#include <fstream>

namespace rsvpsimd {

namespace {

constexpr size_t kMostText = 64UL << 20; // a device has no end
void AddRow(Table &rows, const Node::Table &table)
{
    if (!rows.Insert(EncodeRow(rows.Kind(), ReadRow(table, rows.Kind()))))
        throw std::invalid_argument("another row has the same key");
}

void ReadCounters(Device &device, const Node::Table &table)
{
    for (const auto &[name, number] : ReadCounts(table))
        device.SetCount(name, number);
}

void ReadRowCounts(Device &device, const Node::Table &table)
{
    for (const Member &member : table) {
        try {
            MakeRows(device, member.name, static_cast<uint32_t>(NumberIn(member, kMostRows)));
        } catch (const std::invalid_argument &error) {
            Refuse(member.line, member.name, error.what());
        }
    }
}

// False if the member is not part of a selector.
bool ReadSelector(Selector &selector, const Member &member)
{
    if (member.name == "class")
        selector.msgClass = static_cast<uint8_t>(NumberIn(member, 0xFF));
    else if (member.name == "op")
        selector.op = static_cast<uint8_t>(NumberIn(member, 0xFF));
    else if (member.name == "item")
        selector.item = static_cast<uint16_t>(NumberIn(member, 0xFFFF));
    else
        return false;
    return true;
}

Fault ReadFault(const Node::Table &table)
{
    std::string kind;
    std::optional<uint64_t> number;
    for (const Member &member : table) {
        if (const auto *text = member.node.As<std::string>(); text != nullptr && member.name == "kind")
            kind = *text;
        else if (member.name == "number")
            number = NumberIn(member, 0xFFFFFFFF);
    }
    Fault fault = MakeFault(kind, number);
    for (const Member &member : table) {
        if (member.name == "kind" || member.name == "number")
            continue;
        const auto *once = member.node.As<bool>();
        if (once != nullptr && member.name == "once")
            fault.strikes = *once ? 1 : 0;
        else if (!SetPart(fault, member.name, NumberIn(member, 0xFFFFFFFF)))
            Refuse(member.line, member.name, kNoSuchKey);
    }
    return fault;
}

Refusal ReadRefusal(const Node::Table &table)
{
    Refusal refusal;
    for (const Member &member : table) {
        if (member.name == "status")
            refusal.status = static_cast<uint32_t>(NumberIn(member, 0xFFFFFFFF));
        else if (!ReadSelector(refusal.requests, member))
            Refuse(member.line, member.name, kNoSuchKey);
    }
    if (refusal.status == 0)
        throw std::invalid_argument("needs a status that is not 0");
    return refusal;
}

void ReadGenerate(Device &device, const Node::Table &table)
{
    for (const Member &member : table) {
        if (member.name != "network")
            Refuse(member.line, member.name, kNoSuchKey);
        NetworkPlan plan;
        for (const Member &number : AsTable(member.node, member.name)) {
            const auto *known = std::ranges::find(kNetworkNumbers, number.name, &NetworkNumber::name);
            if (known == kNetworkNumbers.end())
                Refuse(number.line, number.name, kNoSuchKey);
            plan.*known->member = NumberIn(number, known->most);
            if (plan.*known->member < known->least)
                Refuse(number.line, number.name, fmt::format("must be at least {}", known->least));
        }
        try {
            AddNetwork(device, plan);
        } catch (const std::invalid_argument &error) {
            Refuse(member.line, member.name, error.what());
        }
    }
}

Behaviour ReadTop(Device &device, const Node &document)
{
    Behaviour behaviour;
    for (const Member &member : AsTable(document, "")) {
        const std::string &name = member.name;
        const Node &node = member.node;
        const RowKind *kind = FindRowKind(name);
        if (kind != nullptr && kind->name == name)
            ForEachTable(member, [&](const auto &table, size_t) { AddRow(device.Rows(*kind), table); });
        else if (name == "global")
            device.SetGlobal(ReadRecord(AsTable(node, name), "globalInfo"));
        else if (name == "debug")
            device.SetDebug(ReadRecord(AsTable(node, name), "debugInfo"));
        else if (name == "counters")
            ReadCounters(device, AsTable(node, name));
        else if (name == "rows")
            ReadRowCounts(device, AsTable(node, name));
        else if (name == "generate")
            ReadGenerate(device, AsTable(node, name));
        else if (name == "fault")
            ForEachTable(member, [&](const auto &table, size_t) { behaviour.faults.push_back(ReadFault(table)); });
        else if (name == "event")
            ForEachTable(member,
                         [&](const auto &table, size_t line) { behaviour.events.push_back(ReadEvent(table, line)); });
        else if (name == "refuse")
            ForEachTable(member,
                         [&](const auto &table, size_t) { behaviour.refusals.push_back(ReadRefusal(table)); });
        else if (const auto *trace = node.As<bool>(); trace != nullptr && name == "trace")
            behaviour.trace = *trace;
        else if (const auto *capture = node.As<bool>(); capture != nullptr && name == "capture")
            behaviour.capture = *capture;
        else
            Refuse(member.line, name, kNoSuchKey);
    }
    return behaviour;
}

} // namespace

Behaviour ReadScenario(Device &device, const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path))
        throw ScenarioError(fmt::format("{}: the file cannot be opened", path));
    std::string text;
    for (std::array<char, 65536> part; file.read(part.data(), part.size()), file.gcount() > 0;) {
        text.append(part.data(), static_cast<size_t>(file.gcount()));
        if (text.size() > kMostText)
            throw ScenarioError(fmt::format("{}: the file has more than {} bytes", path, kMostText));
    }
    if (file.bad())
        throw ScenarioError(fmt::format("{}: the file cannot be read", path));
    return ReadScenarioText(device, text, path);
}

Behaviour ReadScenarioText(Device &device, std::string_view text, const std::string &fileName)
{
    try {
        return ReadTop(device, ParseDocument(text));
    } catch (const Mistake &mistake) {
        if (mistake.Line() == 0)
            throw ScenarioError(fmt::format("{}: {}", fileName, mistake.what()));
        throw ScenarioError(fmt::format("{}:{}: {}", fileName, mistake.Line(), mistake.what()));
    }
}

} // namespace rsvpsimd
