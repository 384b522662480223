// The library and the daemon describe the same wire, each in its own way and without a line of code in common. Here
// the two check each other over a real socket: random values that the daemon encodes by its field tables must come
// out of the library under the same names, and the keys that the library sends must find the right rows.
#include "host/daemon/device/commands.h"
#include "host/daemon/device/row_kinds.h"
#include "host/daemon/wire/layout.h"
#include "host/directory.h"
#include "manager/dictionary/document.h"
#include "manager/record/describe.h"
#include "tests/support/program.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <functional>
#include <gtest/gtest.h>
#include <list>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>

// Keys that a call takes as several arguments.
namespace trip {
struct Index {
    uint32_t index;
};
struct HopIndex {
    uint32_t list;
    uint32_t index;
};
struct PathKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Sender sender;
};
struct ReservationKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Hop hop;
    RSVP_MOR_Sender filter;
};
struct PreviousHopKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Hop hop;
};
} // namespace trip

namespace manager {
DESCRIBE(trip::Index, NUMBER(index))
DESCRIBE(trip::HopIndex, NUMBER(list), NUMBER(index))
DESCRIBE(trip::PathKey, RECORD(session), RECORD(sender))
DESCRIBE(trip::ReservationKey, RECORD(session), RECORD(hop), RECORD(filter))
DESCRIBE(trip::PreviousHopKey, RECORD(session), RECORD(hop))
} // namespace manager

