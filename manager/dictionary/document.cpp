// Documents are written as text at once: a walk prints one for each row, and building each as a tree of values first
// took longer than the call that read it. Texts that need care go through the JSON library; names of fields, names of
// a dictionary and its words need none.
#include "manager/dictionary/document.h"

#include "manager/dictionary/standard.h"
#include "manager/record/text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>

namespace manager {
namespace {

/** Appends to a text. It has room for what comes next already, so that an append is a copy of a few bytes. */
class Writer {
public:
    explicit Writer(std::string &text) : text_(text), used_(text.size()) { text_.resize(text_.capacity()); }
    ~Writer() { text_.resize(used_); }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    void operator+=(char c) { *Room(1) = c; }
    void operator+=(std::string_view text) { std::memcpy(Room(text.size()), text.data(), text.size()); }

    /** Takes so many bytes, for the caller to fill; what it does not fill it gives back. */
    char *Room(size_t size)
    {
        const size_t at = used_;
        used_ += size;
        if (used_ > text_.size())
            text_.resize(2 * used_);
        return text_.data() + at;
    }
    void GiveBack(size_t size) { used_ -= size; }

private:
    std::string &text_;
    size_t used_;
};

/** The members of one object or the elements of one array, with commas between them. */
class Members {
public:
    Members(Writer &out, char open, char close) : out_(out), close_(close) { out_ += open; }
    ~Members() { out_ += close_; }
    Members(const Members &) = delete;
    Members &operator=(const Members &) = delete;

    void Next()
    {
        if (!isFirst_)
            out_ += ',';
        isFirst_ = false;
    }

