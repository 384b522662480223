// Documents come in a few forms, which differ in their members; the operation of a document says which record or rows
// it holds. Objects are closed: a member that is not in the schema is a fault of the tool. Programs of others are
// better served by the open form, which documents with more keys than today's satisfy too; schema/1.json is one.
#include "tools/rsvpctl/show/schema.h"

#include "manager/dictionary/standard.h"
#include "manager/record/text.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/show/commands.h"
#include "tools/rsvpctl/show/shows.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::Condition, manager::Describe, manager::Field, manager::FieldKind, manager::Json,
    manager::RecordDescription, manager::RecordMeanings;

// Says in what a number is counted. Validators pass over keywords that they do not know.
constexpr const char *kUnit = "unit";

Json Reference(const std::string &name)
{
    return {{"$ref", "#/$defs/" + name}};
}

Json Integer(uint64_t maximum)
{
    return {{"type", "integer"}, {"minimum", 0}, {"maximum", maximum}};
}

Json Text()
{
    return {{"type", "string"}};
}

Json OneOfTexts(const std::vector<std::string> &texts)
{
    return {{"enum", texts}};
}

Json Pattern(const std::string &pattern)
{
    return {{"type", "string"}, {"pattern", pattern}};
}

Json ArrayOf(Json items)
{
    return {{"type", "array"}, {"items", std::move(items)}};
}

Json NullOr(Json schema)
{
    return {{"anyOf", {{{"type", "null"}}, std::move(schema)}}};
}

/** A closed object; each member is required unless it is among `optional`. */
Json Object(const Json &members, const std::vector<std::string> &optional = {})
{
    Json required = Json::array();
    for (const auto &[name, schema] : members.items()) {
        if (std::find(optional.begin(), optional.end(), name) == optional.end())
            required.push_back(name);
    }
    return {{"type", "object"},
            {"properties", members},
            {"required", std::move(required)},
            {"additionalProperties", false}};
}

Json ElementSchema(const Field &field)
{
    switch (field.kind) {
    case FieldKind::Number:
    case FieldKind::NetNumber:
        return field.width == sizeof(uint64_t) ? Pattern("^[0-9]{1,20}$") : Integer(manager::MaximumOf(field.width));
    case FieldKind::Address:
    case FieldKind::NetAddress:
        return Reference("address");
    case FieldKind::Bytes:
        return Pattern("^[0-9a-f]{" + std::to_string(field.width * 2) + "}$");
    case FieldKind::Rate:
    case FieldKind::Float:
        return Reference("rate");
    case FieldKind::Secret:
        return OneOfTexts({"hidden", ""});
    case FieldKind::Text:
        return NullOr(Text());
    default:
        return Reference(field.record->name);
    }
}

bool IsArray(const Field &field)
{
    return field.count != 0 || field.kind == FieldKind::List || field.kind == FieldKind::Chain;
}

Json FieldSchema(const Field &field)
{
    Json schema = ElementSchema(field);
    if (field.unit != nullptr)
        schema[kUnit] = field.unit;
    if (!IsArray(field))
        return schema;
    Json array = ArrayOf(std::move(schema));
    if (field.count != 0) {
        array["minItems"] = field.count;
        array["maxItems"] = field.count;
    }
    return array;
}

Json Properties(Json members)
{
    return {{"properties", std::move(members)}};
}

/** The units that the dictionary gives to the names of a record and of the records inside it; null for none. */
Json UnitsOf(const RecordDescription &description, const RecordMeanings &meanings)
{
    Json members;
    Json named;
    for (const manager::Meaning &meaning : meanings.own) {
        if (!meaning.unit.empty())
            named[meaning.name] = {{kUnit, meaning.unit}};
    }
    if (!named.is_null())
        members["named"] = Properties(std::move(named));
    for (const Field &field : description.fields) {
        const Json inside = field.record == nullptr ? Json() : UnitsOf(*field.record, meanings.Inside(field.name));
        if (!inside.is_null())
            members[field.name] = IsArray(field) ? Json{{"items", inside}} : inside;
    }
    return members.is_null() ? Json() : Properties(std::move(members));
}

