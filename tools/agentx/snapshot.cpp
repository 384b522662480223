// Sorting of what a walk has brought, in the daemon's order, into the order of the MIB.
#include "tools/agentx/snapshot.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <numeric>

namespace agentx {

const Cell *Snapshot::Next(size_t column, size_t &row) const
{
    const Column &cells = cells_[column];
    if (cells.isEverywhere)
        return row < RowCount() ? &cells.cells.front() : nullptr;
    const auto found = std::lower_bound(cells.rows.begin(), cells.rows.end(), row);
    if (found == cells.rows.end())
        return nullptr;
    row = *found;
    return &cells.cells[static_cast<size_t>(found - cells.rows.begin())];
}

Builder::Builder(const MibTable &table) : table_(table)
{
    result_.cells_.resize(table.objects.size());
    for (size_t i = 0; i < table.objects.size(); ++i) {
        if (table.objects[i].always)
            result_.cells_[i] = {{}, {Cell(*table.objects[i].always)}, true};
    }
}

void Builder::Begin(Oid index)
{
    result_.indexes_.push_back(std::move(index));
}

void Builder::Put(const Object &object, Cell cell)
{
    Snapshot::Column &column = result_.cells_[static_cast<size_t>(&object - table_.objects.data())];
    const auto row = static_cast<uint32_t>(RowCount() - 1);
    if (column.isEverywhere || (!column.rows.empty() && column.rows.back() == row))
        return;
    column.rows.push_back(row);
    column.cells.push_back(std::move(cell));
}

Snapshot Builder::Finish()
{
    std::vector<uint32_t> order(RowCount());
    std::iota(order.begin(), order.end(), 0);
    auto &indexes = result_.indexes_;
    std::sort(order.begin(), order.end(),
              [&](uint32_t left, uint32_t right) { return indexes[left] < indexes[right]; });
    std::vector<uint32_t> places(RowCount());
    std::vector<Oid> sorted;
    sorted.reserve(RowCount());
    for (uint32_t i = 0; i < order.size(); ++i) {
        places[order[i]] = i;
        sorted.push_back(std::move(indexes[order[i]]));
        if (i > 0 && sorted[i] == sorted[i - 1])
            throw ReadError(fmt::format("two rows of {} have the index {}", table_.name, fmt::join(sorted[i], ".")));
    }
    indexes = std::move(sorted);
    for (size_t i = 0; i < result_.cells_.size(); ++i) {
        Snapshot::Column &column = result_.cells_[i];
        if (!column.isEverywhere) {
            std::vector<std::pair<uint32_t, uint32_t>> moved; // to which row, from which place
            for (uint32_t at = 0; at < column.rows.size(); ++at)
                moved.emplace_back(places[column.rows[at]], at);
            std::sort(moved.begin(), moved.end());
            Snapshot::Column ordered;
            for (const auto &[row, at] : moved) {
                ordered.rows.push_back(row);
                ordered.cells.push_back(std::move(column.cells[at]));
            }
            column = std::move(ordered);
        }
        if (column.isEverywhere || !column.rows.empty())
            result_.columns_.push_back(i);
    }
    return std::move(result_);
}

} // namespace agentx
