// Messages as the tests write them: hex text for literal bytes, and one word per item for the bodies of replies. An
// item is a 16-bit type, a 16-bit length, both in network order, and the value.
#ifndef TESTS_SUPPORT_BYTES_H
#define TESTS_SUPPORT_BYTES_H

#include <cstdint>
#include <string>

namespace scripted {

using Bytes = std::string;

Bytes Hex(const std::string &text); // spaces are skipped
std::string ToHex(const Bytes &bytes);

void PutNet(Bytes &bytes, size_t offset, size_t width, uint64_t number);
uint32_t GetNet16(const Bytes &bytes, size_t offset);

// Bytes that all differ from their neighbours, so that a misplaced or unswapped field shows.
Bytes Pattern(size_t size);
Bytes Item(uint32_t type, const Bytes &value);
Bytes Reply(uint32_t status, const Bytes &body);

// A body from words, one per item: "15 3x2 13=7 12/123" is a path state block, a route list of two elements, a filter
// spec with the label 7, and a reservation state block cut to 123 bytes. An item of unknown type has three bytes.
Bytes Body(const std::string &words);

// Converts bytes of the wire to the bytes of a record on this machine. The layout lists the fields in order: "4" is a
// number of four bytes, "4*13" thirteen of them, "r6" six raw bytes, "t" the translated role of a tunnel.
Bytes ToHost(const std::string &layout, const Bytes &wire);

} // namespace scripted

#endif
