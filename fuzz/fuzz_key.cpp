// Keys of rows, in words and as JSON. Input: whose key, in which form, and the text. A text is either refused with a
// reason or is the key that it says: written out again, it reads as the same bytes.
#include "promise.h"

#include "manager/dictionary/document.h"
#include "manager/record/key.h"
#include "tools/rsvpctl/show/shows.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::byte>; // as long as the key, so that a write behind it is seen

Bytes Read(bool json, const manager::RecordDescription &description, std::string_view text)
{
    Bytes key(description.size);
    (json ? manager::ReadJsonKey : manager::ReadKey)(description, text, key.data(), {});
    return key;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    const auto shows = rsvpctl::AllShows();
    const rsvpctl::ShowSpec &show = shows[data[0] % shows.size()];
    if (show.keyExample == nullptr)
        return 0;
    const manager::RecordDescription &description = show.table->key();
    const std::string_view text(reinterpret_cast<const char *>(data + 2), size - 2);
    Bytes key;
    try {
        key = Read(data[1] % 2 != 0, description, text);
    } catch (const manager::KeyError &error) {
        Must(*error.what() != '\0', "a refusal has a reason");
        return 0;
    }
    Must(Read(false, description, manager::KeyText(description, key.data())) == key,
         "a key in words reads as itself");
    Must(Read(true, description, ToJson(description, key.data()).dump()) == key, "a key in JSON reads as itself");
    return 0;
}
