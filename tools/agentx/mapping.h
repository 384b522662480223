// From a daemon's words to the objects of a MIB: the dictionary names the object that a field is, and its form and
// unit say how the value becomes one of the object's syntax.
#ifndef TOOLS_AGENTX_MAPPING_H
#define TOOLS_AGENTX_MAPPING_H

#include "manager/dictionary/dictionary.h"
#include "tools/agentx/snapshot.h"

namespace agentx {

/** A field of a record, wherever it lies in there, and the object that it is. */
struct MappedField {
    const Object *object;
    manager::Meaning meaning; // its offset counts from the start of the record
};

/** The value of the field as one of the object's syntax; nothing if the object cannot have such a value. */
std::optional<Cell> CellOf(const MappedField &field, const void *record);

/** A number of bytes a second, and others that a record has as a single, in a syntax that saturates; nothing for what
 * is no number. */
std::optional<Cell> CellOf(Syntax syntax, double value);

/** The four bytes of an address, and the two of a port, as an OCTET STRING. */
std::string AddressOctets(uint32_t address);
std::string PortOctets(uint16_t port);

/** A record that says nothing of an object by a name, but by its place. */
struct KnownField {
    std::string_view object;
    const char *field;
};

/** What a record, by its names in the dictionary, tells of one table. */
class Mapping {
public:
    /** `known` is what the record tells without a dictionary. */
    Mapping(const MibTable &table, const manager::RecordDescription &record, const manager::Dictionary &dictionary,
            std::span<const KnownField> known = {});

    /** Whether the record tells the whole index. */
    bool HasIndex() const { return hasIndex_; }
    bool HasColumns() const { return !columns_.empty(); }

    /** The index of the record's row; nothing if a part of it has a value that it cannot have. */
    std::optional<Oid> IndexOf(const void *record) const;

    /** Puts all cells that the record has into the row begun last. */
    void PutCells(const void *record, Builder &builder) const;

    std::span<const MappedField> Columns() const { return columns_; }

private:
    std::vector<MappedField> index_;
    std::vector<MappedField> columns_;
    bool hasIndex_ = false;
};

/** A record from which a table takes what the dictionary names. */
struct Source {
    const manager::RecordDescription *record;
    const MibTable *table;
};

/**
 * Refuses a dictionary with a name that no table has, a form or unit that does not become the object's syntax, or an
 * object that cannot be taken from its record. Throws manager::DictionaryError with file, line and key.
 */
void CheckNames(const manager::Dictionary &dictionary, std::span<const Source> sources);

} // namespace agentx

#endif
