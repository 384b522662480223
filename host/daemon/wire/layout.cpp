// Flattens the written layouts, once: fields of nested objects get dotted names.
#include "host/daemon/wire/layout.h"

#include "host/daemon/wire/layouts.h"

namespace rsvpsimd {

namespace {

void Unfold(std::vector<Field> &fields, FieldSpecs specs, const std::string &prefix, size_t base)
{
    for (const FieldSpec &spec : specs) {
        const std::string name = prefix + std::string(spec.name);
        if (spec.object.empty()) {
            Field &field = fields.emplace_back(
                Field{name, base + spec.offset, spec.width, spec.count, spec.order, spec.secret, {}, {}});
            Unfold(field.inside, spec.inside, "", field.offset);
            if (!spec.form.field.empty())
                field.form =
                    Form{prefix + std::string(spec.form.field), {spec.form.kindA, spec.form.kindB}, spec.form.among};
            continue;
        }
        for (size_t i = 0; i < spec.count; ++i) {
            const std::string element = spec.count > 1 ? name + "[" + std::to_string(i) + "]." : name + ".";
            Unfold(fields, spec.object, spec.name.empty() ? prefix : element, base + spec.offset + i * spec.width);
        }
    }
}

std::vector<Layout> UnfoldAll()
{
    std::vector<Layout> layouts;
    for (const LayoutSpec &spec : kLayoutSpecs)
        Unfold(layouts.emplace_back(Layout{spec.name, spec.size, {}}).fields, spec.fields, "", 0);
    return layouts;
}

bool Holds(const Form &form, const KindLookup &kinds)
{
    return (std::ranges::find(form.kinds, kinds(form.field)) != form.kinds.end()) == form.among;
}

} // namespace

std::span<const Layout> AllLayouts()
{
    static const std::vector<Layout> layouts = UnfoldAll();
    return layouts;
}

const Layout &LayoutRef::operator*() const
{
    return AllLayouts()[static_cast<size_t>(spec_ - kLayoutSpecs.data())];
}

bool Layout::Has(std::string_view field) const
{
    return std::ranges::find(fields, field, &Field::name) != fields.end();
}

KindLookup KindsOf(const Layout &layout, ByteView image)
{
    return [&layout, image](std::string_view name) -> uint64_t {
        const auto field = std::ranges::find(layout.fields, name, &Field::name);
        return field == layout.fields.end() ? 0 : LoadNet(image.subspan(field->offset, field->width));
    };
}

const Field *FindField(const Layout &layout, std::string_view name, const KindLookup &kinds)
{
    const auto found = std::ranges::find_if(layout.fields, [&](const Field &field) {
        return field.name == name && (!field.form || Holds(*field.form, kinds));
    });
    return found == layout.fields.end() ? nullptr : &*found;
}

bool GapsAreZero(const Layout &layout, ByteView image)
{
    Bytes rest(image.begin(), image.end());
    const KindLookup kinds = KindsOf(layout, image);
    for (const Field &field : layout.fields)
        if (!field.form || Holds(*field.form, kinds))
            std::ranges::fill(std::span(rest).subspan(field.offset, field.Size()), uint8_t{0});
    return IsZero(rest);
}

} // namespace rsvpsimd
