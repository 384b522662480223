// Reading of values through their meanings.
#include "manager/dictionary/meaning.h"

#include "manager/record/text.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>
#include <optional>

namespace manager {
namespace {

const uint8_t *BytesOf(const Meaning &meaning, const void *record)
{
    return reinterpret_cast<const uint8_t *>(At(record, meaning.offset));
}

// Bytes that nobody converted have the most significant one first.
bool IsRaw(const Meaning &meaning)
{
    return meaning.kind == FieldKind::Bytes || meaning.kind == FieldKind::Secret || meaning.kind == FieldKind::Rate;
}

int64_t SignedOf(const Meaning &meaning, const void *record)
{
    const uint32_t unused = 64 - meaning.width * 8;
    return static_cast<int64_t>(NumberOf(meaning, record) << unused) >> unused;
}

float SingleOf(const Meaning &meaning, const void *record)
{
    return std::bit_cast<float>(static_cast<uint32_t>(NumberOf(meaning, record)));
}

std::string Characters(const Meaning &meaning, const void *record)
{
    if (meaning.kind == FieldKind::Text) {
        const auto *text = Load<const char *>(At(record, meaning.offset));
        return text == nullptr ? "" : text;
    }
    const auto *bytes = BytesOf(meaning, record);
    const auto *end = std::find(bytes, bytes + meaning.width, 0);
    return {bytes, end};
}

// A number that has no word is shown as the number that it is.
std::string WordOf(const Meaning &meaning, uint64_t number)
{
    const auto word = meaning.words.find(number);
    return word == meaning.words.end() ? fmt::format("{}", number) : word->second;
}

std::vector<std::string> WordsOfBits(const Meaning &meaning, uint64_t number)
{
    std::vector<std::string> words;
    for (uint32_t bit = 0; bit < meaning.width * 8; ++bit) {
        if ((number >> bit & 1) == 0)
            continue;
        const auto word = meaning.words.find(bit);
        words.push_back(word == meaning.words.end() ? fmt::format("bit {}", bit) : word->second);
    }
    return words;
}

// Bits a second for a number in one of the units of a rate.
std::optional<double> BitsIn(const std::string &unit)
{
    if (unit == "B/s")
        return 8;
    if (unit == "bit/s")
        return 1;
    if (unit == "kbit/s")
        return 1e3;
    return std::nullopt;
}

std::string WithUnit(const std::string &number, double value, const std::string &unit)
{
    if (const auto bits = BitsIn(unit))
        return BandwidthText(value * *bits);
    return unit.empty() || unit == "count" ? number : number + " " + unit;
}

} // namespace

const char *NameOf(Form form)
{
    static constexpr const char *kNames[] = {"number", "signed", "hex",    "address", "bytes", "bool",
                                             "bits",   "words",  "single", "rate",    "text"};
    return kNames[static_cast<size_t>(form)];
}

uint64_t NumberOf(const Meaning &meaning, const void *record)
{
    if (meaning.width > sizeof(uint64_t))
        return 0;
    const std::byte *at = At(record, meaning.offset);
    return IsRaw(meaning) ? NetNumber(at, meaning.width) : LoadNumber(at, meaning.width);
}

std::string ValueText(const Meaning &meaning, const void *record)
{
    const uint64_t number = NumberOf(meaning, record);
    switch (meaning.form) {
    case Form::Number:
        return WithUnit(fmt::format("{}", number), static_cast<double>(number), meaning.unit);
    case Form::Signed: {
        const int64_t value = SignedOf(meaning, record);
        return WithUnit(fmt::format("{}", value), static_cast<double>(value), meaning.unit);
    }
    case Form::Hex:
        return fmt::format("{:#x}", number);
    case Form::Address:
        return DottedText(static_cast<uint32_t>(number));
    case Form::Bytes:
        return HexText({At(record, meaning.offset), meaning.width});
    case Form::Bool:
        return number != 0 ? "yes" : "no";
    case Form::Bits: {
        const auto words = WordsOfBits(meaning, number);
        return words.empty() ? "none" : fmt::format("{}", fmt::join(words, ", "));
    }
    case Form::Enumeration:
        return WordOf(meaning, number);
    case Form::Single:
    case Form::Rate: {
        const float single = SingleOf(meaning, record);
        return WithUnit(fmt::format("{}", single), double{single}, meaning.unit);
    }
    case Form::Text:
        return HarmlessText(Characters(meaning, record));
    }
    return {};
}

Json ValueJson(const Meaning &meaning, const void *record)
{
    const uint64_t number = NumberOf(meaning, record);
    switch (meaning.form) {
    case Form::Number:
        return meaning.width == sizeof(uint64_t) ? Json(fmt::format("{}", number)) : Json(number);
    case Form::Signed:
        return meaning.width == sizeof(uint64_t) ? Json(fmt::format("{}", SignedOf(meaning, record)))
                                                 : Json(SignedOf(meaning, record));
    case Form::Bool:
        return number != 0;
    case Form::Bits:
        return WordsOfBits(meaning, number);
    case Form::Text:
        return Characters(meaning, record);
    case Form::Single:
    case Form::Rate:
        return FloatToJson(SingleOf(meaning, record));
    default:
        return ValueText(meaning, record);
    }
}

std::string BandwidthText(double bitsPerSecond)
{
    if (bitsPerSecond == 0)
        return "-";
    if (!std::isfinite(bitsPerSecond))
        return std::isnan(bitsPerSecond) ? "no number" : bitsPerSecond > 0 ? "unlimited" : "negative";
    static constexpr const char *kUnits[] = {"bit/s", "kbit/s", "Mbit/s", "Gbit/s", "Tbit/s", "Pbit/s", "Ebit/s"};
    size_t unit = 0;
    while (std::fabs(bitsPerSecond) >= 1000 && unit + 1 < std::size(kUnits)) {
        bitsPerSecond /= 1000;
        ++unit;
    }
    return fmt::format("{:.4g} {}", bitsPerSecond, kUnits[unit]);
}

} // namespace manager