namespace {

using namespace trip;
using manager::Describe;
using manager::FieldKind;
using manager::RecordDescription;
using nlohmann::json;
using rsvpsimd::LayoutRef;
using rsvpsimd::ListKind;
using rsvpsimd::Order;
using rsvpsimd::Shape;

// ---- The side of the records ----

// A range of labels as the bytes that it is, where the tool shows its numbers or nothing.
std::vector<manager::Field> Unshown(const RecordDescription &description)
{
    using Row = RSVP_MOR_LabelRequest;
    if (&description != &Describe<Row>())
        return {};
    const manager::Field bytes = manager::Whole<uint8_t[8]>("rangeBytes", FieldKind::Bytes, offsetof(Row, minVpi));
    return {manager::UnlessTag(bytes, offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_ATM)};
}

// The tool's description with nothing left out, nothing hidden, every address as a plain number, and as bytes what
// was not converted.
const RecordDescription &Whole(const RecordDescription &shown)
{
    struct Made {
        const RecordDescription *shown;
        std::vector<manager::Field> fields;
        RecordDescription description;
    };
    static std::list<Made> all;
    for (const Made &made : all)
        if (made.shown == &shown)
            return made.description;
    Made made{&shown, {shown.fields.begin(), shown.fields.end()}, shown};
    for (const manager::Field &field : Unshown(shown))
        made.fields.push_back(field);
    for (manager::Field &field : made.fields) {
        if (field.record != nullptr)
            field.record = &Whole(*field.record);
        if (field.kind == FieldKind::Address)
            field.kind = FieldKind::Number;
        if (field.kind == FieldKind::Secret || field.kind == FieldKind::NetNumber ||
            field.kind == FieldKind::NetAddress)
            field.kind = FieldKind::Bytes;
        field.isQuiet = false;
    }
    Made &kept = all.emplace_back(std::move(made));
    kept.description.fields = kept.fields;
    return kept.description;
}

json RecordToJson(const RecordDescription &description, const void *record)
{
    json all = json(manager::ToJson(Whole(description), record));
    if (all.contains("labelRequest") && all["labelRequest"]["kind"] == RSVP_MOR_LABEL_REQUEST_FRAME_RELAY)
        all["labelRequest"].erase("rangeBytes"); // the bytes of the two numbers
    for (const manager::Field &field : description.fields)
        if (field.kind == FieldKind::Number && field.width == sizeof(uint64_t))
            all[field.name] = std::stoull(all[field.name].get<std::string>()); // a text in documents
    return all;
}

// ---- The side of the wire ----

json::json_pointer PlaceOf(std::string name)
{
    std::string place = "/";
    for (const char c : name)
        if (c != ']')
            place += c == '.' || c == '[' ? '/' : c;
    return json::json_pointer(place);
}

using Random = std::mt19937;

json RandomValue(Random &random, const rsvpsimd::Field &field)
{
    const auto below = [&random](uint32_t end) { return static_cast<uint32_t>(random() % end); };
    const std::string_view last = std::string_view(field.name).substr(field.name.rfind('.') + 1);
    if (field.count > 1) {
        json all;
        for (size_t i = 0; i < field.count; ++i) {
            rsvpsimd::Field one = field;
            one.count = 1;
            all.push_back(RandomValue(random, one));
        }
        return all;
    }
    if (last == "kind" || last == "tunnelRole")
        return below(5);
    if (field.order == Order::Float || field.order == Order::Rate)
        return static_cast<double>(1 + below(0xFFFFFF)); // a whole number of 24 bits is the same in every form
    if (field.order == Order::Raw && field.width > 1) {
        std::string hex;
        for (size_t i = 0; i < field.width; ++i)
            hex += fmt::format("{:02x}", below(256));
        return hex;
    }
    const uint64_t number = uint64_t{random()} << 32 | random();
    return number >> (field.width == 8 ? 1 : 64 - 8 * field.width); // a scenario file cannot hold all 64 bits
}

json RandomFields(Random &random, LayoutRef layout)
{
    std::map<std::string, json, std::less<>> values;
    json record = json::object();
    for (const rsvpsimd::Field &field : layout->fields) {
        const auto kinds = [&](std::string_view name) { return values.at(std::string(name)).get<uint64_t>(); };
        if (FindField(*layout, field.name, kinds) == &field)
            record[PlaceOf(field.name)] = values[field.name] = RandomValue(random, field);
    }
    return record;
}

void AddLists(Random &random, json &block, std::span<const ListKind> lists)
{
    for (const ListKind &list : lists) {
        const uint32_t count = static_cast<uint32_t>(random() % 6);
        if (count == 5 || (count == 0 && !list.mayBeEmpty)) // sometimes a block lacks this item
            continue;
        if (list.shape == Shape::Text) {
            block[std::string(list.name)] = std::string(count, 'x') + std::to_string(random());
            continue;
        }
        json &entries = block[std::string(list.name)] = json::array();
        for (uint32_t i = 0; i < count; ++i) {
            json entry = RandomFields(random, *list.entry);
            AddLists(random, entry, list.children);
            entries.push_back(std::move(entry));
        }
    }
}

json RandomRow(Random &random, const rsvpsimd::RowKind &kind)
{
    json row = json::object();
    for (const rsvpsimd::Part &part : kind.parts) {
        const json fields = RandomFields(random, part.layout);
        if (part.prefix.empty())
            row.update(fields);
        else
            row[std::string(part.prefix)] = fields;
    }
    AddLists(random, row, kind.lists);
    if (kind.keyFields.empty())
        row["requestKey"] = RandomFields(random, kind.keyLayout);
    return row;
}

std::string ToToml(const json &value)
{
    if (!value.is_structured())
        return value.dump();
    std::vector<std::string> parts;
    for (const auto &[key, element] : value.items())
        parts.push_back(value.is_object() ? key + " = " + ToToml(element) : ToToml(element));
    const std::string inside = fmt::format("{}", fmt::join(parts, ", "));
    return value.is_object() ? "{ " + inside + " }" : "[ " + inside + " ]";
}

std::string TomlTable(const std::string &head, const json &table)
{
    std::string text = head + "\n";
    for (const auto &[key, value] : table.items())
        text += key + " = " + ToToml(value) + "\n";
    return text;
}

// What the library must turn a row into: missing lists are empty, two chains run backwards, and the role has other
// numbers.
void Expect(json &block, std::span<const ListKind> lists)
{
    for (const ListKind &list : lists) {
        const std::string name(list.name);
        if (!block.contains(name))
            block[name] = list.shape == Shape::Text ? json() : json::array();
        for (json &entry : block[name]) {
            if (list.shape == Shape::Each)
                Expect(entry, list.children);
            if (name == "fsList" && !entry.contains("rro"))
                entry["rro"] = json::array(); // both blocks have this node, only one has the item
        }
        if (name == "fsList" || name == "fdList")
            std::reverse(block[name].begin(), block[name].end());
        if (name == "subLsps") {
            block["rroHead"] = block[name];
            block.erase(name);
        }
    }
    if (block.contains("tunnelRole"))
        block["tunnelRole"] = block["tunnelRole"] == 1 ? 0 : block["tunnelRole"] == 3 ? 2 : 1;
}

json Expected(const rsvpsimd::RowKind &kind, json row)
{
    row.erase("requestKey");
    Expect(row, kind.lists);
    return row;
}

// ---- Keys ----

// The values of a key in the order of the wire. They compare as their bytes do.
using KeyValues = std::vector<json>;

std::vector<json::json_pointer> KeyPlaces(const rsvpsimd::RowKind &kind)
{
    std::vector<json::json_pointer> places;
    if (kind.keyFields.empty())
        for (const auto &field : kind.keyLayout->fields)
            places.push_back(PlaceOf("requestKey." + field.name));
    for (const std::string_view key : kind.keyFields)
        for (const auto &field : kind.RowLayout()->fields)
            if (field.name == key || field.name.starts_with(std::string(key) + "."))
                places.push_back(PlaceOf(field.name));
    return places;
}

KeyValues KeyOf(const rsvpsimd::RowKind &kind, const json &row)
{
    KeyValues values;
    for (const auto &place : KeyPlaces(kind))
        values.push_back(row.at(place));
    return values;
}

json WithOneBitFlipped(Random &random, const json &value, uint32_t width)
{
    const uint32_t bit = static_cast<uint32_t>(random() % (8 * width));
    if (value.is_number())
        return value.get<uint64_t>() ^ uint64_t { 1 } << bit;
    std::string hex = value;
    const uint32_t byte = static_cast<uint32_t>(std::stoul(hex.substr(bit / 8 * 2, 2), nullptr, 16));
    return hex.replace(bit / 8 * 2, 2, fmt::format("{:02x}", byte ^ 1U << bit % 8));
}

// ---- The calls ----

constexpr uint32_t kGet = 3;
constexpr uint32_t kFirst = 4;
constexpr uint32_t kNext = 5;
constexpr uint32_t kP2mpPsbItem = 11;

struct Kind {
    const char *name; // as the daemon calls it
    const RecordDescription *record;
    const RecordDescription *key;
    bool hasGet; // a row can be read by its key
    std::function<uint32_t(uint32_t op, int32_t fd, const void *key, void *record)> read;
    std::function<void(void *record)> release; // empty if a row owns nothing
    bool ingress = false;
};

// So that the name of a test shows its kind, and not an address in memory.
void PrintTo(const Kind &kind, std::ostream *out)
{
    *out << kind.name;
}

template <typename Row, typename Key, typename Read>
Kind Table(const char *name, bool hasGet, Read read, void (*release)(Row *) = nullptr)
{
    Kind kind{name, &Describe<Row>(), &Describe<Key>(), hasGet, {}, {}};
    kind.read = [read](uint32_t op, int32_t fd, const void *key, void *row) {
        return read(op, fd, *static_cast<const Key *>(key), static_cast<Row *>(row));
    };
    if (release != nullptr)
        kind.release = [release](void *row) { release(static_cast<Row *>(row)); };
    return kind;
}

// The record of a table where it is its own cursor, with the key filled in.
template <typename Hop> Hop *With(Hop *row, const HopIndex &key)
{
    row->hopListIndex = key.list;
    row->hopIndex = key.index;
    return row;
}

RSVP_MOR_ReplyResource *With(RSVP_MOR_ReplyResource *row, const Index &key)
{
    row->resourceIndex = key.index;
    return row;
}

// The three calls of a table as one; without the third if no row can be read by its key.
#define READ(call)                                                                                                   \
    []([[maybe_unused]] uint32_t op, [[maybe_unused]] int32_t fd, [[maybe_unused]] const auto &key, auto *row) {     \
        return call;                                                                                                 \
    }
#define READS(first, next, ...) READ(op == kFirst ? first : op == kNext ? next : 0 __VA_OPT__(+__VA_ARGS__))

// clang-format off
std::vector<Kind> Kinds()
{
    std::vector<Kind> kinds{
        Table<RSVP_MOR_IfInfo, Index>("interface", true, READS(RSVP_MOR_GetFirstIfInfo(fd, row),
            RSVP_MOR_GetNextIfInfo(fd, key.index, row), RSVP_MOR_GetIfInfo(fd, key.index, row))),
        Table<RSVP_MOR_IfConfig, Index>("ifconfig", true, READS(RSVP_GetFirstIfConfig(row),
            RSVP_GetNextIfConfig(key.index, row), RSVP_GetIfConfig(key.index, row))),
        Table<RSVP_MOR_ReplyNbr, RSVP_MOR_NbrKey>("nbr", false, READS(RSVP_MOR_GetFirstNbr(fd, row),
            RSVP_MOR_GetNextNbr(fd, &key, row))),
        Table<RSVP_MOR_ReplyAuth, RSVP_MOR_AuthWalkKey>("auth", false, READS(RSVP_MOR_GetFirstAuth(fd, row),
            RSVP_MOR_GetNextAuth(fd, &key, row))),
        Table<RSVP_MOR_ReplyFrrFacility, RSVP_MOR_FrrFacilityKey>("facility", true,
            READ(RSVP_MOR_GetFrrFacilityDBTbl(op, op == kFirst ? nullptr : &key, row))),
        Table<RSVP_MOR_ReplyFrrGeneral, RSVP_MOR_FrrGeneralKey>("general", true,
            READS(RSVP_MOR_GetFirstFrrGeneralTbl(row), RSVP_MOR_GetNextFrrGeneralTbl(&key, row),
            RSVP_MOR_GetFrrGeneralTbl(&key, row))),
        Table<RSVP_MOR_ReplyExtArHop, HopIndex>("exthop", true, READS(RSVP_MOR_GetFirstExtArHop(row),
            RSVP_MOR_GetNextExtArHop(key.list, key.index, row), RSVP_MOR_GetExtArHop(key.list, key.index, row))),
        Table<RSVP_MOR_ReplyTunnel, RSVP_MOR_TunnelKey>("tunnel", true, READS(RSVP_GetFirstTunnel(row),
            RSVP_GetNextTunnel(&key, row), RSVP_GetTunnel(&key, row))),
        Table<RSVP_MOR_ReplyTunnel, RSVP_MOR_TunnelKey>("tunnel", false, READS(RSVP_GetFirstIngressTunnel(row),
            RSVP_GetNextIngressTunnel(&key, row))),
        Table<RSVP_MOR_ReplyCHop, HopIndex>("chop", true, READS(RSVP_GetFirstCHop(row),
            RSVP_GetNextCHop(With(row, key)), RSVP_GetCHop(With(row, key)))),
        Table<RSVP_MOR_ReplyArHop, HopIndex>("arhop", true, READS(RSVP_GetFirstArHop(row),
            RSVP_GetNextArHop(With(row, key)), RSVP_GetArHop(With(row, key)))),
        Table<RSVP_MOR_ReplyResource, Index>("resource", true, READS(RSVP_GetFirstResource(row),
            RSVP_GetNextResource(With(row, key)), RSVP_GetResource(With(row, key)))),
        Table<RSVP_MOR_ReplyPsb, PathKey>("psb", false, READS(RSVP_MOR_GetFirstPsbInfo(fd, row),
            RSVP_MOR_GetNextPsbInfo(fd, &key.session, &key.sender, row)), RSVP_MOR_FreeReplyPsb),
        Table<RSVP_MOR_ReplyRsb, ReservationKey>("rsb", false, READS(RSVP_MOR_GetFirstRsbInfo(fd, row),
            RSVP_MOR_GetNextRsbInfo(fd, &key.session, &key.hop, &key.filter, row)), RSVP_MOR_FreeReplyRsb),
        Table<RSVP_MOR_ReplyPhsb, PreviousHopKey>("phsb", false, READS(RSVP_MOR_GetFirstPhsbInfo(fd, row),
            RSVP_MOR_GetNextPhsbInfo(fd, &key.session, &key.hop, row)), RSVP_MOR_FreeReplyPhsb),
        Table<RSVP_MOR_ReplyCrlsp, RSVP_MOR_CrlspKey>("crlsp", false, READS(RSVP_MOR_GetFirstCrlsp(fd, row),
            RSVP_MOR_GetNextCrlsp(fd, &key, row)), RSVP_MOR_FreeReplyCrlsp),
        Table<RSVP_MOR_P2mpPsbInfo, RSVP_MOR_P2mpStateKey>("p2mpPsb", true,
            READ(RSVP_MOR_GetP2mpPsbInfo(fd, kP2mpPsbItem, op, &key, row)), RSVP_MOR_FreeP2mpPsbInfo),
        Table<RSVP_MOR_P2mpRsbInfo, RSVP_MOR_P2mpStateKey>("p2mpRsb", true,
            READ(RSVP_MOR_GetP2mpRsbInfo(fd, op, &key, row)), RSVP_MOR_FreeP2mpRsbInfo),
        Table<RSVP_MOR_P2mpCrlspInfo, RSVP_MOR_P2mpCrlspKey>("p2mpCrlsp", true,
            READ(RSVP_MOR_GetP2mpCrlsp(fd, op, &key, row)), RSVP_MOR_FreeP2mpCrlspInfo),
    };
    for (size_t i = 1; i < kinds.size(); ++i)
        kinds[i].ingress = std::string_view(kinds[i].name) == kinds[i - 1].name;
    return kinds;
}
// clang-format on

// A point-to-multipoint LSP whose answer fills a message to the last byte: a body of 8184 bytes is 88 for its own
// item, 94 for each of 86 sub-LSPs with one hop, and 12 for a name of eight letters.
json FullLsp(Random &random, const rsvpsimd::RowKind &kind)
{
    json row = RandomRow(random, kind);
    row["name"] = "eightchr";
    row["subLsps"] = json::array();
    for (int i = 0; i < 86; ++i) {
        json entry = RandomFields(random, "p2mpSubLsp");
        entry["hopList"] = json::array({RandomFields(random, "hopEntry")});
        row["subLsps"].push_back(std::move(entry));
    }
    return row;
}

// ---- The tests ----

constexpr uint32_t kSeeds[] = {1, 22, 333};
constexpr int kRowsOfASeed = 8;

class RoundTrip : public testing::TestWithParam<Kind> {
protected:
    // Half of the rows have a key that differs from that of the row before in only one bit.
    static void MakeNeighbour(Random &random, const rsvpsimd::RowKind &kind, const json &before, json &row)
    {
        const auto places = KeyPlaces(kind);
        for (const auto &place : places)
            row[place] = before[place];
        json &one = row[places[random() % places.size()]];
        one = WithOneBitFlipped(random, one, one.is_number() ? 2 : 1);
    }

