// Prints what the C++ side knows of records, standard meanings, tables, settings and statuses as one JSON document.
// The Python package is made from it, so that it has no list of its own that could fall behind. Places are told by
// the names of fields, not by offsets: the document is the same for every processor.
#include "manager/dictionary/standard.h"
#include "manager/table/tables.h"
#include "tools/rsvpctl/print/statuses.h"
#include "tools/rsvpctl/set/settings.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace {

using manager::Condition, manager::Field, manager::FieldKind, manager::Json, manager::RecordDescription,
    manager::RowRead, manager::Table;

const char *NameOfKind(FieldKind kind)
{
    static constexpr const char *kNames[] = {"number", "address", "netNumber", "netAddress", "bytes", "rate",
                                             "float",  "secret",  "record",    "list",       "chain", "text"};
    return kNames[static_cast<size_t>(kind)];
}

const Field &FieldAt(const RecordDescription &record, uint32_t offset)
{
    return *std::find_if(record.fields.begin(), record.fields.end(), [&](const Field &field) {
        return offset >= field.offset && offset < field.offset + field.width * std::max(field.count, 1U);
    });
}

// Null for what is always there.
Json ConditionToJson(const RecordDescription &record, const Condition &condition)
{
    if (condition.test == Condition::Test::Always)
        return nullptr;
    return {{"field", FieldAt(record, condition.tagOffset).name},
            {"tag", condition.tag},
            {"equal", condition.test == Condition::Test::Equal}};
}

Json FieldToJson(const RecordDescription &record, const Field &field)
{
    return {{"name", field.name},
            {"kind", NameOfKind(field.kind)},
            {"width", field.record == nullptr && field.kind != FieldKind::Text ? Json(field.width) : Json()},
            {"count", field.count},
            {"record", field.record == nullptr ? Json() : Json(field.record->name)},
            {"when", ConditionToJson(record, field.condition)},
            {"quiet", field.isQuiet}};
}

Json StandardToJson(const RecordDescription &record, const manager::StandardMeaning &one)
{
    const Field &field = FieldAt(record, one.meaning.offset);
    Json words = Json::object();
    for (const auto &[number, word] : one.meaning.words)
        words[std::to_string(number)] = word;
    return {{"name", one.meaning.name},
            {"field", field.name},
            {"at", one.meaning.offset - field.offset},
            {"width", one.meaning.width},
            {"form", NameOf(one.meaning.form)},
            {"words", words},
            {"digits", one.digits},
            {"mask", one.mask},
            {"when", ConditionToJson(record, one.condition)}};
}

Json RecordToJson(const RecordDescription &record)
{
    Json fields = Json::array();
    for (const Field &field : record.fields)
        fields.push_back(FieldToJson(record, field));
    Json standard = Json::array();
    for (const manager::StandardMeaning &one : manager::StandardMeaningsOf(record))
        standard.push_back(StandardToJson(record, one));
    return {{"name", record.name}, {"fields", fields}, {"standard", standard}};
}

Json ReadToJson(const RowRead &read)
{
    if (read.function == nullptr)
        return nullptr;
    Json numbers = Json::array();
    for (const uint32_t number : read.numbers) {
        if (number != 0)
            numbers.push_back(number);
    }
    return {{"function", read.function}, {"numbers", numbers}};
}

Json TableToJson(const Table &table)
{
    Json ownKey = Json::array();
    for (const manager::KeyPart &part : table.ownKey) {
        if (part.size != 0)
            ownKey.push_back(PathAt(table.row(), part.offset, part.size));
    }
    return {{"name", table.name},
            {"row", table.row().name},
            {"key", table.key == nullptr ? Json() : Json(table.key().name)},
            {"first", ReadToJson(table.first)},
            {"next", ReadToJson(table.next)},
            {"get", ReadToJson(table.get)},
            {"ownKey", ownKey}};
}

Json SettingToJson(const rsvpctl::Setting &setting)
{
    static constexpr const char *kLevels[] = {"global", "interface", "peer"};
    static constexpr const char *kUndos[] = {"none", "sent", "number"};
    const bool hasNumber = setting.argument != nullptr;
    return {{"name", setting.name},
            {"level", kLevels[static_cast<size_t>(setting.level)]},
            {"argument", hasNumber ? Json(setting.argument) : Json()},
            {"isPair", setting.kind == rsvpctl::ValueKind::Pair},
            {"isKey", setting.kind == rsvpctl::ValueKind::Key},
            {"most", hasNumber ? Json(MaximumOf(setting)) : Json()},
            {"undo", kUndos[static_cast<size_t>(setting.undo)]},
            {"unit", setting.unit == nullptr ? Json() : Json(setting.unit)},
            {"function", setting.function},
            {"help", setting.help}};
}

// What an exchange looks like that failed at each of its stages, or brought this status.
std::vector<manager::Exchange> ExchangesWith(uint32_t status)
{
    using Stage = manager::Exchange::Stage;
    std::vector<manager::Exchange> all(6);
    all[1].stage = Stage::Open;
    all[1].error = ECONNREFUSED;
    all[2].stage = Stage::Send;
    for (size_t i = 3; i < all.size(); ++i)
        all[i].stage = Stage::Receive;
    all[4].received = 1;
    all[5].received = manager::kHeaderSize;
    all[5].reply.status = status;
    return all;
}

// The cause of each status, by the stage at which a call failed; "" is that of a status in general.
Json StatusToJson(const rsvpctl::StatusText &text)
{
    Json causes = {{"", text.cause}};
    for (const manager::Exchange &exchange : ExchangesWith(text.status))
        causes[NameOf(FaultOf(text.status, exchange))] = rsvpctl::Explain(text.status, "", exchange).cause;
    return {{"status", text.status}, {"name", text.name}, {"causes", causes}};
}

Json Everything()
{
    std::vector<const RecordDescription *> records(manager::AllRecords().begin(), manager::AllRecords().end());
    Json tables = Json::array();
    for (const Table *table : manager::AllTables()) {
        tables.push_back(TableToJson(*table));
        if (std::find(records.begin(), records.end(), &table->key()) == records.end())
            records.push_back(&table->key());
    }
    for (const Table *single : manager::AllSingleRecords())
        tables.push_back(TableToJson(*single));
    Json recordsJson = Json::array();
    for (const RecordDescription *record : records)
        recordsJson.push_back(RecordToJson(*record));
    Json settings = Json::array();
    for (const rsvpctl::Setting &setting : rsvpctl::AllSettings())
        settings.push_back(SettingToJson(setting));
    Json statuses = Json::array();
    for (const rsvpctl::StatusText &status : rsvpctl::KnownStatuses())
        statuses.push_back(StatusToJson(status));
    return {{"records", recordsJson},
            {"tables", tables},
            {"settings", settings},
            {"statuses", statuses},
            {"foreignStatus", StatusToJson(rsvpctl::Explain(UINT32_MAX))},
            {"walks", {{"stuck", rsvpctl::StuckText().cause}, {"noKey", rsvpctl::NoKeyText().cause}}}};
}

} // namespace

int main()
{
    std::puts(Everything().dump(1).c_str());
    return std::fflush(stdout) == 0 ? 0 : 1;
}