/** In what the value of an ADSPEC's parameter is counted, which depends on the parameter. */
Json UnitsOfParameters()
{
    Json units = Json::array();
    for (const manager::AdspecParameter &known : manager::KnownParameters())
        units.push_back({{"if", Properties({{"named", Properties({{"parameter", {{"const", known.name}}}})}})},
                         {"then", Properties({{"named", Properties({{"value", {{kUnit, known.unit}}}})}})}});
    return units;
}

// A field may be described twice, once for records with a certain tag and once for all others; then it is always
// there. If it is described for one of the two alone, it may be missing, as may quiet fields and what is said beside
// the fields.
Json RecordSchema(const RecordDescription &description)
{
    Json members = Json::object();
    std::map<std::string, int> conditions;
    for (const Field &field : description.fields) {
        conditions[field.name] += field.condition.test == Condition::Test::Always ? 2 : 1;
        members[field.name] = FieldSchema(field);
        if (field.isQuiet)
            conditions[field.name] = 0;
        if (field.kind == FieldKind::Text) {
            conditions[field.name + std::string("Bytes")] = 0;
            members[field.name + std::string("Bytes")] = Pattern("^([0-9a-f]{2})+$");
        }
    }
    std::vector<std::string> optional{"named"};
    for (const auto &[name, seen] : conditions) {
        if (seen < 2)
            optional.push_back(name);
    }
    members["named"] = Reference("named");
    Json schema = Object(members, optional);
    Json units = &description == &Describe<RSVP_MOR_AdspecParam>() ? UnitsOfParameters() : Json::array();
    if (Json ofNames = UnitsOf(description, Names().Of(description)); !ofNames.is_null())
        units.push_back(std::move(ofNames));
    if (!units.empty())
        schema["allOf"] = std::move(units);
    return schema;
}

Json StatusMembers()
{
    return {{"status", Integer(UINT32_MAX)},
            {"statusName", Text()},
            {"exitStatus", {{"anyOf", {Integer(7), {{"const", static_cast<int>(Exit::Interrupted)}}}}}}};
}

Json End()
{
    return OneOfTexts({"end of table", "stuck", "no key", "limit", "broken", "interrupted"});
}

const std::map<std::string, Json> &MembersOfAnswers()
{
    static const std::map<std::string, Json> members{
        {"schemaVersion", {{"const", kSchemaVersion}}},
        {"line", Integer(UINT64_MAX)},
        {"operation", Text()},
        {"asked", Text()},
        {"record", {{"type", "object"}}},
        {"requests", ArrayOf(Reference("request"))},
        {"function", Text()},
        {"stage", OneOfTexts({"local", "open", "send", "receive", "reply", "refused", "verify"})},
        {"seconds", {{"type", "number"}, {"minimum", 0}, {kUnit, "s"}}},
        {"whatHappened", Text()},
        {"likelyCause", Text()},
        {"whatToDo", Text()},
        {"undo", NullOr(Text())},
        {"after", NullOr(Text())},
        {"error", Text()},
        {"rows", ArrayOf({{"type", "object"}})},
        {"count", Integer(UINT64_MAX)},
        {"complete", {{"type", "boolean"}}},
        {"end", End()},
        {"tables", ArrayOf(Reference("tableEnd"))},
        {"file", Text()},
    };
    return members;
}

/** The members that make a form, besides those that all documents have. */
Json Form(const char *title, const std::vector<std::string> &own)
{
    std::vector<std::string> names{"schemaVersion", "line", "operation", "status", "statusName", "exitStatus"};
    names.insert(names.end(), own.begin(), own.end());
    return {{"title", title}, {"required", own}, {"propertyNames", OneOfTexts(names)}};
}

