// Reading of blocks with the numbers that the library leaves to its caller.
#include "tools/rsvpctl/show/blocks.h"

#include "manager/dictionary/document.h"
#include "manager/record/key.h"
#include "manager/table/tables.h"
#include "tools/rsvpctl/command/session.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

Option AddDefaultNumber(const Node &node, const std::string &name, uint64_t max, uint32_t value,
                        const std::string &help)
{
    return node.AddNumber(name, max, fmt::format("{} (default {})", help, value));
}

} // namespace

std::string BlockExamples(const std::string &command, const ShowSpec &show)
{
    const manager::RecordDescription &description = show.table->key();
    std::vector<std::byte> key(description.size);
    RequireKey(description, show.keyExample, key.data());
    return fmt::format("  rsvpctl {0} --key {1}\n"
                       "  echo '{2}' > key.json\n"
                       "  rsvpctl {0} --key-file key.json --json",
                       command, show.keyExample, ToJson(description, key.data()).dump());
}

BlockOptions AddBlockOptions(const Node &node, const ShowSpec &show)
{
    BlockOptions options{AddKeyOptions(node, *show.table, show.IsBlock()), {}, {}};
    if (show.IsBlock())
        options.operation =
            AddDefaultNumber(node, "--op", UINT8_MAX, manager::kGetRow, "Message operation of the read by a key");
    if (show.table == &manager::kP2mpPathState)
        options.itemType = AddDefaultNumber(node, "--item-type", UINT16_MAX, manager::kP2mpPathStateItem,
                                            "Item type of the read by a key");
    return options;
}

manager::Bytes GivenKey(const ShowSpec &show, const BlockOptions &options)
{
    manager::Bytes key(show.table->key().size);
    RequireKey(options.key, key.data());
    return key;
}

Exit WithBlock(Output &out, const std::string &operation, const ShowSpec &show, const BlockOptions &options,
               const manager::Bytes &key, const std::function<Exit(void *block)> &print)
{
    const manager::Table &table = *show.table;
    const auto read = [&](int32_t fd, void *block) {
        return table.ask == nullptr ? ReadRow(table, table.get, fd, key.data(), block)
                                    : table.ask(fd, options.itemType.NumberOr(manager::kP2mpPathStateItem),
                                                options.operation.NumberOr(manager::kGetRow), key.data(), block);
    };
    return WithRecord(out, operation, table, "key " + KeyText(table.key(), key.data()), read, print);
}

} // namespace rsvpctl
