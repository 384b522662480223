// Records as JSON documents: the record's own fields under their names, and what they mean in `named` beside them.
#ifndef MANAGER_DICTIONARY_DOCUMENT_H
#define MANAGER_DICTIONARY_DOCUMENT_H

#include "manager/dictionary/dictionary.h"

namespace manager {

/** Appends the whole record with its lists, and with what the meanings and the standards say of each record in it. */
void AppendJson(std::string &out, const RecordDescription &description, const void *record,
                const RecordMeanings &meanings);

/** The same as a value. */
Json ToJson(const RecordDescription &description, const void *record, const RecordMeanings &meanings);

/** The fields alone, as a key is written. */
Json ToJson(const RecordDescription &description, const void *record);

} // namespace manager

#endif