Json Forms()
{
    return {
        Form("a command that was done", {"asked"}),
        Form("one record", {"record"}),
        Form("what a command would send", {"requests", "undo"}),
        Form("an operation that failed",
             {"function", "asked", "stage", "seconds", "whatHappened", "likelyCause", "whatToDo"}),
        Form("an error in words of its own", {"error"}),
        Form("the rows of a walk", {"rows", "count", "complete", "end", "function"}),
        Form("the rows of a walk that did not come to its end",
             {"rows", "count", "complete", "end", "function", "after", "whatHappened", "likelyCause", "whatToDo"}),
        Form("rows joined from tables", {"rows", "count", "complete", "tables"}),
        Form("a list", {"rows", "count", "complete"}),
        Form("the lines of a batch", {"file", "rows", "count", "complete"})};
}

Json Rule(const std::string &operation, Json record, Json row)
{
    return {{"if", {{"properties", {{"operation", {{"const", operation}}}}}}},
            {"then", {{"properties", {{"record", std::move(record)}, {"rows", ArrayOf(std::move(row))}}}}}};
}

Json RecordOf(const ShowSpec &show)
{
    return Reference(show.table == nullptr ? "counters" : show.table->row().name);
}

/** Which record and which rows an operation gives. */
Json Rules()
{
    Json rules = Json::array();
    for (const ShowSpec &show : AllShows())
        rules.push_back(Rule(std::string("show ") + show.words, show.HasRecord() ? RecordOf(show) : Json(false),
                             show.HasRows() ? RecordOf(show) : Json(false)));
    rules.push_back(Rule("show lsp", false, Reference("lsp")));
    rules.push_back(Rule("debug show", Reference(Describe<RSVP_MOR_DebugInfo>().name), false));
    for (const char *name : {"status", "tree", "options"})
        rules.push_back(Rule(name, Reference(name), false));
    for (const char *shell : {"bash", "zsh"})
        rules.push_back(Rule("completion " + std::string(shell), Reference("completion"), false));
    rules.push_back(Rule("completion next", Reference("nextWords"), false));
    for (const char *name : {"help", "version"})
        rules.push_back(Rule(name, Reference(name), false));
    rules.push_back(Rule("dictionary", Reference("dictionaryFile"), Reference("dictionaryRow")));
    rules.push_back(Rule("explain", Reference("statusText"), Reference("statusText")));
    rules.push_back(Rule("batch", false, {{"allOf", {Reference("answer"), {{"required", {"line"}}}}}}));
    return rules;
}

Json Answer()
{
    Json members = Json::object();
    for (const auto &[name, schema] : MembersOfAnswers())
        members[name] = schema;
    members.update(StatusMembers());
    return {{"type", "object"},
            {"properties", std::move(members)},
            {"required", {"operation", "status", "statusName", "exitStatus"}},
            {"anyOf", Forms()},
            {"allOf", Rules()}};
}

/** A line of a watch. Its row is one of the show that the operation names. */
Json Event()
{
    const Json scalar{{"type", {"null", "number", "string", "array", "object"}}};
    const Json change = Object({{"field", Pattern("^/")},
                                {"before", scalar},
                                {"after", scalar},
                                {"perSecond", NullOr({{"type", "number"}, {"minimum", 0}})}});
    Json members{{"schemaVersion", {{"const", kSchemaVersion}}},
                 {"operation", Pattern("^watch (show |status$)")},
                 {"time", Pattern("^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3}Z$")}};
    Json rows = members;
    rows.update(
        {{"event", OneOfTexts({"added", "removed"})}, {"key", {{"type", "object"}}}, {"row", {{"type", "object"}}}});
    Json changed = members;
    changed.update({{"event", OneOfTexts({"changed"})},
                    {"key", {{"type", "object"}}},
                    {"changes", ArrayOf(change)},
                    {"row", {{"type", "object"}}}});
    Json state = members;
    state.update(
        {{"event", OneOfTexts({"failed", "recovered"})}, {"status", Integer(UINT32_MAX)}, {"statusName", Text()}});
    Json rules = Json::array();
    const auto add = [&rules](const std::string &operation, Json row) {
        rules.push_back({{"if", {{"properties", {{"operation", {{"const", operation}}}}}}},
                         {"then", {{"properties", {{"row", std::move(row)}}}}}});
    };
    for (const ShowSpec &show : AllShows())
        add(std::string("watch show ") + show.words, RecordOf(show));
    add("watch show lsp", Reference("lsp"));
    add("watch status", Reference("status"));
    return {{"anyOf", {Object(rows), Object(changed), Object(state)}}, {"allOf", std::move(rules)}};
}

