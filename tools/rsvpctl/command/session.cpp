// Sessions of commands. Each command opens its own and never takes over one on which an exchange failed.
#include "tools/rsvpctl/command/session.h"

#include "manager/table/session.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/view/record_view.h"

#include <nlohmann/json.hpp>

namespace rsvpctl {

Exit WithSession(Output &out, const std::string &operation, bool held, const std::function<Exit(int32_t fd)> &use)
{
    const manager::Session session(held);
    if (session.IsMissing())
        return out.Failed({operation, "RSVP_MOR_LIPCOpen", "", RSVP_MOR_ERR_LIPC});
    return use(session.Fd());
}

Exit WithRecord(Output &out, const std::string &operation, const manager::Table &table, const std::string &asked,
                const std::function<uint32_t(int32_t fd, void *record)> &read,
                const std::function<Exit(void *record)> &print)
{
    return WithSession(out, operation, table.get.held, [&](int32_t fd) {
        std::vector<std::byte> record(table.row().size);
        const uint32_t status = read(fd, record.data());
        if (status != RSVP_MOR_OK)
            return out.Failed({operation, table.get.function, asked, status});
        const Exit exit = print(record.data());
        if (table.release != nullptr)
            table.release(record.data());
        return exit;
    });
}

Exit ShowRecord(Output &out, const std::string &operation, const manager::Table &table)
{
    return WithRecord(
        out, operation, table, "",
        [&](int32_t fd, void *record) { return ReadRow(table, table.get, fd, nullptr, record); },
        [&](void *record) {
            return out.Record(operation, table.row(), record,
                              [&](const void *row) { return RecordText(table.row(), row, Names().Of(table.row())); });
        });
}

} // namespace rsvpctl
