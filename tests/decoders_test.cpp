// The rules by which the reads differ: what each does with a value that is long, short, missing or repeated, in which
// order items may come, what is converted and what stays raw, and what a release leaves behind.
#include "lsp/lists.h"
#include "status/reads.h"
#include "tables/reads.h"
#include "tests/support/operations.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace scripted;

namespace {

class Decoders : public WorldTest {};

constexpr uint32_t kFail = RSVP_MOR_ERR_FAIL;

// ---- Fixed records ----

TEST_F(Decoders, FillTheFrontOfAFixedRecordAndConvertTheWhole)
{
    for (const Operation &operation : Operations()) {
        const Answer &answer = operation.answer;
        if (answer.reader == kDropped || answer.reader == kLists || answer.content.empty())
            continue;
        const auto expectRecord = [&](const Bytes &body, const Bytes &value, bool taken) {
            const Outcome outcome = Perform(operation, Reply(0, body));
            Bytes expected = outcome.before;
            expected.replace(0, std::min(value.size(), answer.size), value, 0, answer.size);
            EXPECT_EQ(outcome.status, taken ? RSVP_MOR_OK : kFail) << operation.name << " " << body.size();
            EXPECT_EQ(ToHex(outcome.after), ToHex(taken ? ToHost(answer.content, expected) : outcome.before))
                << operation.name << ", value of " << value.size();
        };
        const bool exact = answer.reader == kExact;
        for (const size_t size : {size_t{0}, size_t{1}, size_t{3}, answer.size / 2, answer.size - 1, answer.size,
                                  answer.size + 1, answer.size + 40}) {
            const bool taken = exact ? size == answer.size : answer.reader != kNeedsCount || size >= answer.size;
            expectRecord(Item(5, Pattern(size)), Pattern(size), taken);
        }
        expectRecord("", "", answer.reader == kTaken);
        expectRecord(Bytes(answer.size + 4, '\xff'), "",
                     answer.reader == kTaken || exact); // nothing that can be read
        if (exact)
            expectRecord(Item(5, Pattern(3)) + Item(5, Pattern(answer.size - 7)), Pattern(3), true);
    }
}

TEST_F(Decoders, ReadAnInterfaceRowFromZeroedBytes)
{
    const struct {
        const char *value;
        uint32_t ifIndex;
        uint16_t ifConfig;
    } rows[] = {{"00000102 0005", 258, 5},
                {"0102", 0x01020000, 0},
                {"", 0, 0},
                {"00000102 05", 258, 0x500},
                {"00000102 0005 ffff ff", 258, 5}};
    for (const auto &row : rows) {
        RSVP_MOR_IfConfig config = {77, 77};
        world.replies = {Reply(0, Item(5, Hex(row.value)))};
        EXPECT_EQ(RSVP_GetIfConfig(1, &config), RSVP_MOR_OK);
        EXPECT_EQ(config.ifIndex, row.ifIndex) << row.value;
        EXPECT_EQ(config.ifConfig, row.ifConfig) << row.value;
    }
}

TEST_F(Decoders, TranslateTheRoleOfATunnel)
{
    const uint8_t roles[][2] = {{0, 1}, {1, 0}, {2, 1}, {3, 2}, {4, 1}, {255, 1}};
    for (const auto &role : roles) {
        Bytes value = Pattern(60);
        value[55] = static_cast<char>(role[0]);
        world.replies = {Reply(0, Item(5, value))};
        RSVP_MOR_ReplyTunnel tunnel = {};
        EXPECT_EQ(RSVP_GetFirstTunnel(&tunnel), RSVP_MOR_OK);
        EXPECT_EQ(tunnel.tunnelRole, role[1]) << int{role[0]};
    }
}

TEST_F(Decoders, RefuseBadArgumentsWithoutASession)
{
    alignas(16) uint8_t memory[1024] = {};
    const Record here = {memory}; // any key and any record
    for (const Operation &operation : Operations())
        EXPECT_TRUE(!OwnSession(operation) || operation.answer.size == 0 || operation.call(0, {nullptr}) == kFail)
            << operation.name << " without a record";
    const uint32_t statuses[] = {
        // no key
        RSVP_MOR_GetFrrFacilityDBTbl(3, nullptr, here), RSVP_MOR_GetFrrFacilityDBTbl(5, nullptr, here),
        RSVP_MOR_GetFrrGeneralTbl(nullptr, here), RSVP_MOR_GetNextFrrGeneralTbl(nullptr, here),
        RSVP_GetTunnel(nullptr, here), RSVP_GetNextTunnel(nullptr, here), RSVP_GetNextIngressTunnel(nullptr, here),
        RSVP_MOR_ResetAuth(nullptr), RSVP_MOR_SetDebug(0, nullptr), RSVP_MOR_ResetStatistics(kHeld, nullptr),
        RSVP_MOR_GetNextNbr(kHeld, nullptr, here), RSVP_MOR_GetNextAuth(kHeld, nullptr, here),
        RSVP_MOR_GetNextPsbInfo(kHeld, nullptr, here, here), RSVP_MOR_GetNextPsbInfo(kHeld, here, nullptr, here),
        RSVP_MOR_GetNextRsbInfo(kHeld, nullptr, here, here, here),
        RSVP_MOR_GetNextRsbInfo(kHeld, here, nullptr, here, here),
        RSVP_MOR_GetNextRsbInfo(kHeld, here, here, nullptr, here),
        RSVP_MOR_GetNextPhsbInfo(kHeld, nullptr, here, here), RSVP_MOR_GetNextPhsbInfo(kHeld, here, nullptr, here),
        RSVP_MOR_GetNextCrlsp(kHeld, nullptr, here), RSVP_MOR_GetP2mpPsbInfo(kHeld, 8, 3, nullptr, here),
        RSVP_MOR_GetP2mpRsbInfo(kHeld, 3, nullptr, here), RSVP_MOR_GetP2mpCrlsp(kHeld, 3, nullptr, here),
        // a message operation that the table does not have; the whole number is compared
        RSVP_MOR_GetFrrFacilityDBTbl(0, here, here), RSVP_MOR_GetFrrFacilityDBTbl(2, here, here),
        RSVP_MOR_GetFrrFacilityDBTbl(6, here, here), RSVP_MOR_GetFrrFacilityDBTbl(0x103, here, here),
        rsvp_mor_ReadFrrGeneralTable(2, here, here), rsvp_mor_ReadFrrGeneralTable(6, here, here),
        rsvp_mor_QueryIfConfig(2, 1, here), rsvp_mor_QueryIfConfig(6, 1, here),
        rsvp_mor_ReadTunnelTable(2, here, here), rsvp_mor_ReadTunnelTable(8, here, here),
        rsvp_mor_ReadCHopTable(2, here), rsvp_mor_ReadCHopTable(6, here), rsvp_mor_ReadArHopTable(2, here),
        rsvp_mor_ReadArHopTable(6, here), rsvp_mor_ReadResourceTable(2, here), rsvp_mor_ReadResourceTable(6, here)};
    for (size_t i = 0; i < std::size(statuses); ++i)
        EXPECT_EQ(statuses[i], kFail) << "call " << i;
    for (const std::string &call : world.calls)
        EXPECT_TRUE(call.starts_with("DEV_") || call.starts_with("SERVICE_")) << call;
}

// ---- Lists ----

// The layout is that of the entries; null for a value that is refused and must leave the slot unchanged.
template <typename List>
void ExpectList(uint32_t (*decode)(const uint8_t *, uint32_t, List *), size_t countWidth, const Bytes &wire,
                const char *layout)
{
    SCOPED_TRACE(ToHex(wire));
    const std::vector<uint8_t> value(wire.begin(),
                                     wire.end()); // a block of exactly this size: a read beyond it is seen
    std::remove_pointer_t<decltype(List::entries)> old;
    List list = {&old, 9};
    EXPECT_EQ(decode(value.data(), static_cast<uint32_t>(value.size()), &list), layout == nullptr ? kFail : 0);
    EXPECT_EQ(world.blocks.size(), layout == nullptr ? 0u : 1u);
    if (layout == nullptr) {
        EXPECT_TRUE(list.entries == &old && list.count == 9);
        return;
    }
    const Bytes entries = wire.substr(countWidth);
    EXPECT_EQ(list.count * sizeof(old), entries.size());
    EXPECT_EQ(world.blocks[list.entries], entries.size());
    EXPECT_EQ(ToHex(Bytes(reinterpret_cast<char *>(list.entries), entries.size())), ToHex(ToHost(layout, entries)));
    free(list.entries);
}

TEST_F(Decoders, TakeAListWholeOrNotAtAll)
{
    const auto list = [](const char *word) { return Body(word).substr(4); };
    const char *hops = "r4 4 r28 r8 4 r24 r36"; // an address, a label, another kind
    const char *routes = "r4 4 r8 4 r4";
    ExpectList(rsvp_mor_DecodeHopList, 2, list("7x3"), hops);
    ExpectList(rsvp_mor_DecodeHopList, 2, Hex("0000"), "");
    for (const Bytes &value : {list("7x1/37"), list("7x1/39"), Hex("01"), Hex("")})
        ExpectList(rsvp_mor_DecodeHopList, 2, value, nullptr);
    ExpectList(rsvp_mor_DecodeEntryList16, 2, list("3x2"), routes);
    for (const Bytes &value : {list("3x1/13"), list("3x1/15"), Hex("8000") + Pattern(24), Hex("00")})
        ExpectList(rsvp_mor_DecodeEntryList16, 2, value, nullptr);
    ExpectList(rsvp_mor_DecodeEntryList32, 4, list("6x2"), routes);
    ExpectList(rsvp_mor_DecodeEntryList32, 4, Hex("00010002") + Pattern(24), routes); // the low half counts
    for (const Bytes &value : {list("6x2/27"), list("6x2/29"), Hex("0002"), Hex("")})
        ExpectList(rsvp_mor_DecodeEntryList32, 4, value, nullptr);
    world.failingAllocation = world.allocations + 1; // even a list of no entries needs a block
    ExpectList(rsvp_mor_DecodeHopList, 2, Hex("0000"), nullptr);
}

TEST_F(Decoders, TakeANameToItsFirstNul)
{
    const struct {
        Bytes value;
        const char *text;
    } rows[] = {{"abc", "abc"}, {"a", "a"}, {Bytes("abc\0defg", 8), "abc"}, {"", ""}, {Bytes("\0", 1), ""}};
    for (const auto &row : rows) {
        RSVP_MOR_ReplyCrlsp crlsp = {};
        world.replies = {Reply(0, Item(17, row.value)), Reply(0, Item(34, row.value))};
        EXPECT_EQ(RSVP_MOR_GetFirstCrlsp(kHeld, &crlsp), RSVP_MOR_OK);
        const RSVP_MOR_P2mpCrlspKey key = {};
        RSVP_MOR_P2mpCrlspInfo p2mp = {};
        EXPECT_EQ(RSVP_MOR_GetP2mpCrlsp(kHeld, 3, &key, &p2mp), RSVP_MOR_OK);
        for (char *name : {crlsp.name, p2mp.name}) {
            EXPECT_STREQ(name, row.text);
            EXPECT_EQ(world.blocks[name], row.value.size() + 1);
        }
        RSVP_MOR_FreeReplyCrlsp(&crlsp);
        RSVP_MOR_FreeP2mpCrlspInfo(&p2mp);
    }
}

// ---- Blocks: a record is written in the words of its items, chains in the order of their nodes ----

std::string Word(uint32_t type, bool there)
{
    return there ? std::to_string(type) + " " : "";
}

template <typename List> std::string Word(uint32_t type, const List &list)
{
    return list.entries == nullptr ? Word(type, list.count != 0)
                                   : std::to_string(type) + "x" + std::to_string(list.count) + " ";
}

std::string Words(const RSVP_MOR_ReplyFSInfo *node)
{
    std::string words;
    for (; node != nullptr; node = node->next)
        words += "13=" + std::to_string(node->label) + " " + Word(7, node->rro);
    return words;
}

std::string Words(const RSVP_MOR_ReplyPsb &psb)
{
    return Word(15, psb.session.tunnelEndpoint != 0) + Word(3, psb.routeList3) + Word(4, psb.routeList4) +
           Word(5, psb.routeList5) + Word(6, psb.routeList6) + Word(7, psb.hopList);
}

std::string Words(const RSVP_MOR_ReplyRsb &rsb)
{
    return Word(12, rsb.session.tunnelEndpoint != 0) + Words(rsb.fsList);
}

std::string Words(const RSVP_MOR_ReplyPhsb &phsb)
{
    std::string words = Word(11, phsb.session.tunnelEndpoint != 0);
    for (const RSVP_MOR_ReplyFDInfo *node = phsb.fdList; node != nullptr; node = node->next)
        words += "14=" + std::to_string(node->flowSpec.slackTerm) + " " + Words(node->fsList);
    return words;
}

std::string Words(const RSVP_MOR_ReplyCrlsp &crlsp)
{
    return Word(1, crlsp.key.keyWord0 != 0) + Word(7, crlsp.hopList) + Word(17, crlsp.name != nullptr);
}

std::string Words(const RSVP_MOR_P2mpPsbInfo &psb)
{
    return Word(35, psb.pathState.session.p2mpId != 0) + Word(36, psb.resvState.resvByte1 != 0) +
           Word(37, psb.subGroup.subGroupHalf1 != 0) + Word(38, psb.halfC != 0) +
           Word(39, psb.slots[1].slotByte != 0) + Word(4, psb.routeList4) + Word(5, psb.routeList5) +
           Word(6, psb.routeList6) + Word(7, psb.hopList);
}

std::string Words(const RSVP_MOR_P2mpRsbInfo &rsb)
{
    return Word(35, rsb.pathState.session.p2mpId != 0) + Word(36, rsb.resvState.resvByte1 != 0) +
           Word(37, rsb.subGroup.subGroupHalf1 != 0) + Word(7, rsb.hopList);
}

std::string Words(const RSVP_MOR_P2mpCrlspInfo &crlsp)
{
    std::string words = Word(31, crlsp.key.keyWord0 != 0);
    const RSVP_MOR_P2mpRro *last = nullptr;
    for (const RSVP_MOR_P2mpRro *node = crlsp.rroHead; node != nullptr; last = node, node = node->next)
        words += "32=" + std::to_string(node->subWord0) + " " + Word(33, node->hopList);
    EXPECT_EQ(crlsp.rroTail, last);
    return words + Word(34, crlsp.name != nullptr);
}

const Operation &Find(const std::string &name)
{
    return *std::ranges::find(Operations(), name, &Operation::name);
}

// A row is the items of a reply, an arrow and what the record then holds, after FAIL if the call failed.
template <typename Block> void ExpectWalks(const char *name, const std::vector<std::string> &rows)
{
    const Operation &operation = Find(name);
    for (const std::string &row : rows) {
        SCOPED_TRACE(name);
        Reset();
        const size_t arrow = row.find("->");
        const Outcome outcome = Perform(operation, Reply(0, Body(row.substr(0, arrow))));
        Block record;
        memcpy(&record, outcome.after.data(), sizeof(record));
        EXPECT_EQ(row.substr(0, arrow) + "-> " + (outcome.status == kFail ? "FAIL " : "") + Words(record), row + " ");
        if (outcome.status == RSVP_MOR_OK)
            Release(operation);
        EXPECT_TRUE(Clean());
    }
}

// Each block has its own rules: in which order the items must come, whether a foreign item fails the read, and which
// item a list belongs to. Everywhere a repeated list replaces the first, and a failed read leaves the fixed part
// alone.
TEST_F(Decoders, WalkTheItemsOfEachBlockByItsRules)
{
    ExpectWalks<RSVP_MOR_ReplyPsb>(
        "RSVP_MOR_GetFirstPsbInfo",
        {"->", "3x2 4 6x0 7x3 -> 3x2 4x1 6x0 7x3", "15 3x2 4 5 6x2 7x3 -> 15 3x2 4x1 5x1 6x2 7x3",
         "7x3 6x2 5 4 3x2 15 -> 15 3x2 4x1 5x1 6x2 7x3", "15/439 -> FAIL", "15/441 -> FAIL",
         "3x2 6x1 7 15/439 -> FAIL", "15 3x2 99 -> FAIL 15", "3x2 13 -> FAIL", "3x2 14 -> FAIL", "3x2 0 -> FAIL",
         "3x1 3x2 -> 3x2", "7x3 15 7x1 7x2 -> 15 7x2", "6x1 6x2/27 -> FAIL", "3 4 5 6 7x1/37 -> FAIL"});
    ExpectWalks<RSVP_MOR_ReplyRsb>(
        "RSVP_MOR_GetFirstRsbInfo",
        {"->", "13=1 -> 13=1", "12 13=1 7x2 13=2 -> 12 13=2 13=1 7x2", "12 13=1 13=2 7x3 -> 12 13=2 7x3 13=1",
         "12 13=1 11 14 15 99 7x0 -> 12 13=1 7x0", "12 7 -> FAIL 12", "7 -> FAIL", "12 13=1 7x1 7x2 -> FAIL 12",
         "13=1 7x1/39 -> FAIL", "13=1 7x2 13=2 12 -> 12", "13=1 12 7 -> FAIL 12", "12 13=1 12 13=2 -> 12 13=2",
         "12/123 -> FAIL", "12/125 -> FAIL", "12 13=1 7 12/123 -> FAIL 12", "12 13=1 7 13/11 -> FAIL 12",
         "13=1 13/13 -> FAIL"});
    ExpectWalks<RSVP_MOR_ReplyPhsb>("RSVP_MOR_GetFirstPhsbInfo",
                                    {"->", "14=1 13=1 13=2 14=2 13=3 11 -> 11 14=2 13=3 14=1 13=2 13=1",
                                     "11 14=1 14=2 -> 11 14=2 14=1", "14=1 7x2 11 13=1 99 12 7 -> 11 14=1 13=1",
                                     "11 13=1 -> FAIL 11", "13=1 14=1 -> FAIL", "14=1 13=1 14/43 -> FAIL",
                                     "14=1 14/45 -> FAIL", "14=1 13=1 13/11 -> FAIL", "14=1 13=1 11/55 -> FAIL",
                                     "11 14=1 11/57 -> FAIL 11"});
    ExpectWalks<RSVP_MOR_ReplyCrlsp>("RSVP_MOR_GetFirstCrlsp",
                                     {"->", "1 -> 1", "17 7x2 1 -> 1 7x2 17", "1 99 7x2 15 17 3 -> 1 7x2 17",
                                      "7x2 7x1 1 17 17 -> 1 7x1 17", "7x2 17 7x1 17 -> 7x1 17", "7x2 1/127 -> FAIL",
                                      "17 1/129 -> FAIL", "1 17 7x1/37 -> FAIL 1", "7x1 7x1/39 -> FAIL"});
    ExpectWalks<RSVP_MOR_P2mpPsbInfo>("RSVP_MOR_GetP2mpPsbInfo",
                                      {"->", "7 6x2 5 4 35 36 37 38 39 -> 35 36 37 38 39 4x1 5x1 6x2 7x1",
                                       "39 38 37 36 35 4 5 6x2 7 -> 35 36 37 38 39 4x1 5x1 6x2 7x1",
                                       "35 3 99 33 4 -> 35 4x1", "35/300 36/200 37/30 38/44 39/80 -> 35 36 37 38 39",
                                       "4x1 4x2 7x2 7x1 -> 4x2 7x1", "4 6x1/17 -> FAIL 4x1", "4 7 35/267 -> FAIL",
                                       "5 36/104 -> FAIL", "37/21 -> FAIL", "6 38/37 -> FAIL", "7 39/60 -> FAIL"});
    ExpectWalks<RSVP_MOR_P2mpRsbInfo>("RSVP_MOR_GetP2mpRsbInfo",
                                      {"->", "7x2 37 36 35 -> 35 36 37 7x2", "35 99 36 4 37 38 7x0 -> 35 36 37 7x0",
                                       "7x1 7x2 -> 7x2", "35 7x2/75 -> FAIL 35", "7x1 7x2/73 -> FAIL",
                                       "7 35/267 -> FAIL", "7 36/104 -> FAIL", "7 37/21 -> FAIL"});
    ExpectWalks<RSVP_MOR_P2mpCrlspInfo>(
        "RSVP_MOR_GetP2mpCrlsp",
        {"->", "31 32=1 33x2 32=2 32=3 33x1 34 -> 31 32=1 33x2 32=2 32=3 33x1 34",
         "34 32=1 99 7 33x3 31 -> 31 32=1 33x3 34", "32=1 33x1 33x2 34 34 -> 32=1 33x2 34", "31 33x1 -> FAIL 31",
         "32=1 33x0 -> FAIL", "32=1 33x1/37 -> FAIL", "32=1 33x1/39 -> FAIL", "31/83 -> FAIL", "34 31/85 -> FAIL",
         "32=1 33 32/47 -> FAIL", "32/49 -> FAIL", "32=1 33x1 34 32=2 33x2 32=3 33/1 -> FAIL"});
}

// A second get into a record whose lists were not given back: what the record then holds, and how many blocks nobody
// can release any more. Each block has its own rule, which the headers tell.
template <typename Block>
void ExpectSecondGet(const char *name, const char *first, const char *second, const std::string &words, size_t lost)
{
    SCOPED_TRACE(std::string(name) + ": " + second);
    const Operation &operation = Find(name);
    Block record = {};
    world.replies = {Reply(0, Body(first)), Reply(0, Body(second))};
    EXPECT_EQ(operation.call(0, {&record}), RSVP_MOR_OK);
    const bool failed = operation.call(0, {&record}) != RSVP_MOR_OK;
    EXPECT_EQ(failed ? "FAIL " : Words(record), words + " ");
    if (!failed)
        operation.answer.release({&record});
    EXPECT_EQ(world.blocks.size(), lost);
    for (const auto &[block, size] : std::map(world.blocks))
        free(block);
}

TEST_F(Decoders, LoseKeepOrReleaseWhatASlotHeld)
{
    ExpectSecondGet<RSVP_MOR_ReplyPsb>("RSVP_MOR_GetFirstPsbInfo", "3x2 7x3", "7x1", "3x2 7x1", 1);
    ExpectSecondGet<RSVP_MOR_ReplyPsb>("RSVP_MOR_GetFirstPsbInfo", "3x2 7x3", "7x1 99", "FAIL", 1);
    ExpectSecondGet<RSVP_MOR_ReplyPsb>("RSVP_MOR_GetFirstPsbInfo", "3 4 5 6 7", "3 4 5 6 7", "3x1 4x1 5x1 6x1 7x1",
                                       5);
    ExpectSecondGet<RSVP_MOR_ReplyRsb>("RSVP_MOR_GetFirstRsbInfo", "12 13=1", "12 13=2", "12 13=2", 1);
    ExpectSecondGet<RSVP_MOR_ReplyRsb>("RSVP_MOR_GetFirstRsbInfo", "13=1", "13=2", "13=2 13=1", 0);
    ExpectSecondGet<RSVP_MOR_ReplyRsb>("RSVP_MOR_GetFirstRsbInfo", "13=1", "7", "FAIL", 0);
    ExpectSecondGet<RSVP_MOR_ReplyPhsb>("RSVP_MOR_GetFirstPhsbInfo", "14=1", "11 14=2", "11 14=2 14=1", 0);
    ExpectSecondGet<RSVP_MOR_ReplyPhsb>("RSVP_MOR_GetFirstPhsbInfo", "14=1", "14=2 13/11", "FAIL", 0);
    ExpectSecondGet<RSVP_MOR_ReplyCrlsp>("RSVP_MOR_GetFirstCrlsp", "7x2 17", "17", "7x2 17", 1);
    ExpectSecondGet<RSVP_MOR_ReplyCrlsp>("RSVP_MOR_GetFirstCrlsp", "7x2 17", "7 17", "7x1 17", 2);
    ExpectSecondGet<RSVP_MOR_ReplyCrlsp>("RSVP_MOR_GetFirstCrlsp", "7x2 17", "1/127", "FAIL", 0);
    ExpectSecondGet<RSVP_MOR_P2mpPsbInfo>("RSVP_MOR_GetP2mpPsbInfo", "4x2 7", "4x1", "4x1 7x1", 1);
    for (const char *refused : {"4x1/13", "5x1/13", "6x1/17", "7x1/37"})
        ExpectSecondGet<RSVP_MOR_P2mpPsbInfo>("RSVP_MOR_GetP2mpPsbInfo", "4x2 7", refused, "FAIL", 0);
    ExpectSecondGet<RSVP_MOR_P2mpPsbInfo>("RSVP_MOR_GetP2mpPsbInfo", "4x2 7", "4x1 37/21", "FAIL", 2);
    ExpectSecondGet<RSVP_MOR_P2mpRsbInfo>("RSVP_MOR_GetP2mpRsbInfo", "7x2", "7x1", "7x1", 1);
    ExpectSecondGet<RSVP_MOR_P2mpRsbInfo>("RSVP_MOR_GetP2mpRsbInfo", "7x2", "37/21", "FAIL", 1);
    ExpectSecondGet<RSVP_MOR_P2mpCrlspInfo>("RSVP_MOR_GetP2mpCrlsp", "32=1 34", "31 32=2 33x1 34",
                                            "31 32=1 32=2 33x1 34", 1);
    ExpectSecondGet<RSVP_MOR_P2mpCrlspInfo>("RSVP_MOR_GetP2mpCrlsp", "32=1 34", "32=2 33x0", "FAIL", 0);
}

TEST_F(Decoders, HoldABodyFullOfSubLsps)
{
    std::string words;
    for (int i = 1; i <= 157; ++i)
        words += "32=" + std::to_string(i) + " ";
    const Bytes body = Body(words + "99/16"); // 157 times 52, plus 20: all that a body can hold
    ASSERT_EQ(body.size(), 8184u);
    const RSVP_MOR_P2mpCrlspKey key = {};
    RSVP_MOR_P2mpCrlspInfo record = {};
    world.replies = {Reply(0, body)};
    EXPECT_EQ(RSVP_MOR_GetP2mpCrlsp(kHeld, 3, &key, &record), RSVP_MOR_OK);
    EXPECT_EQ(Words(record), words);
    RSVP_MOR_FreeP2mpCrlspInfo(&record);
}

// ---- What is converted inside a block: where one block differs from its neighbour ----

Bytes With(const char *words, std::initializer_list<std::pair<size_t, const char *>> patches)
{
    Bytes body = Body(words);
    for (const auto &[offset, hex] : patches)
        body.replace(4 + offset, Hex(hex).size(), Hex(hex));
    return body;
}

TEST_F(Decoders, ConvertTheUnionsByTheirKind)
{
    const auto get = [](const char *labelKind, const char *attrKind) {
        RSVP_MOR_ReplyPsb psb = {};
        world.replies = {Reply(0, With("15", {{228, labelKind},
                                              {236, "0102030405060708"},
                                              {248, attrKind},
                                              {252, "0102030405060708090a0b0c0d0e0f10"}}))};
        EXPECT_EQ(RSVP_MOR_GetFirstPsbInfo(kHeld, &psb), RSVP_MOR_OK);
        return psb;
    };
    RSVP_MOR_ReplyPsb psb = get("02", "01");
    EXPECT_EQ(psb.labelRequest.minVpi, 0x0102);
    EXPECT_EQ(psb.labelRequest.maxVci, 0x0708);
    EXPECT_EQ(psb.sessionAttr.affinityForm.includeAll, 0x090a0b0cu);
    EXPECT_EQ(psb.sessionAttr.affinityForm.flags, 0x0f);
    EXPECT_EQ(psb.sessionAttr.affinityForm.reserved, 0) << "not part of the form, so not written";
    psb = get("03", "07");
    EXPECT_EQ(psb.labelRequest.minDlci, 0x01020304u);
    EXPECT_EQ(psb.labelRequest.maxDlci, 0x05060708u);
    EXPECT_EQ(psb.sessionAttr.kind, 7);
    EXPECT_EQ(ToHex(Bytes(reinterpret_cast<char *>(&psb.sessionAttr), 20)),
              "0700000001020300" + std::string(24, '0'));
    psb = get("01", "00");
    EXPECT_EQ(ToHex(Bytes(reinterpret_cast<char *>(&psb.labelRequest.minVpi), 8)), "0102030405060708");
}

TEST_F(Decoders, KeepReservedBytesRawOrNotAsEachTwinHasIt)
{
    RSVP_MOR_ReplyPsb psb = {};
    world.replies = {Reply(0, With("15", {{4, "1234"}, {26, "ffff"}, {345, "aabbcc"}, {430, "01"}, {437, "08"}}))};
    EXPECT_EQ(RSVP_MOR_GetFirstPsbInfo(kHeld, &psb), RSVP_MOR_OK);
    EXPECT_EQ(psb.session.reserved[0], 0x12);
    EXPECT_EQ(psb.slots[0].reserved[0], 0) << "a gap of the value";
    EXPECT_EQ(psb.reserved1, 0u);
    EXPECT_EQ(psb.flagBytes[7], 8);

    const RSVP_MOR_P2mpStateKey key = {};
    RSVP_MOR_P2mpPsbInfo p2mp = {};
    const Bytes body =
        With("35", {{4, "1234"}, {22, "0506"}, {244, "00000010"}, {256, "00000013"}, {264, "00200021"}}) +
        With("36", {{8, "5678"}, {16, "9abc"}, {73, "ff"}, {76, "ffffffff"}, {88, "ffffffff"}}) +
        With("37", {{4, "5678"}, {12, "9abc"}, {17, "ff"}}) + With("39", {{60, "77"}});
    world.replies = {Reply(0, body)};
    EXPECT_EQ(RSVP_MOR_GetP2mpPsbInfo(kHeld, 8, 3, &key, &p2mp), RSVP_MOR_OK);
    EXPECT_EQ(p2mp.pathState.session.reserved, 0x1234) << "a number here";
    EXPECT_EQ(p2mp.pathState.ifRef.ifRefNumber, 0x0506);
    EXPECT_EQ(p2mp.pathState.stateWord0, 0x10u);
    EXPECT_EQ(p2mp.pathState.stateWord3, 0x13u);
    EXPECT_EQ(p2mp.pathState.stateHalf0, 0x20);
    EXPECT_EQ(p2mp.pathState.stateHalf1, 0x21);
    EXPECT_EQ(p2mp.resvState.reserved0 | p2mp.resvState.reserved1, 0u);
    for (const RSVP_MOR_P2mpSender &sender : {p2mp.resvState.filter, p2mp.subGroup.sender}) {
        EXPECT_EQ(sender.reserved[0], 0x56) << "raw";
        EXPECT_EQ(sender.subGroupReserved, 0x9abc) << "a number";
    }
    EXPECT_EQ(p2mp.subGroup.reserved, 0);
    EXPECT_EQ(p2mp.slots[1].slotByte, 0x77);
}

TEST_F(Decoders, ConvertRatesThroughTheirWholePart)
{
    const struct {
        const char *wire; // least significant byte first
        float rate;
    } rows[] = {
        {"00000000", 0.0f},          {"0000804b", 1.0f},      {"0003684f", 1000.0f},     {"02d0914e", 125000.0f},
        {"ffff7f4f", 16777215.0f},   {"4060804c", 131844.0f}, {"0000803f", 16777216.0f}, // 1.0: the whole part is 1
        {"ffff7f3f", 0.0f},                                                              // a little below 1
        {"000080bf", 0.0f},                                                              // minus 1
        {"000000cf", 0.0f},                                                              // far below 0
        {"0000804f", 4294967296.0f}, // 2 to the power of 32 and above are all ones
        {"0000807f", 4294967296.0f}, // plus infinity
        {"000080ff", 0.0f},          // minus infinity
        {"0000c07f", 0.0f},          // NaN
        {"ffffff4e", 2164260608.0f}, // a whole part with more bits than a float has: rounded
        {"01000000", 0.0f},          // the smallest number above 0
    };
    for (const auto &row : rows) {
        RSVP_MOR_ReplyCrlsp crlsp = {};
        const RSVP_MOR_P2mpCrlspKey key = {};
        RSVP_MOR_P2mpCrlspInfo p2mp = {};
        world.replies = {Reply(0, With("1", {{52, row.wire}, {60, "0003684f"}})),
                         Reply(0, With("31", {{28, "0003684f"}, {36, row.wire}}))};
        EXPECT_EQ(RSVP_MOR_GetFirstCrlsp(kHeld, &crlsp), RSVP_MOR_OK);
        EXPECT_EQ(crlsp.traffic.trafficRate0, row.rate) << row.wire;
        EXPECT_EQ(crlsp.traffic.trafficRate1, 1000.0f);
        EXPECT_EQ(RSVP_MOR_GetP2mpCrlsp(kHeld, 3, &key, &p2mp), RSVP_MOR_OK);
        EXPECT_EQ(p2mp.traffic.trafficRate0, 1000.0f);
        EXPECT_EQ(p2mp.traffic.trafficRate1, row.rate) << row.wire;
    }
}

// ---- Releases ----

TEST_F(Decoders, ReleaseWhatIsThereAndNothingElse)
{
    RSVP_MOR_ReplyPsb psb = {};
    RSVP_MOR_ReplyRsb rsb = {};
    RSVP_MOR_ReplyPhsb phsb = {};
    RSVP_MOR_ReplyCrlsp crlsp = {};
    RSVP_MOR_P2mpPsbInfo p2mpPsb = {};
    RSVP_MOR_P2mpRsbInfo p2mpRsb = {};
    RSVP_MOR_P2mpCrlspInfo p2mpCrlsp = {};
    RSVP_MOR_FreeReplyPsb(&psb);
    RSVP_MOR_FreeReplyRsb(&rsb);
    RSVP_MOR_FreeReplyRsb(nullptr);
    rsvp_mor_FreeReplyFSInfo(nullptr);
    RSVP_MOR_FreeReplyPhsb(&phsb);
    RSVP_MOR_FreeReplyPhsb(nullptr);
    rsvp_mor_FreeReplyFDInfo(nullptr);
    RSVP_MOR_FreeReplyCrlsp(&crlsp);
    RSVP_MOR_FreeP2mpPsbInfo(&p2mpPsb);
    RSVP_MOR_FreeP2mpRsbInfo(&p2mpRsb);
    RSVP_MOR_FreeP2mpCrlspInfo(&p2mpCrlsp);
    EXPECT_EQ(world.releases, 0u);

    for (const bool block : {false, true}) { // nodes that the caller made
        auto *subLsp = static_cast<RSVP_MOR_P2mpReplySubLsp *>(malloc(sizeof(RSVP_MOR_P2mpReplySubLsp)));
        subLsp->rroBlock = block ? malloc(1) : nullptr;
        rsvp_mor_FreeP2mpReplySubLsp(subLsp);
        auto *rro = static_cast<RSVP_MOR_P2mpRro *>(malloc(sizeof(RSVP_MOR_P2mpRro)));
        *rro = {};
        rro->hopList.entries = block ? static_cast<RSVP_MOR_HopEntry *>(malloc(36)) : nullptr;
        rsvp_mor_FreeP2mpRro(rro);
        EXPECT_TRUE(Clean());
    }
}

// The fixed part of a released record is the key for the next call.
TEST_F(Decoders, LeaveTheFixedPartToAReleasedRecord)
{
    RSVP_MOR_ReplyRsb rsb = {};
    world.replies = {Reply(0, Body("12 13=1 7")), Reply(9, "")};
    EXPECT_EQ(RSVP_MOR_GetFirstRsbInfo(kHeld, &rsb), RSVP_MOR_OK);
    RSVP_MOR_FreeReplyRsb(&rsb);
    EXPECT_EQ(RSVP_MOR_GetNextRsbInfo(kHeld, &rsb.session, &rsb.hop, &rsb.filter, &rsb), 9u);
    EXPECT_EQ(world.request.substr(12), Pattern(28));
}

} // namespace