/** The objects that are not records of the library. */
void AddOwnRecords(Json &definitions)
{
    definitions["address"] = {{"type", "string"}, {"format", "ipv4"}};
    definitions["rate"] = {{"anyOf", {{{"type", "number"}}, OneOfTexts({"nan", "inf", "-inf"})}}};
    // What a value is called and what form it has is the dictionary's, of which a document is good under any.
    definitions["named"] = {{"type", "object"},
                            {"additionalProperties",
                             {{"type", {"number", "string", "boolean", "array"}}, {"items", {{"type", "string"}}}}}};
    const Json textOrNull = NullOr(Text());
    definitions["dictionaryFile"] = Object({{"file", Text()}, {"daemon", Text()}});
    definitions["dictionaryRow"] = Object({{"record", Text()},
                                           {"field", Text()},
                                           {"name", Text()},
                                           {"form", Text()},
                                           {"words", NullOr({{"type", "object"}, {"additionalProperties", Text()}})},
                                           {"unit", textOrNull},
                                           {"counter", {{"type", "boolean"}}},
                                           {"mib", textOrNull},
                                           {"setting", textOrNull}});
    definitions["request"] = Object({{"class", Integer(UINT8_MAX)},
                                     {"op", Integer(UINT8_MAX)},
                                     {"items", ArrayOf(Object({{"type", Integer(UINT16_MAX)},
                                                               {"length", Integer(UINT16_MAX)},
                                                               {"value", Pattern("^([0-9a-f]{2}|hidden)*$")},
                                                               {"meaning", Text()}}))}});
    definitions["counters"] = Object({{"frrInterfaces", Integer(UINT32_MAX)},
                                      {"activeFrrInterfaces", Integer(UINT32_MAX)},
                                      {"activeBypassTunnels", Integer(UINT32_MAX)},
                                      {"upLsps", Integer(UINT32_MAX)}});
    definitions["status"] =
        Object({{"service", OneOfTexts({"running", "stopped", "unknown"})},
                {"daemon", OneOfTexts({"answers", "does not answer"})},
                {"upLsps", NullOr(Integer(UINT32_MAX))},
                {"nodes", ArrayOf(Object({{"node", Integer(UINT32_MAX)},
                                          {"role", OneOfTexts({"master", "standby"})},
                                          {"service", OneOfTexts({"running", "stopped", "unknown"})}}))}});
    definitions["statusText"] = Object({{"code", Pattern("^0x[0-9a-f]{8}$")},
                                        {"name", Text()},
                                        {"exitStatus", Integer(7)},
                                        {"likelyCause", Text()},
                                        {"whatToDo", Text()},
                                        {"fromSimulatedDaemon", NullOr(Text())}});
    definitions["completion"] = Object({{"shell", OneOfTexts({"bash", "zsh"})}, {"script", Text()}});
    definitions["nextWords"] =
        Object({{"words", ArrayOf(Object({{"word", Text()}, {"help", Text()}}))}, {"files", {{"type", "boolean"}}}});
    definitions["help"] = Object({{"command", Text()}, {"help", Text()}});
    definitions["version"] = Object({{"version", Text()}});
    definitions["options"] = {{"type", "object"}, {"additionalProperties", NullOr(Integer(UINT32_MAX))}};
    definitions["hop"] = Object({{"address", Reference("address")},
                                 {"label", NullOr(Integer(UINT32_MAX))},
                                 {"leaves", ArrayOf(Reference("address"))},
                                 {"hops", ArrayOf(Reference("hop"))}});
    definitions["tableEnd"] = Object({{"table", Text()},
                                      {"rows", Integer(UINT64_MAX)},
                                      {"end", End()},
                                      {"function", Text()},
                                      {"whatHappened", textOrNull},
                                      {"likelyCause", textOrNull},
                                      {"whatToDo", textOrNull}});
    const Json numberOrNull = NullOr(Integer(UINT32_MAX));
    Json rateOrNull = NullOr(Reference("rate"));
    rateOrNull[kUnit] = "B/s";
    const Json hops = ArrayOf(Reference(Describe<RSVP_MOR_HopEntry>().name));
    definitions["lsp"] =
        Object({{"name", textOrNull},
                {"endPoint", Reference("address")},
                {"tunnelId", Integer(UINT32_MAX)},
                {"extendedTunnelId", Reference("address")},
                {"sender", Reference("address")},
                {"lspId", Integer(UINT32_MAX)},
                {"role", textOrNull},
                {"state", textOrNull},
                {"upTime", NullOr(Integer(UINT64_MAX))},
                {"previousHop", NullOr(Reference("address"))},
                {"labelIn", numberOrNull},
                {"nextHop", NullOr(Reference("address"))},
                {"labelOut", numberOrNull},
                {"interface", numberOrNull},
                {"setupPriority", NullOr(Integer(UINT8_MAX))},
                {"holdingPriority", NullOr(Integer(UINT8_MAX))},
                {"attributes", NullOr(ArrayOf(Text()))},
                {"askedRate", rateOrNull},
                {"reservedRate", rateOrNull},
                {"style", textOrNull},
                {"routes", {{"type", "object"}, {"additionalProperties", ArrayOf(Reference("address"))}}},
                {"recordedBefore", hops},
                {"recordedAfter", hops},
                {"routeHops", hops},
                {"protection", textOrNull},
                {"bypassTunnel", numberOrNull},
                {"bypassName", textOrNull},
                {"facility", ArrayOf(Reference(Describe<RSVP_MOR_ReplyFrrFacility>().name))},
                {"general", ArrayOf(Reference(Describe<RSVP_MOR_ReplyFrrGeneral>().name))},
                {"tables", ArrayOf(Text())}});
    definitions["tree"] = Object({{"title", Text()}, {"leafCount", Integer(UINT32_MAX)}, {"root", Reference("hop")}});
}

