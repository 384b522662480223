// What a description says without a record of its kind. The descriptions themselves are in status_records.cpp,
// lsp_records.cpp and p2mp_records.cpp.
#include "manager/record/record.h"

#include <algorithm>

namespace manager {
namespace {

void AddLeaves(const RecordDescription &description, const std::string &prefix, uint32_t base, std::vector<Leaf> &out)
{
    for (const Field &field : description.fields) {
        if (field.count != 0 || field.condition.test != Condition::Test::Always)
            continue;
        if (field.kind == FieldKind::Record)
            AddLeaves(*field.record, prefix + field.name + ".", base + field.offset, out);
        else if (field.kind != FieldKind::List && field.kind != FieldKind::Chain)
            out.push_back({prefix + field.name, &field, base + field.offset});
    }
}

} // namespace

std::span<const RecordDescription *const> AllRecords()
{
#define MANAGER_DESCRIPTION(Type) &Describe<Type>(),
    static const RecordDescription *const all[] = {MANAGER_RECORDS(MANAGER_DESCRIPTION)};
#undef MANAGER_DESCRIPTION
    return all;
}

bool IsPresent(const Condition &condition, const void *record)
{
    if (condition.test == Condition::Test::Always)
        return true;
    const bool equal = Load<uint8_t>(At(record, condition.tagOffset)) == condition.tag;
    return equal == (condition.test == Condition::Test::Equal);
}

bool IsZero(const Field &field, const void *record)
{
    const std::byte *start = At(record, field.offset);
    const size_t size = size_t{field.width} * std::max<uint32_t>(field.count, 1);
    return std::all_of(start, start + size, [](std::byte byte) { return byte == std::byte{0}; });
}

std::vector<Leaf> Leaves(const RecordDescription &description)
{
    std::vector<Leaf> out;
    AddLeaves(description, "", 0, out);
    return out;
}

std::string PathAt(const RecordDescription &description, uint32_t offset, uint32_t size)
{
    for (const Field &field : description.fields) {
        if (field.offset == offset && field.width == size)
            return field.name;
        if (field.kind == FieldKind::Record && field.count == 0 && offset >= field.offset &&
            offset + size <= field.offset + field.width)
            return std::string(field.name) + "." + PathAt(*field.record, offset - field.offset, size);
    }
    return {};
}

uint64_t LoadNumber(const void *at, uint32_t width)
{
    switch (width) {
    case 1:
        return Load<uint8_t>(at);
    case 2:
        return Load<uint16_t>(at);
    case 4:
        return Load<uint32_t>(at);
    default:
        return Load<uint64_t>(at);
    }
}

} // namespace manager
