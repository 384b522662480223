// The wire as data: one table of fields for every value and every key that the protocol knows. Whoever wants
// to build, name, print or document bytes of the protocol asks these tables; nothing else in the daemon knows
// an offset. Names are the field names of the records, with nested objects dotted
// ("slots[0].slotSender.lspId").
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace rsvpsimd {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

enum class Order : std::uint8_t {
    Network, // unsigned number, most significant byte first
    Address, // the same, and people read it as dotted IPv4
    Raw,     // bytes that nobody swaps; of width 1 it is a small number
    Float,   // single-precision number, most significant byte first
    Rate,    // a rate in the form that CR-LSP values carry it
};

// A field that exists only in one form of an object: the number in `field` is one of `kinds`, or is none of
// them.
struct Form {
    std::string field;
    std::vector<std::uint64_t> kinds;
    bool among = true;
};

struct Field {
    std::string name;
    std::size_t offset = 0;
    std::size_t width = 0; // of one element
    std::size_t count = 1;
    Order order = Order::Network;
    bool secret = false; // never printed
    std::optional<Form> form = {};
};

struct Layout {
    std::string name;
    std::size_t size = 0;
    std::vector<Field> fields; // in the order of the wire
};

// A count in front of entries that are all alike.
struct ListLayout {
    std::string name;
    std::size_t countWidth = 0;
    std::string entry; // name of the entry's layout
};

using Value = std::variant<std::uint64_t, double, Bytes, std::vector<std::uint64_t>>;
using Record = std::map<std::string, Value, std::less<>>;

// Tells the number that a record holds under a name, where it holds one: this is how a form is chosen.
using KindLookup = std::function<std::uint64_t(std::string_view)>;

std::span<const Layout> AllLayouts();
std::span<const ListLayout> AllListLayouts();
const Layout *FindLayout(std::string_view name);
const ListLayout *FindListLayout(std::string_view name);

// For names that stand in the program's own tables, where a miss is a fault of the program: throws
// std::logic_error.
const Layout &LayoutNamed(std::string_view name);

// The field of this name in the form that `kinds` chooses; null if there is none.
const Field *FindField(const Layout &layout, std::string_view name, const KindLookup &kinds);
KindLookup KindsOf(const Record &record);
KindLookup KindsOf(const Layout &layout, ByteView image);

// Stores a value at the field's place. The answer is empty, or says why the value does not fit the field.
std::string StoreField(std::span<std::uint8_t> image, const Field &field, const Value &value);
std::string ShowField(ByteView image, const Field &field);

// Fields that the record does not name are 0. Throws std::invalid_argument for a name that the layout does
// not have in the record's form, and for a value that does not fit.
Bytes Encode(const Layout &layout, const Record &record);
Bytes EncodeList(const ListLayout &list, std::span<const Record> entries);

// True if every byte that belongs to no field is 0.
bool GapsAreZero(const Layout &layout, ByteView image);

// Numbers of the wire, most significant byte first.
std::uint64_t LoadNet(ByteView bytes);
void StoreNet(std::span<std::uint8_t> bytes, std::uint64_t number);
void AppendNet(Bytes &bytes, std::uint64_t number, std::size_t width);

} // namespace rsvpsimd
