// The one field whose number the library changes between the wire and its record; the documents that are made of the
// daemon's tables cannot know it from them.
#ifndef DOCS_TRANSLATED_H
#define DOCS_TRANSLATED_H

#include "host/daemon/wire/layouts.h"

namespace documents {

inline constexpr rsvpsimd::LayoutRef kTranslatedLayout = "tunnel";
inline constexpr std::string_view kTranslatedField = rsvpsimd::FieldName(kTranslatedLayout, "tunnelRole");

struct Translation {
    uint64_t wire;
    uint64_t record;
};
inline constexpr std::array kTranslations{Translation{1, 0}, Translation{3, 2}};
inline constexpr uint64_t kTranslationOfOthers = 1;

} // namespace documents

#endif
