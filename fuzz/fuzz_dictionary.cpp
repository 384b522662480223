// Dictionary files: a file is either refused with a message that names it, or accepted, and then every record can be
// shown in words, whatever it holds, and every key can be copied.
#include "promise.h"

#include "manager/dictionary/document.h"
#include "manager/dictionary/find.h"
#include "manager/table/tables.h"

#include <nlohmann/json.hpp>

using namespace manager;

namespace {

// Texts and lists are pointers in a record, which must stay null.
void FillNumbers(const RecordDescription &record, std::byte *row, std::byte pattern)
{
    for (const Leaf &leaf : Leaves(record)) {
        if (leaf.field->kind != FieldKind::Text)
            std::memset(row + leaf.offset, static_cast<int>(pattern), leaf.field->width);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Dictionary dictionary;
    try {
        dictionary = Dictionary({reinterpret_cast<const char *>(data), size}, "input", AllTableShapes());
    } catch (const DictionaryError &error) {
        Must(std::string_view(error.what()).starts_with("input:"), "a refusal names the file");
        return 0;
    }
    std::vector<std::byte> row;
    for (const RecordDescription *record : AllRecords()) {
        for (const std::byte pattern : {std::byte{0}, std::byte{0x7f}, std::byte{0xff}}) {
            row.assign(record->size, std::byte{0});
            FillNumbers(*record, row.data(), pattern);
            const RecordMeanings &meanings = dictionary.Of(*record);
            for (const PlacedMeaning &placed : AllMeanings(*record, meanings)) {
                Must(placed.Offset() + placed.meaning->width <= record->size, "a meaning lies inside its record");
                ValueText(*placed.meaning, row.data() + placed.base);
            }
            Must(ToJson(*record, row.data(), meanings).dump() != "", "every record can be written");
        }
    }
    for (const TableShape &table : AllTableShapes()) {
        for (const KeyPart &part : dictionary.OfTable(table.name).nextKey)
            Must(part.offset + part.size <= table.row->size && part.keyOffset + part.size <= table.key->size,
                 "a part of a key lies inside row and key");
    }
    return 0;
}
