// Dictionaries: what is refused of a file, and that the one of the simulated daemon agrees with that daemon, with its
// scenarios and with its document.
#include "host/daemon/device/commands.h"
#include "host/daemon/scenario/scenario.h"
#include "host/directory.h"
#include "manager/dictionary/find.h"
#include "manager/table/tables.h"
#include "manager/table/walk.h"
#include "tests/support/program.h"
#include "tools/rsvpctl/set/settings.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>

namespace {

using manager::Describe, manager::Dictionary, manager::Field, manager::FieldKind, manager::Meaning,
    manager::RecordDescription, manager::RecordMeanings;

// ---- Units ----

// What a public header says to people in words, the description of the record says to programs.
TEST(Records, HaveTheUnitsOfTheirHeaders)
{
    const std::map<std::string, std::string> units{
        {"in words", "words"}, {"bytes", "B"}, {"bytes a second", "B/s"}, {"microseconds", "us"}};
    std::set<std::string> told;
    const std::regex record("typedef struct (\\w+) \\{");
    const std::regex member(" (\\w+)(\\[\\d+\\])?; +/\\*\\*<.*, (in words|bytes|bytes a second|microseconds) \\*/");
    for (const auto &header : std::filesystem::directory_iterator(HEADERS_PATH)) {
        std::ifstream file(header.path());
        std::string name;
        for (std::string line; std::getline(file, line);) {
            std::smatch found;
            if (std::regex_search(line, found, record))
                name = found[1];
            if (std::regex_search(line, found, member))
                told.insert(fmt::format("{}.{} {}", name, found[1].str(), units.at(found[3])));
        }
    }
    std::set<std::string> described;
    for (const RecordDescription *description : manager::AllRecords()) {
        for (const Field &field : description->fields) {
            if (field.unit != nullptr)
                described.insert(fmt::format("{}.{} {}", description->name, field.name, field.unit));
        }
    }
    EXPECT_GE(told.size(), 20U);
    EXPECT_EQ(described, told);
}

// ---- What is refused ----

std::string Refusal(const std::string &text)
{
    try {
        const Dictionary dictionary(text, "d.toml", manager::AllTableShapes());
        return "";
    } catch (const manager::DictionaryError &error) {
        return error.what();
    }
}

TEST(Dictionary, AFileWithAMistakeIsRefusedWithLineAndKey)
{
    const struct {
        const char *text;
        const char *refusal; // as it begins; empty: none
    } files[] = {
        {"", "d.toml:1: dictionary: must be 1"},
        {"dictionary = 2\n", "d.toml:1: dictionary: must be 1"},
        {"dictionary = 1\n", "d.toml:1: daemon: must be the daemon's name"},
        {"dictionary = 1\ndaemon = \"\"\n", "d.toml:2: daemon: must be the daemon's name"},
        {"dictionary = 1\ndaemon = \"d\"\n", "d.toml:1: end-of-table: must be the statuses"},
        {"dictionary = 1\ndaemon = \"d\"\nend-of-table = []\n", "d.toml:3: end-of-table: must be the statuses"},
        {"dictionary = 1\ndaemon = \"d\"\nend-of-table = 5\n", "d.toml:3: end-of-table: must be a list"},
        {"dictionary = 1\ndaemon = \"d\"\nend-of-table = [1, -1]\n",
         "d.toml:3: end-of-table: must be a whole number"},
        {"dictionary = 1\ndaemon = \"\xc3\xa4\"\n", "d.toml:2: the file must be plain ASCII text"},
        {"dictionary = 1\ndaemon =\n", "d.toml:2: "},
        {"dictionary = 1\ndaemon = \"d\"\nend-of-table = [1]\n", ""},
    };
    for (const auto &file : files) {
        const std::string refusal = Refusal(file.text);
        EXPECT_EQ(refusal.substr(0, std::string_view(file.refusal).size()), file.refusal) << file.text << refusal;
        EXPECT_EQ(refusal.empty(), *file.refusal == '\0') << file.text << refusal;
    }
}

TEST(Dictionary, EveryNameFitsItsPlace)
{
    const std::string head = "dictionary = 1\ndaemon = \"d\"\nend-of-table = [1]\n";
    // Each is one table, whose header is line 4; the lines are those below it.
    const struct {
        const char *table;
        const char *lines;
        const char *refusal; // what follows the name of the file; empty: none
    } cases[] = {
        {"other", "a = 1", "4: other: there is no such key here, only dictionary,"},
        {"record.RSVP_MOR_Nothing", "a = 1", "4: RSVP_MOR_Nothing: there is no such record"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord99 = { name = \"x\" }",
         "5: tunnelWord99: RSVP_MOR_ReplyTunnel has"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = \"x\"", "5: tunnelWord0: must be a table"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { unit = \"s\" }", "5: tunnelWord0: has no name"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"two words\" }",
         "5: name: must be letters and digits"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"\" }", "5: name: must be letters and digits"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", colour = 1 }",
         "5: colour: there is no such key"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\" }\ntunnelWord1 = { name = \"x\" }",
         "6: tunnelWord1: the name 'x' is taken"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"tunnelRole\" }",
         "5: tunnelWord0: the name 'tunnelRole' is that of another field"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"tunnelRole\" }", ""},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", mib = \"a-b\" }", "5: mib: must be letters"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", counter = 1 }", "5: counter: must be true or"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", setting = 1 }", "5: setting: must be a text"},
        // Units
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", unit = \"h\" }",
         "5: unit: there is no unit 'h'"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", as = \"address\", unit = \"s\" }",
         "5: unit: only numbers and singles have a unit"},
        // Forms
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", as = \"ipv6\" }",
         "5: as: there is no form 'ipv6'"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", as = 1 }", "5: as: must be a text"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelShort0 = { name = \"x\", as = \"address\" }",
         "5: as: the form 'address' takes 4 bytes, and here are 2"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelWord0 = { name = \"x\", as = \"bytes\" }",
         "5: as: the form 'bytes' takes bytes, and here is a number"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelTail = { name = \"x\", as = \"text\" }", ""},
        {"record.RSVP_MOR_ReplyCHop", "hopAddrBytes = { name = \"x\" }", ""},
        {"record.RSVP_MOR_ReplyCHop", "hopAddrBytes = { name = \"x\", as = \"hex\" }",
         "5: as: the form 'hex' takes at most 8"},
        {"record.RSVP_MOR_ReplyCHop", "hopAddrBytes = { name = \"x\", as = { 1 = \"a\" } }",
         "5: as: the form 'words' takes at most 8"},
        {"record.RSVP_MOR_ReplyCrlsp", "name = { name = \"name\", as = \"number\" }",
         "5: as: the form 'number' takes a number"},
        {"record.RSVP_MOR_ReplyCrlsp", "name = { name = \"name\", as = { 1 = \"a\" } }",
         "5: as: the form 'words' takes a"},
        // Key material
        {"record.RSVP_MOR_GlobalInfo", "authKey = { name = \"x\", as = \"bytes\" }",
         "5: authKey: key material has no"},
        {"record.RSVP_MOR_ReplyAuth.authEntryBytes", "parts = [{ at = 4, width = 68, name = \"x\", as = \"bytes\" }]",
         "5: as: the form 'bytes' would show a key"},
        {"record.RSVP_MOR_ReplyAuth.authEntryBytes", "parts = [{ at = 4, width = 68, name = \"x\" }]",
         "5: authEntryBytes: the form 'number' takes at most 8 bytes, and here are 68"},
        // Words of an enumeration, and of bits
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { 256 = \"a\" } }",
         "5: 256: must be a number from 0 to 255"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { a = \"b\" } }",
         "5: a: must be a number from 0"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { 1 = \"a\", 2 = \"a\" } }",
         "5: 2: the word 'a' is taken"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { 1 = \"a\", 0x1 = \"b\" } }",
         "5: 1: the number 1 has a word already"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { 1 = \"a\\\\\" } }",
         "5: 1: must be printable"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { 1 = \"\\u00e9\" } }",
         "5: 1: must be printable"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { bits = { 1 = '\"' } } }",
         "5: 1: must be printable"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { 1 = \"\" } }",
         "5: 1: the word '' is empty"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { bits = { 8 = \"a\" } } }",
         "5: 8: must be a number from 0 to 7"},
        {"record.RSVP_MOR_ReplyTunnel", "tunnelRole = { name = \"x\", as = { bits = {}, 1 = \"a\" } }",
         "5: 1: there is no such key here, only bits"},
        // Parts
        {"record.RSVP_MOR_ReplyTunnel.tunnelWord0", "parts = [{ at = 0, name = \"x\" }]",
         "5: tunnelWord0: only bytes and arrays have parts"},
        {"record.RSVP_MOR_ReplyTunnel.tunnelTail",
         "parts = [\n{ at = 0, name = \"x\" },\n{ at = 1, width = 2, name = \"y\" }]",
         "7: tunnelTail: a part of 2 bytes from byte 1 is beyond its field, which has 2"},
        {"record.RSVP_MOR_ReplyTunnel.tunnelTail", "parts = [{ at = 2, name = \"x\" }]",
         "5: at: must be a whole number from 0 to 1"},
        {"record.RSVP_MOR_ReplyTunnel.tunnelTail", "parts = [{ at = 0, width = 0, name = \"x\" }]",
         "5: tunnelTail: a part of 0"},
        {"record.RSVP_MOR_ReplyTunnel.tunnelTail", "parts = [{ name = \"x\" }]", "5: tunnelTail: a part has no 'at'"},
        {"record.RSVP_MOR_ReplyTunnel.tunnelTail", "parts = []\nname = \"x\"",
         "6: name: there is no such key here, only parts"},
        {"record.RSVP_MOR_GlobalInfo.counters1", "countsA = { name = \"x\" }", "5: countsA: an array takes 'parts'"},
        {"record.RSVP_MOR_GlobalInfo.counters1.countsA", "parts = [{ at = 27, name = \"x\" }]",
         "5: at: must be a whole"},
        {"record.RSVP_MOR_GlobalInfo.counters1.countsA", "parts = [{ at = 0, width = 1, name = \"x\" }]",
         "5: width: there is no"},
        // Records inside, and routes
        {"record.RSVP_MOR_ReplyPsb", "session = { name = \"x\" }", "5: name: RSVP_MOR_Session has no such field"},
        {"record.RSVP_MOR_ReplyPsb", "routeList4 = { name = \"x\", unit = \"s\" }", "5: unit: there is no such key"},
        {"record.RSVP_MOR_ReplyPsb", "routeList4 = {}", "5: routeList4: has no name"},
        {"record.RSVP_MOR_ReplyPsb", "routeList4 = { name = \"x\" }\nrouteList5 = { name = \"x\" }",
         "6: name: the name 'x' is"},
        // Tables
        {"table.nothing", "columns = []", "4: nothing: there is no such table"},
        {"table.tunnels", "rows = 1", "5: rows: there is no such key here, only next-key, columns"},
        {"table.tunnels", "columns = [\"tunnelWord0\", \"index\"]",
         "5: columns: RSVP_MOR_ReplyTunnel has nothing of the name 'index'"},
        {"table.tunnels", "columns = [\"tunnelWord0\", \"tunnelWord0\"]", "5: columns: 'tunnelWord0' is given twice"},
        {"table.tunnels", "columns = [1]", "5: columns: RSVP_MOR_ReplyTunnel has nothing"},
        {"table.tunnels", "next-key = \"tunnelWord0\"", "5: next-key: must be a list of fields"},
        {"table.tunnels", "next-key = [1]", "5: next-key: must be names of fields, or 0"},
        {"table.tunnels", "next-key = [\"index\"]", "5: next-key: RSVP_MOR_ReplyTunnel has no field 'index'"},
        {"table.tunnels", "next-key = [\"tunnelShort0\"]", "5: next-key: 'tunnelShort0' does not fit the key"},
        {"table.tunnels", "next-key = [\"tunnelWord0\", \"tunnelWord1\", \"tunnelWord2\", \"tunnelWord3\", 0]",
         "5: next-key: the key has no more than 4 fields"},
        {"table.\"p2mp psb\"", "next-key = [\"pathState.session\"]", "5: next-key: 'pathState.session' does not fit"},
        {"table.psb", "next-key = [\"session\", \"sender\"]", ""},
        {"table.interfaces", "next-key = [\"counters1\"]", "5: next-key: 'counters1' does not fit the key"},
        {"table.interfaces", "next-key = [\"counters1.countsA\"]", "5: next-key: RSVP_MOR_IfInfo has no field"},
        {"table.neighbours", "next-key = [\"nbrWord0\", 0, \"nbrWord1\"]",
         "5: next-key: the key has no more than 2 fields"},
        {"table.neighbours", "next-key = [\"nbrWord0\", 0]", ""},
    };
    for (const auto &one : cases) {
        const std::string refusal = Refusal(fmt::format("{}[{}]\n{}\n", head, one.table, one.lines));
        const std::string wanted = *one.refusal == '\0' ? "" : std::string("d.toml:") + one.refusal;
        EXPECT_EQ(refusal.substr(0, wanted.size()), wanted) << one.table << "\n" << one.lines << "\n" << refusal;
        EXPECT_EQ(refusal.empty(), wanted.empty()) << one.lines << "\n" << refusal;
    }
}

TEST(Dictionary, IsLookedForInItsPlaces)
{
    const program::HostDirectory directory;
    const auto file = [&](std::string_view name) {
        directory.Write(name, fmt::format("dictionary = 1\ndaemon = \"{}\"\nend-of-table = [1]\n", name));
        return directory.PathOf(name);
    };
    const auto found = [](const std::string &chosen) {
        return manager::FindDictionary(chosen, manager::AllTableShapes()).Daemon();
    };
    unsetenv("RSVP_DICTIONARY");
    EXPECT_EQ(found(""), "rsvpsimd"); // on a machine without a dictionary of its own
    file(rsvp_host::kDictionaryFile);
    EXPECT_EQ(found(""), rsvp_host::kDictionaryFile);
    setenv("RSVP_DICTIONARY", file("named").c_str(), 1);
    EXPECT_EQ(found(""), "named");
    EXPECT_EQ(found(file("chosen")), "chosen");
    EXPECT_EQ(found("none"), "");
    setenv("RSVP_DICTIONARY", "none", 1);
    EXPECT_EQ(found(""), "");
    unsetenv("RSVP_DICTIONARY");
    for (const std::string &unreadable : {std::string("/nowhere"), std::string("/dev/zero"), directory.PathOf("")})
        EXPECT_THROW(found(unreadable), manager::DictionaryError) << unreadable;
    directory.Write("large", std::string((1 << 20) + 1, '#'));
    EXPECT_THROW(found(directory.PathOf("large")), manager::DictionaryError);
}

std::string PageText()
{
    std::stringstream page;
    page << std::ifstream(DICTIONARY_PAGE_PATH).rdbuf();
    return page.str();
}

TEST(Dictionary, ThePageTellsWhatIsRead)
{
    const std::string page = PageText();
    std::string example;
    std::istringstream lines(page.substr(page.find("## By example")));
    for (std::string line; std::getline(lines, line) && !line.starts_with("The file");)
        example += line.starts_with("    ") ? line.substr(4) + "\n" : "\n";
    EXPECT_NE(example.find("next-key"), std::string::npos);
    EXPECT_EQ(Refusal(example), "");
    for (int form = 0; form <= static_cast<int>(manager::Form::Text); ++form) {
        const std::string name = NameOf(static_cast<manager::Form>(form));
        EXPECT_NE(page.find("\n| `" + name + "` |"), std::string::npos) << name;
    }
    const std::string refusal = Refusal(example + "[record.RSVP_MOR_ReplyResource]\n"
                                                  "resourceWord1 = { name = \"x\", unit = \"h\" }\n");
    const std::string units = refusal.substr(refusal.find("only ") + 5);
    EXPECT_NE(page.find("counts: " + units + " |"), std::string::npos) << refusal;
}

// ---- The simulated daemon ----

const Dictionary &OfSimulatedDaemon()
{
    static const Dictionary dictionary(manager::kSimulatedDaemon, "rsvpsimd.toml", manager::AllTableShapes());
    return dictionary;
}

constexpr struct {
    const char *kind; // as the daemon calls it
    const manager::Table *table;
} kTables[] = {
    {"auth", &manager::kAuthentication},
    {"crlsp", &manager::kCrLsps},
    {"nbr", &manager::kNeighbours},
    {"phsb", &manager::kPreviousHopState},
    {"rsb", &manager::kReservationState},
    {"interface", &manager::kInterfaces},
    {"psb", &manager::kPathState},
    {"p2mpCrlsp", &manager::kP2mpCrLsps},
    {"p2mpRsb", &manager::kP2mpReservationState},
    {"p2mpPsb", &manager::kP2mpPathState},
    {"tunnel", &manager::kTunnels},
    {"tunnel", &manager::kIngressTunnels},
    {"resource", &manager::kResources},
    {"arhop", &manager::kActualHops},
    {"chop", &manager::kComputedHops},
    {"general", &manager::kFrrGeneral},
    {"exthop", &manager::kExtendedHops},
    {"facility", &manager::kFrrFacility},
    {"ifconfig", &manager::kInterfaceConfig},
};

TEST(SimulatedDaemon, KeysAreThoseOfTheDictionary)
{
    std::set<std::string_view> covered;
    for (const auto &[name, table] : kTables) {
        covered.insert(name);
        const rsvpsimd::RowKind &kind = *rsvpsimd::FindRowKind(name);
        if (kind.keyFields.empty())
            continue; // the walk below shows that the rows of such a table are found
        std::vector<std::string> fields;
        for (const manager::KeyPart &part : manager::KeyPartsOf(*table, OfSimulatedDaemon()))
            fields.push_back(manager::PathAt(table->row(), part.offset, part.size));
        EXPECT_EQ(fields, std::vector<std::string>(kind.keyFields.begin(), kind.keyFields.end())) << table->name;
    }
    EXPECT_EQ(covered.size(), rsvpsimd::AllRowKinds().size());
}

// A field whose name says nothing: "tunnelWord4", "ifBytes1", "wordsC".
bool IsWord(const Field &field)
{
    static const std::regex word(
        "(.*(Word|Short|Half|Byte|Bytes|Long|Tail)[0-9]*|.*Rate[0-9]|(words|half|halves)[A-D])");
    return field.kind != FieldKind::Secret && std::regex_match(field.name, word);
}

// Adds what of a record is not 0 and has no name.
void AddUnnamed(const RecordDescription &record, const RecordMeanings &meanings, const void *row,
                std::set<std::string> &unnamed)
{
    for (const Field &field : record.fields) {
        const RecordMeanings &inside = meanings.Inside(field.name);
        if (!IsPresent(field, row))
            continue;
        if (field.kind == FieldKind::Record) {
            for (uint32_t i = 0; i < std::max(field.count, 1U); ++i)
                AddUnnamed(*field.record, inside, manager::At(row, field.offset + i * field.width), unnamed);
        } else if (field.kind == FieldKind::List || field.kind == FieldKind::Chain) {
            ForEachElement(field, row, [&](const void *one) { AddUnnamed(*field.record, inside, one, unnamed); });
        } else if (IsWord(field)) {
            for (uint32_t at = field.offset; at < field.offset + field.width * std::max(field.count, 1U); ++at) {
                const auto holds = [&](const Meaning &one) {
                    return at >= one.offset && at < one.offset + one.width;
                };
                if (*manager::At(row, at) != std::byte{} &&
                    std::none_of(meanings.own.begin(), meanings.own.end(), holds))
                    unnamed.insert(fmt::format("{}.{}", record.name, field.name));
            }
        }
    }
}

TEST(SimulatedDaemon, EveryWordOfTheScenariosHasAName)
{
    const Dictionary &dictionary = OfSimulatedDaemon();
    for (const char *name : {"demo.toml", "p2mp.toml", ""}) { // the last one is made up
        SCOPED_TRACE(name);
        std::stringstream scenario;
        if (*name == '\0')
            scenario << "[generate.network]\ntunnels = 200\n";
        else
            scenario << std::ifstream(std::string(SCENARIOS_PATH) + name).rdbuf();
        rsvpsimd::Device device;
        ReadScenarioText(device, scenario.str(), name);
        const program::HostDirectory directory(scenario.str());
        ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK) << directory.Log();
        const int32_t fd = RSVP_MOR_LIPCOpen();
        std::set<std::string> unnamed;
        for (const auto &[kind, walked] : kTables) {
            const manager::Table *table = walked;
            const auto result = manager::Walk(*table, dictionary, fd, nullptr, [&](const void *row) {
                AddUnnamed(table->row(), dictionary.Of(table->row()), row, unnamed);
                return true;
            });
            EXPECT_EQ(result.end, manager::WalkEnd::EndOfTable) << kind;
            if (table != &manager::kIngressTunnels) {
                EXPECT_EQ(result.rows, device.Rows(*rsvpsimd::FindRowKind(kind)).Size()) << kind;
            }
        }
        RSVP_MOR_GlobalInfo global{};
        EXPECT_EQ(RSVP_MOR_GetGlobalInfo(fd, &global), RSVP_MOR_OK);
        const auto &record = Describe<RSVP_MOR_GlobalInfo>();
        AddUnnamed(record, dictionary.Of(record), &global, unnamed);
        EXPECT_EQ(unnamed, std::set<std::string>());
        RSVP_MOR_LIPCClose(fd);
    }
}

const RecordDescription &DescriptionOf(rsvpsimd::Target target)
{
    switch (target) {
    case rsvpsimd::Target::Global:
        return Describe<RSVP_MOR_GlobalInfo>();
    case rsvpsimd::Target::Interface:
        return Describe<RSVP_MOR_IfInfo>();
    case rsvpsimd::Target::Neighbour:
        return Describe<RSVP_MOR_ReplyNbr>();
    default:
        return Describe<RSVP_MOR_ReplyAuth>();
    }
}

// The fields in which the daemon shows a command, or the parts of them, as a dictionary calls them:
// "settingBytes[2]".
std::vector<std::string> PlacesOf(const rsvpsimd::Command &command)
{
    const rsvpsimd::Extent shown = command.Shown();
    std::vector<std::string> places;
    for (const Field &field : DescriptionOf(command.target).fields) {
        const auto own = rsvpsimd::FindExtent(rsvpsimd::RecordOf(command.target)->Spec().fields, field.name);
        const size_t begin = std::max(own->offset, shown.offset);
        const size_t end = std::min(own->offset + own->size, shown.offset + shown.size);
        if (begin >= end)
            continue;
        const size_t first = begin - own->offset;
        const size_t last = end - own->offset - 1;
        places.push_back(last - first + 1 == own->size ? std::string(field.name)
                         : first == last               ? fmt::format("{}[{}]", field.name, first)
                                                       : fmt::format("{}[{}..{}]", field.name, first, last));
    }
    return places;
}

// Where a setting shows, with the names of the dictionary: "`settingBytes[2]` helloLost".
std::string CellOf(const rsvpsimd::Command &command)
{
    const auto &meanings = OfSimulatedDaemon().Of(DescriptionOf(command.target)).own;
    std::string cell;
    for (const std::string &place : PlacesOf(command)) {
        const auto meaning = std::ranges::find(meanings, place, &Meaning::field);
        cell += fmt::format("{}`{}`{}", cell.empty() ? " " : ", ", place,
                            meaning == meanings.end() ? "" : " " + meaning->name);
    }
    return cell + " ";
}

// The lines of the table of docs/host.md below its head.
std::vector<std::string> SettingsOfTheDocument()
{
    std::ifstream page(HOST_PAGE_PATH);
    std::vector<std::string> lines;
    bool inTable = false;
    for (std::string line; std::getline(page, line);) {
        inTable = line.starts_with("| Setting |") || (inTable && line.starts_with("|"));
        if (inTable && line.starts_with("| `"))
            lines.push_back(line);
    }
    return lines;
}

TEST(SimulatedDaemon, SettingsShowWhereDictionaryAndDocumentSay)
{
    using SettingAt = std::pair<std::string, std::string>; // record and place, and the setting
    const Meaning &switches = *OfSimulatedDaemon().Of(Describe<RSVP_MOR_IfConfig>()).Find("switches");
    std::set<SettingAt> shown;
    std::vector<std::string> names;
    std::map<std::string, std::array<std::string, 3>> cells; // of a setting, by level
    for (const rsvpctl::Setting &setting : rsvpctl::AllSettings()) {
        const auto level = static_cast<uint8_t>(setting.level);
        const rsvpsimd::Command &command = *rsvpsimd::FindCommand(level, setting.item);
        if (!cells.contains(setting.name))
            names.emplace_back(setting.name);
        auto &row = cells.try_emplace(setting.name, std::array<std::string, 3>{" ", " ", " "}).first->second;
        row[level] = CellOf(command);
        if (command.flag != 0) {
            EXPECT_TRUE(switches.words.contains(static_cast<uint64_t>(std::countr_zero(command.flag))))
                << setting.name;
        }
        for (const std::string &place : PlacesOf(command))
            if (setting.kind != rsvpctl::ValueKind::Key) // no meaning may show a key
                shown.emplace(fmt::format("{}.{}", DescriptionOf(command.target).name, place), setting.name);
    }

    std::set<SettingAt> said;
    for (const RecordDescription *record : manager::AllRecords())
        for (const Meaning &meaning : OfSimulatedDaemon().Of(*record).own)
            if (!meaning.setting.empty())
                said.emplace(fmt::format("{}.{}", record->name, meaning.field), meaning.setting);
    EXPECT_EQ(said, shown);

    std::vector<std::string> lines;
    for (const std::string &name : names)
        lines.push_back(fmt::format("| `{}` |{}|{}|{}|", name, cells[name][0], cells[name][1], cells[name][2]));
    EXPECT_EQ(SettingsOfTheDocument(), lines) << fmt::format("{}", fmt::join(lines, "\n"));
}

} // namespace