    void SetUp() override
    {
        const Kind &kind = GetParam();
        wire_ = rsvpsimd::FindRowKind(kind.name);
        std::string scenario;
        for (const uint32_t seed : kSeeds) {
            Random random(seed + wire_->requestItem);
            for (int i = 0; i < kRowsOfASeed; ++i) {
                const bool full = i == 0 && wire_->name == "p2mpCrlsp";
                rows_.push_back(full ? FullLsp(random, *wire_) : RandomRow(random, *wire_));
                if (i % 2 == 1)
                    MakeNeighbour(random, *wire_, rows_[rows_.size() - 2], rows_.back());
            }
        }
        for (const json &row : rows_)
            scenario += TomlTable(fmt::format("[[{}]]", kind.name), row);
        std::sort(rows_.begin(), rows_.end(),
                  [&](const json &a, const json &b) { return KeyOf(*wire_, a) < KeyOf(*wire_, b); });
        std::erase_if(rows_, [&](const json &row) { return kind.ingress && row["tunnelRole"] != 1; });
        ASSERT_FALSE(rows_.empty());
        leaves_ = manager::Leaves(Whole(*kind.key));
        std::sort(leaves_.begin(), leaves_.end(), [](const auto &a, const auto &b) { return a.offset < b.offset; });
        ASSERT_EQ(leaves_.size(), KeyPlaces(*wire_).size());
        directory_.Write(rsvp_host::kScenarioFile, scenario);
        ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK) << directory_.Log();
        fd_ = RSVP_MOR_LIPCOpen();
    }
    void TearDown() override { RSVP_MOR_LIPCClose(fd_); }

