// All layouts and lists of the wire, and references to them by name. The compiler looks the names up, so a misspelt
// one does not build.
#ifndef HOST_DAEMON_WIRE_LAYOUTS_H
#define HOST_DAEMON_WIRE_LAYOUTS_H

#include "host/daemon/wire/blocks.h"
#include "host/daemon/wire/command_values.h"
#include "host/daemon/wire/keys.h"
#include "host/daemon/wire/records.h"

namespace rsvpsimd {

struct Layout;

inline constexpr std::array kLayoutSpecs = [] {
    std::array<LayoutSpec, kKeyLayouts.size() + kCommandLayouts.size() + kRecordLayouts.size() + kBlockLayouts.size()>
        all;
    auto end = std::ranges::copy(kKeyLayouts, all.begin()).out;
    end = std::ranges::copy(kCommandLayouts, end).out;
    end = std::ranges::copy(kRecordLayouts, end).out;
    std::ranges::copy(kBlockLayouts, end);
    return all;
}();

static_assert(std::ranges::all_of(kLayoutSpecs,
                                  [](const LayoutSpec &spec) { return EndOf(spec.fields) <= spec.size; }),
              "a field ends beyond its value");
static_assert(std::ranges::all_of(kLayoutSpecs, [](const LayoutSpec &spec) { return FormsAreKnown(spec.fields); }),
              "a form depends on a field that its object does not have");
static_assert(std::ranges::all_of(kLayoutSpecs,
                                  [](const LayoutSpec &spec) {
                                      return std::ranges::count(kLayoutSpecs, spec.name, &LayoutSpec::name) == 1;
                                  }),
              "two layouts have the same name");

// The table's entry of this name. Reaching the throw is a compile error, which shows where the wrong name is.
template <typename Table> consteval const auto &Named(const Table &table, std::string_view name)
{
    for (const auto &entry : table)
        if (entry.name == name)
            return entry;
    throw "there is no entry of this name";
}

class LayoutRef {
public:
    consteval LayoutRef(const char *name) : spec_(&Named(kLayoutSpecs, name)) {}

    constexpr const LayoutSpec &Spec() const { return *spec_; }
    constexpr bool operator==(const LayoutRef &) const = default;

    const Layout &operator*() const;
    const Layout *operator->() const { return &**this; }

private:
    const LayoutSpec *spec_;
};

// The bytes of a field or of a whole object inside a value of this layout. This is for names that stand in tables,
// which assert that the names exist.
constexpr Extent ExtentOf(LayoutRef layout, std::string_view name)
{
    return FindExtent(layout.Spec().fields, name).value();
}

// The same for a name in the code of a function.
consteval Extent FieldAt(LayoutRef layout, const char *name)
{
    return ExtentOf(layout, name);
}

// The name itself, if the layout has it.
consteval const char *FieldName(LayoutRef layout, const char *name)
{
    ExtentOf(layout, name);
    return name;
}

// A count, then that many entries of one layout.
struct ListSpec {
    std::string_view name;
    size_t countWidth = 0;
    LayoutRef entry;
};

inline constexpr std::array kListSpecs{
    ListSpec{"hopList", 2, "hopEntry"},
    ListSpec{"routeList16", 2, "routeEntry"},
    ListSpec{"routeList32", 4, "routeEntry"},
};

class ListRef {
public:
    consteval ListRef(const char *name) : spec_(&Named(kListSpecs, name)) {}

    constexpr const ListSpec &operator*() const { return *spec_; }
    constexpr const ListSpec *operator->() const { return spec_; }
    constexpr bool operator==(const ListRef &) const = default;

private:
    const ListSpec *spec_;
};

} // namespace rsvpsimd

#endif