    void Next(std::string_view name)
    {
        Next();
        char *at = out_.Room(name.size() + 3);
        *at++ = '"';
        std::memcpy(at, name.data(), name.size());
        at[name.size()] = '"';
        at[name.size() + 1] = ':';
    }

private:
    Writer &out_;
    char close_;
    bool isFirst_ = true;
};

void AppendNumber(Writer &out, uint64_t number)
{
    constexpr size_t kMostDigits = std::numeric_limits<uint64_t>::digits10 + 1;
    char *const at = out.Room(kMostDigits);
    const char *const end = std::to_chars(at, at + kMostDigits, number).ptr;
    out.GiveBack(static_cast<size_t>(at + kMostDigits - end));
}

// Texts of hex digits, dotted addresses, words of a dictionary.
void AppendPlain(Writer &out, std::string_view text)
{
    char *at = out.Room(text.size() + 2);
    *at++ = '"';
    std::memcpy(at, text.data(), text.size());
    at[text.size()] = '"';
}

void AppendScalar(Writer &out, const Field &field, const std::byte *element)
{
    switch (field.kind) {
    case FieldKind::Number:
        if (field.width < sizeof(uint64_t))
            return AppendNumber(out, LoadNumber(element, field.width));
        break;
    case FieldKind::Address:
        return AppendPlain(out, DottedText(Load<uint32_t>(element)));
    case FieldKind::Bytes:
        return AppendPlain(out, HexText({element, field.width}));
    default:
        break;
    }
    out += JsonText(ScalarToJson(field, element));
}

void AppendValue(Writer &out, const Meaning &meaning, const void *record)
{
    const uint64_t number = NumberOf(meaning, record);
    switch (meaning.form) {
    case Form::Number:
        if (meaning.width < sizeof(uint64_t))
            return AppendNumber(out, number);
        break;
    case Form::Address:
        return AppendPlain(out, DottedText(static_cast<uint32_t>(number)));
    case Form::Enumeration:
        if (const auto word = meaning.words.find(number); word != meaning.words.end())
            return AppendPlain(out, word->second);
        [[fallthrough]];
    case Form::Hex:
        return AppendPlain(out, ValueText(meaning, record));
    case Form::Bool:
        out += number != 0 ? "true" : "false";
        return;
    default:
        break;
    }
    out += JsonText(ValueJson(meaning, record));
}

// Null in place of meanings: the document has no `named`, not even what the standards say.
void AppendRecord(Writer &out, const RecordDescription &description, const void *record,
                  const RecordMeanings *meanings);

void AppendElement(Writer &out, const Field &field, const std::byte *element, const RecordMeanings *inside)
{
    if (field.record != nullptr)
        AppendRecord(out, *field.record, element, inside);
    else
        AppendScalar(out, field, element);
}

void AppendField(Writer &out, const Field &field, const void *record, const RecordMeanings *inside)
{
    const std::byte *start = At(record, field.offset);
    const bool isList = field.record != nullptr && field.kind != FieldKind::Record;
    if (!isList && field.count == 0)
        return AppendElement(out, field, start, inside);
    Members elements(out, '[', ']');
    if (isList) {
        ForEachElement(field, record, [&](const void *element) {
            elements.Next();
            AppendRecord(out, *field.record, element, inside);
        });
    }
    for (uint32_t i = 0; i < field.count; ++i) {
        elements.Next();
        AppendElement(out, field, start + size_t{i} * field.width, inside);
    }
}

// A text that is not UTF-8 cannot be in a document as it is; its bytes can.
void AppendBytesOfText(Writer &out, const Field &field, const void *record, Members &members)
{
    if (field.kind != FieldKind::Text)
        return;
    const auto *text = Load<const char *>(At(record, field.offset));
    if (text == nullptr || IsUtf8(text))
        return;
    members.Next(std::string(field.name) + "Bytes");
    AppendPlain(out, HexText(std::as_bytes(std::span(text, std::strlen(text)))));
}

// Routes by their names, as lists of addresses.
void AppendRoutes(Writer &out, const RecordDescription &description, const void *record,
                  const RecordMeanings &meanings, Members &named)
{
    for (const Field &field : description.fields) {
        const RecordMeanings *inside = field.record == nullptr ? nullptr : &meanings.Inside(field.name);
        if (inside == nullptr || inside->name.empty())
            continue;
        named.Next(inside->name);
        Members addresses(out, '[', ']');
        ForEachElement(field, record, [&](const void *element) {
            addresses.Next();
            AppendPlain(out, DottedText(static_cast<const RSVP_MOR_RouteEntry *>(element)->value));
        });
    }
}

void AppendNamed(Writer &out, const RecordDescription &description, const void *record,
                 const RecordMeanings &meanings, Members &members)
{
    const std::span<const StandardMeaning> standard = StandardMeaningsOf(description);
    const auto isSaid = [&](const StandardMeaning &one) { return IsPresent(one.condition, record); };
    if (meanings.IsEmpty() && std::none_of(standard.begin(), standard.end(), isSaid))
        return;
    members.Next("named");
    Members named(out, '{', '}');
    for (const Meaning &meaning : meanings.own) {
        named.Next(meaning.name);
        AppendValue(out, meaning, record);
    }
    AppendRoutes(out, description, record, meanings, named);
    for (const StandardMeaning &one : standard) {
        if (!isSaid(one))
            continue;
        named.Next(one.meaning.name);
        out += JsonText(ValueJson(one, record));
    }
}

void AppendRecord(Writer &out, const RecordDescription &description, const void *record,
                  const RecordMeanings *meanings)
{
    Members members(out, '{', '}');
    for (const Field &field : description.fields) {
        if (!IsPresent(field, record) || (field.isQuiet && IsZero(field, record)))
            continue;
        const RecordMeanings *inside =
            meanings == nullptr || field.record == nullptr ? nullptr : &meanings->Inside(field.name);
        members.Next(field.name);
        AppendField(out, field, record, inside);
        AppendBytesOfText(out, field, record, members);
    }
    if (meanings != nullptr)
        AppendNamed(out, description, record, *meanings, members);
}

} // namespace

void AppendJson(std::string &out, const RecordDescription &description, const void *record,
                const RecordMeanings &meanings)
{
    Writer writer(out);
    AppendRecord(writer, description, record, &meanings);
}

Json ToJson(const RecordDescription &description, const void *record)
{
    std::string text;
    {
        Writer writer(text);
        AppendRecord(writer, description, record, nullptr);
    }
    return Json::parse(text);
}

Json ToJson(const RecordDescription &description, const void *record, const RecordMeanings &meanings)
{
    std::string text;
    AppendJson(text, description, record, meanings);
    return Json::parse(text);
}

} // namespace manager