    // Fills the key's record with these values.
    void FillKey(const KeyValues &values)
    {
        key_.assign(GetParam().key->size, 0);
        for (size_t i = 0; i < values.size(); ++i) {
            const manager::Leaf &leaf = leaves_[i];
            uint8_t *at = reinterpret_cast<uint8_t *>(key_.data()) + leaf.offset;
            const uint32_t width = leaf.field->width;
            if (leaf.field->kind == FieldKind::Bytes) {
                const std::string hex = values[i].is_string() ? values[i].get<std::string>()
                                                              : fmt::format("{:08x}", values[i].get<uint32_t>());
                for (uint32_t byte = 0; byte < width; ++byte)
                    at[byte] = static_cast<uint8_t>(std::stoul(hex.substr(2 * byte, 2), nullptr, 16));
            } else if (width == 2) {
                const auto number = values[i].get<uint16_t>();
                std::memcpy(at, &number, sizeof(number));
            } else {
                const auto number = values[i].get<uint32_t>();
                std::memcpy(at, &number, sizeof(number));
            }
        }
    }

    // Checks that a read answers with this row, or with the end of the table if it is null. Returns the record as
    // JSON.
    json Check(const json *row, uint32_t op, const KeyValues &key)
    {
        const Kind &kind = GetParam();
        FillKey(key);
        // A record without lists may hold anything before it is read.
        record_.assign(kind.record->size / 8 + 1, kind.release ? 0 : 0xA5A5A5A5A5A5A5A5);
        const uint32_t status = kind.read(op, fd_, key_.data(), record_.data());
        EXPECT_EQ(status, row != nullptr ? RSVP_MOR_OK : RSVP_MOR_ERR_NOT_EXIST);
        if (status != RSVP_MOR_OK)
            return nullptr;
        const json actual = RecordToJson(*kind.record, record_.data());
        if (row != nullptr) {
            EXPECT_EQ(json::diff(Expected(*wire_, *row), actual), json::array()) << *row;
        }
        if (kind.release)
            kind.release(record_.data());
        return actual;
    }