/** Lets every object have more members than those that are told. */
void Open(Json &schema)
{
    if (schema.is_object() && schema.value("additionalProperties", Json()) == Json(false))
        schema.erase("additionalProperties");
    if (schema.is_object())
        schema.erase("propertyNames");
    if (const auto members = schema.is_object() ? schema.find("properties") : schema.end(); members != schema.end()) {
        for (auto member = members->begin(); member != members->end();)
            member = member.value() == Json(false) ? members->erase(member) : std::next(member);
    }
    if (schema.is_structured()) {
        for (Json &inside : schema)
            Open(inside);
    }
}

} // namespace

Json JsonSchema(bool isOpen)
{
    Json definitions = Json::object();
    definitions["answer"] = Answer();
    definitions["event"] = Event();
    AddOwnRecords(definitions);
    for (const RecordDescription *record : manager::AllRecords())
        definitions[record->name] = RecordSchema(*record);
    Json schema{
        {"$schema", "https://json-schema.org/draft/2020-12/schema"},
        {"title", fmt::format("Documents of rsvpctl --json, version {}", kSchemaVersion)},
        {"anyOf", {{{"allOf", {Reference("answer"), {{"required", {"schemaVersion"}}}}}}, Reference("event")}},
        {"$defs", std::move(definitions)}};
    if (isOpen)
        Open(schema);
    return schema;
}

void AddSchemaCommand(CommandLine &line)
{
    Command &command = line.Add(line.Root(), "schema", "Print the JSON Schema of what --json prints",
                                "  rsvpctl schema > today.json\n"
                                "  rsvpctl schema --open --dictionary none > frozen.json");
    command.inBatch = false;
    command.mayBeLong = true;
    const Option open =
        command.node.AddFlag("--open", "Let objects have more keys than today's, as those of later versions do");
    command.run = [open](Output &out) { return out.Help(JsonSchema(open.IsGiven()).dump(2) + "\n"); };
}

} // namespace rsvpctl
