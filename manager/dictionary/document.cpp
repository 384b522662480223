// One walk over a record for both forms of a document.
#include "manager/dictionary/document.h"

#include "manager/dictionary/standard.h"
#include "manager/record/text.h"

#include <nlohmann/json.hpp>

namespace manager {
namespace {

// Null in place of meanings: the document has no `named`, not even what the standards say.
Json Document(const RecordDescription &description, const void *record, const RecordMeanings *meanings);

Json ElementToJson(const Field &field, const void *element, const RecordMeanings *inside)
{
    return field.kind == FieldKind::Record ? Document(*field.record, element, inside) : ScalarToJson(field, element);
}

Json FieldToJson(const Field &field, const void *record, const RecordMeanings *inside)
{
    const std::byte *start = At(record, field.offset);
    if (field.kind == FieldKind::List || field.kind == FieldKind::Chain) {
        Json out = Json::array();
        ForEachElement(field, record, [&](const void *element) { out.push_back(Document(*field.record, element, inside)); });
        return out;
    }
    if (field.count == 0)
        return ElementToJson(field, start, inside);
    Json out = Json::array();
    for (uint32_t i = 0; i < field.count; ++i)
        out.push_back(ElementToJson(field, start + size_t{i} * field.width, inside));
    return out;
}

// A text that is not UTF-8 cannot be in a document as it is; its bytes can.
void AddBytesOfText(const Field &field, const void *record, Json::object_t &out)
{
    if (field.kind != FieldKind::Text)
        return;
    const auto *text = Load<const char *>(At(record, field.offset));
    if (text != nullptr && !IsUtf8(text))
        out.emplace_back(std::string(field.name) + "Bytes", HexText(std::as_bytes(std::span(text, std::strlen(text)))));
}

// Routes by their names, as lists of addresses.
void AddNamedLists(const RecordDescription &description, const void *record, const RecordMeanings &meanings,
                   Json &named)
{
    for (const Field &field : description.fields) {
        const std::string &name = field.record == nullptr ? std::string() : meanings.Inside(field.name).name;
        if (name.empty())
            continue;
        Json addresses = Json::array();
        ForEachElement(field, record, [&](const void *element) {
            addresses.push_back(DottedText(static_cast<const RSVP_MOR_RouteEntry *>(element)->value));
        });
        named[name] = std::move(addresses);
    }
}

Json Document(const RecordDescription &description, const void *record, const RecordMeanings *meanings)
{
    Json::object_t out;
    out.reserve(description.fields.size() + 1);
    for (const Field &field : description.fields) {
        if (!IsPresent(field, record) || (field.isQuiet && IsZero(field, record)))
            continue;
        const RecordMeanings *inside =
            meanings == nullptr || field.record == nullptr ? nullptr : &meanings->Inside(field.name);
        out.emplace_back(field.name, FieldToJson(field, record, inside));
        AddBytesOfText(field, record, out);
    }
    if (meanings == nullptr)
        return out;
    Json named = Json::object();
    for (const Meaning &meaning : meanings->own)
        named[meaning.name] = ValueJson(meaning, record);
    AddNamedLists(description, record, *meanings, named);
    AddStandardNames(description, record, named);
    if (!named.empty())
        out.emplace_back("named", std::move(named));
    return out;
}

} // namespace

Json ToJson(const RecordDescription &description, const void *record, const RecordMeanings &meanings)
{
    return Document(description, record, &meanings);
}

Json ToJson(const RecordDescription &description, const void *record)
{
    return Document(description, record, nullptr);
}

} // namespace manager