    program::HostDirectory directory_;
    int32_t fd_ = -1;
    const rsvpsimd::RowKind *wire_ = nullptr;
    std::vector<json> rows_;
    std::vector<manager::Leaf> leaves_;
    std::vector<uint64_t> record_;
    std::vector<uint8_t> key_;
};

TEST_P(RoundTrip, EveryFieldOfEveryRow)
{
    json actual = Check(&rows_.front(), kFirst, {});
    for (size_t i = 0; i < rows_.size() && !actual.is_null(); ++i) {
        const KeyValues key = KeyOf(*wire_, wire_->keyFields.empty() ? rows_[i] : actual);
        if (GetParam().hasGet)
            Check(&rows_[i], kGet, key);
        actual = Check(i + 1 < rows_.size() ? &rows_[i + 1] : nullptr, kNext, key);
    }
}

TEST_P(RoundTrip, EveryFieldOfAKeyCounts)
{
    Random random(4444);
    std::vector<KeyValues> keys;
    for (const json &row : rows_)
        keys.push_back(KeyOf(*wire_, row));
    for (const KeyValues &key : keys) {
        for (size_t i = 0; i < key.size(); ++i) {
            SCOPED_TRACE(leaves_[i].path);
            KeyValues other = key;
            other[i] = WithOneBitFlipped(random, key[i], leaves_[i].field->width);
            const auto behind = static_cast<size_t>(std::upper_bound(keys.begin(), keys.end(), other) - keys.begin());
            Check(behind == rows_.size() ? nullptr : &rows_[behind], kNext, other);
            if (GetParam().hasGet)
                Check(behind > 0 && keys[behind - 1] == other ? &rows_[behind - 1] : nullptr, kGet, other);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, RoundTrip, testing::ValuesIn(Kinds()), [](const auto &kind) {
    return std::string(kind.param.name) + (kind.param.ingress ? "Ingress" : "");
});

TEST(RoundTripTable, HasEveryKindOfRow)
{
    std::set<std::string_view> covered;
    for (const Kind &kind : Kinds())
        covered.insert(kind.name);
    EXPECT_EQ(covered.size(), rsvpsimd::AllRowKinds().size());
}

TEST(FullMessage, HasNoRoomForOneMoreByte)
{
    Random random(1);
    const rsvpsimd::RowKind &kind = *rsvpsimd::FindRowKind("p2mpCrlsp");
    json row = FullLsp(random, kind);
    row["name"] = "ninechars";
    const program::HostDirectory directory(TomlTable("[[p2mpCrlsp]]", row));
    const auto result =
        program::Run(directory, {RSVPSIMD_PATH, "--check", "--scenario", directory.PathOf(rsvp_host::kScenarioFile)});
    EXPECT_EQ(result.exit, 2);
    EXPECT_NE(result.err.find("8185 bytes"), std::string::npos) << result.err;
}

TEST(SingleRecords, EveryFieldAndEveryCount)
{
    for (const uint32_t seed : kSeeds) {
        Random random(seed);
        const json global = RandomFields(random, "globalInfo");
        const json debug = RandomFields(random, "debugInfo");
        const json counters = {{"upLspNumber", random()},
                               {"frrIfNum", random()},
                               {"frrActiveIfNum", random()},
                               {"actBypassTunnels", random()}};
        const program::HostDirectory directory(TomlTable("[global]", global) + TomlTable("[debug]", debug) +
                                               TomlTable("[counters]", counters));
        ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK) << directory.Log();
        const int32_t fd = RSVP_MOR_LIPCOpen();
        RSVP_MOR_GlobalInfo info; // the first request of all, since the daemon counts requests
        ASSERT_EQ(RSVP_MOR_GetGlobalInfo(fd, &info), RSVP_MOR_OK);
        EXPECT_EQ(json::diff(global, RecordToJson(Describe<RSVP_MOR_GlobalInfo>(), &info)), json::array());
        RSVP_MOR_DebugInfo switches;
        ASSERT_EQ(RSVP_MOR_GetRsvpDebug(fd, &switches), RSVP_MOR_OK);
        EXPECT_EQ(json::diff(debug, RecordToJson(Describe<RSVP_MOR_DebugInfo>(), &switches)), json::array());
        RSVP_MOR_LIPCClose(fd);
        const std::pair<const char *, uint32_t (*)(uint32_t *)> counts[] = {
            {"upLspNumber", RSVP_GetUpLspNumber},
            {"frrIfNum", RSVP_MOR_GetFrrIfNum},
            {"frrActiveIfNum", RSVP_MOR_GetFrrActiveIfNum},
            {"actBypassTunnels", RSVP_MOR_GetActBypassTunnels}};
        for (const auto &[name, read] : counts) {
            uint32_t count = 0;
            EXPECT_EQ(read(&count), RSVP_MOR_OK);
            EXPECT_EQ(count, counters[name]) << name;
        }
    }
}

// ---- Commands ----

constexpr uint32_t kInterface = 0x00010203;
constexpr uint32_t kPeer = 0x0A000009;

const uint8_t *Key()
{
    static const std::vector<uint8_t> key = [] {
        std::vector<uint8_t> bytes(RSVP_MOR_AUTH_KEY_SIZE);
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<uint8_t>(i * 7); // only the first byte is zero
        return bytes;
    }();
    return key.data();
}

struct Setting {
    uint8_t messageClass;
    uint16_t item;
    const char *shown; // the bytes that a read must show
    uint32_t (*call)(uint32_t op);
};

const Setting kSettings[] = {
    {0, 15, "1234", [](uint32_t) { return RSVP_MOR_SetRefreshInterval(0x1234); }},
    {0, 12, "56", [](uint32_t) { return RSVP_MOR_SetKeepMultiplier(0x56); }},
    {0, 10, "78", [](uint32_t) { return RSVP_MOR_SetHelloInterval(0x78); }},
    {0, 11, "9a", [](uint32_t) { return RSVP_MOR_SetHelloLost(0x9a); }},
    {0, 19, "12345678", [](uint32_t) { return RSVP_MOR_SetDscpValue(0x12345678); }},
    {0, 8, "01", [](uint32_t op) { return RSVP_MOR_SetGrEnable(op); }},
    {0, 3, "key", [](uint32_t op) { return RSVP_MOR_SetAuthKey(op, Key()); }},
    {0, 2, "01", [](uint32_t op) { return RSVP_MOR_SetAuthChallenge(op); }},
    {0, 4, "23456789", [](uint32_t) { return RSVP_MOR_SetAuthLifeTime(0x23456789); }},
    {0, 5, "ab", [](uint32_t) { return RSVP_MOR_SetAuthWindowSize(0xab); }},
    {1, 18, "01", [](uint32_t op) { return RSVP_MOR_SetRsvpEnable(op, kInterface); }},
    {1, 9, "01", [](uint32_t op) { return RSVP_MOR_SetHelloEnable(op, kInterface); }},
    {1, 6, "01", [](uint32_t op) { return RSVP_MOR_SetBfdEnable(op, kInterface); }},
    {1, 14, "1234",
     [](uint32_t op) {
         uint16_t pair[2] = {0x1234, 0x5678};
         return RSVP_MOR_SetReduction(op, kInterface, pair);
     }},
    {1, 16, "2345", [](uint32_t op) { return RSVP_MOR_SetRetransInterval(op, kInterface, 0x2345); }},
    {1, 17, "67", [](uint32_t op) { return RSVP_MOR_SetRetransIncrement(op, kInterface, 0x67); }},
    {1, 3, "key", [](uint32_t op) { return RSVP_MOR_SetIntfAuthKey(op, kInterface, Key()); }},
    {1, 2, "01", [](uint32_t op) { return RSVP_MOR_SetIntfAuthChallenge(op, kInterface); }},
    {1, 4, "3456789a", [](uint32_t op) { return RSVP_MOR_SetIntfAuthLifeTime(op, kInterface, 0x3456789a); }},
    {1, 5, "bc", [](uint32_t op) { return RSVP_MOR_SetIntfAuthWindowSize(op, kInterface, 0xbc); }},
    {2, 13, "01", [](uint32_t op) { return RSVP_MOR_SetRsvpPeer(op, kPeer); }},
    {2, 3, "key", [](uint32_t op) { return RSVP_MOR_SetPeerAuthKey(op, kPeer, Key()); }},
    {2, 2, "01", [](uint32_t op) { return RSVP_MOR_SetPeerAuthChallenge(op, kPeer); }},
    {2, 4, "456789ab", [](uint32_t) { return RSVP_MOR_SetPeerAuthLifeTime(kPeer, 0x456789ab); }},
    {2, 5, "cd", [](uint32_t) { return RSVP_MOR_SetPeerAuthWindowSize(kPeer, 0xcd); }},
};

// The field that shows the command's setting, as the hex of the wire; empty if there is no such row.
std::string Shown(int32_t fd, rsvpsimd::Target target, const std::string &field)
{
    const auto in = [&](uint32_t status, const auto &record, LayoutRef layout) -> std::string {
        if (status != RSVP_MOR_OK)
            return "";
        const json value = RecordToJson(Describe<std::decay_t<decltype(record)>>(), &record)[field];
        if (value.is_string())
            return value;
        const auto *wire = FindField(*layout, field, [](auto) { return 0; });
        return fmt::format("{:0{}x}", value.get<uint32_t>(), 2 * wire->width);
    };
    RSVP_MOR_GlobalInfo global;
    RSVP_MOR_IfInfo interface;
    RSVP_MOR_ReplyNbr nbr;
    RSVP_MOR_ReplyAuth auth;
    switch (target) {
    case rsvpsimd::Target::Global:
        return in(RSVP_MOR_GetGlobalInfo(fd, &global), global, "globalInfo");
    case rsvpsimd::Target::Interface:
        return in(RSVP_MOR_GetIfInfo(fd, kInterface, &interface), interface, "ifInfo");
    case rsvpsimd::Target::Neighbour:
        return in(RSVP_MOR_GetFirstNbr(fd, &nbr), nbr, "nbr");
    default:
        return in(RSVP_MOR_GetFirstAuth(fd, &auth), auth, "auth");
    }
}

uint32_t FlagsOfInterface()
{
    RSVP_MOR_IfConfig config{};
    return RSVP_GetIfConfig(kInterface, &config) == RSVP_MOR_OK ? config.ifConfig : 0;
}

TEST(Commands, EverySettingShowsAndGoesBack)
{
    const program::HostDirectory directory;
    ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK);
    const int32_t fd = RSVP_MOR_LIPCOpen();
    std::vector<std::pair<const Setting *, std::string>> before;
    std::set<const rsvpsimd::Command *> covered;
    // What the daemon keeps inside a run of bytes is those bytes to the library.
    const auto fieldOf = [](const rsvpsimd::Command &command) {
        return std::string(command.field.substr(0, command.field.find('.')));
    };
    const auto place = [&](const rsvpsimd::Command &command, const std::string &hex, size_t digits) {
        const size_t begin = ExtentOf(*RecordOf(command.target), fieldOf(command)).offset;
        return hex.empty() ? hex : hex.substr(2 * (command.Shown().offset - begin), digits);
    };
    for (const Setting &setting : kSettings) {
        const auto &command = *rsvpsimd::FindCommand(setting.messageClass, setting.item);
        const std::string field = fieldOf(command);
        const std::string shown = setting.shown == std::string("key")
                                      ? fmt::format("{:02x}", fmt::join(Key(), Key() + RSVP_MOR_AUTH_KEY_SIZE, ""))
                                      : setting.shown;
        covered.insert(&command);
        before.emplace_back(&setting, Shown(fd, command.target, field));
        ASSERT_EQ(setting.call(0), RSVP_MOR_OK) << command.name;
        EXPECT_EQ(place(command, Shown(fd, command.target, field), shown.size()), shown) << command.name;
        EXPECT_EQ(FlagsOfInterface() & command.flag, command.flag) << command.name;
    }
    EXPECT_EQ(Shown(fd, rsvpsimd::Target::Interface, "ifShort3"), "5678"); // the second of the pair
    for (auto done = before.rbegin(); done != before.rend(); ++done) {
        const auto &command = *rsvpsimd::FindCommand(done->first->messageClass, done->first->item);
        if ((command.ops >> rsvpsimd::kUndo & 1) == 0)
            continue;
        ASSERT_EQ(done->first->call(1), RSVP_MOR_OK) << command.name;
        const std::string after = Shown(fd, command.target, fieldOf(command));
        const size_t digits = std::strcmp(done->first->shown, "key") == 0 ? 2 * RSVP_MOR_AUTH_KEY_SIZE : 2;
        const bool rowWasMade = done->second.empty() && !command.makesRow;
        const std::string expected = rowWasMade ? std::string(digits, '0') : place(command, done->second, digits);
        EXPECT_EQ(place(command, after, digits), expected) << command.name;
        EXPECT_EQ(FlagsOfInterface() & command.flag, 0U) << command.name;
    }
    RSVP_MOR_LIPCClose(fd);
    // Every setting that the daemon shows in a read is set here, except the end of the service itself.
    for (const rsvpsimd::Command &command : rsvpsimd::AllCommands())
        EXPECT_TRUE(command.field.empty() || command.name == "globalDisable" || covered.contains(&command))
            << int{command.msgClass} << " " << command.name;
}

TEST(Commands, SwitchesAndResetsShow)
{
    const program::HostDirectory directory("[[interface]]\nifWord1 = 66051\n"
                                           "counters2 = { countsA = [7] }\n"
                                           "[[interface]]\nifWord1 = 3\ncounters2 = { countsA = [8] }\n"
                                           "[[auth]]\nauthEntryWord0 = 1\nauthEntryWord1 = 2\nauthEntryLong0 = 9\n"
                                           "[[auth]]\nauthEntryWord0 = 2\nauthEntryWord1 = 1\nauthEntryLong0 = 9\n"
                                           "[global]\nstatWord4 = 1000\n");
    ASSERT_EQ(RSVP_MOR_SetMplsRsvp(0), RSVP_MOR_OK) << directory.Log();
    const int32_t fd = RSVP_MOR_LIPCOpen();
    const RSVP_MOR_Session session{0x0A000004, {0, 0}, 0x1234, 0x0A000001};
    for (const RSVP_MOR_DebugSwitch &debug : {RSVP_MOR_DebugSwitch{session, 4}, {session, 16}, {session, 64}})
        EXPECT_EQ(RSVP_MOR_SetDebug(0, &debug), RSVP_MOR_OK);
    const RSVP_MOR_DebugSwitch undone{session, 16};
    EXPECT_EQ(RSVP_MOR_SetDebug(1, &undone), RSVP_MOR_OK);
    RSVP_MOR_DebugInfo info;
    EXPECT_EQ(RSVP_MOR_GetRsvpDebug(fd, &info), RSVP_MOR_OK);
    EXPECT_EQ(info.debugFlags, 68U);
    EXPECT_EQ(info.session1.tunnelEndpoint, 0U);
    EXPECT_EQ(std::memcmp(&info.session2, &session, sizeof(session)), 0);

    const RSVP_MOR_StatisticsKey oneInterface{66051, 0};
    const RSVP_MOR_StatisticsKey whole{0, 0};
    EXPECT_EQ(RSVP_MOR_ResetStatistics(fd, &oneInterface), RSVP_MOR_OK);
    EXPECT_EQ(RSVP_MOR_ResetStatistics(fd, &whole), RSVP_MOR_OK);
    RSVP_MOR_IfInfo interface;
    EXPECT_EQ(RSVP_MOR_GetIfInfo(fd, 66051, &interface), RSVP_MOR_OK);
    EXPECT_EQ(interface.counters2.countsA[0], 0U);
    EXPECT_EQ(RSVP_MOR_GetIfInfo(fd, 3, &interface), RSVP_MOR_OK);
    EXPECT_EQ(interface.counters2.countsA[0], 8U);
    RSVP_MOR_GlobalInfo global;
    EXPECT_EQ(RSVP_MOR_GetGlobalInfo(fd, &global), RSVP_MOR_OK);
    EXPECT_EQ(global.statWord4, 0U);

    const RSVP_MOR_AuthEntryKey entry{1, 2, 3, 4};
    EXPECT_EQ(RSVP_MOR_ResetAuth(&entry), RSVP_MOR_OK);
    RSVP_MOR_ReplyAuth auth;
    EXPECT_EQ(RSVP_MOR_GetFirstAuth(fd, &auth), RSVP_MOR_OK);
    EXPECT_EQ(auth.authEntryLong0, 0U);
    const RSVP_MOR_AuthWalkKey first{1, 2};
    EXPECT_EQ(RSVP_MOR_GetNextAuth(fd, &first, &auth), RSVP_MOR_OK);
    EXPECT_EQ(auth.authEntryLong0, 9U);
    RSVP_MOR_LIPCClose(fd);
}

} // namespace
