// The rows of mplsTunnelTable: the daemon's tunnel row, with the session attribute of the same tunnel's path state
// and the name of the same tunnel's CR-LSP.
#include "tools/agentx/tunnel_rows.h"

#include "manager/table/tables.h"
#include "tools/agentx/reads.h"

namespace agentx {
namespace {

constexpr uint8_t kLocalProtection = 0x01; // of the flags of SESSION_ATTRIBUTE, RFC 3209
constexpr uint32_t kUp = 1;

const Object &Named(std::string_view name)
{
    return *kTunnelTable.Find(name);
}

void PutAttributes(const RSVP_MOR_SessionAttr &attribute, Builder &builder)
{
    static const Object &setup = Named("mplsTunnelSetupPrio");
    static const Object &holding = Named("mplsTunnelHoldingPrio");
    static const Object &flags = Named("mplsTunnelSessionAttributes");
    static const Object &includeAny = Named("mplsTunnelIncludeAnyAffinity");
    static const Object &includeAll = Named("mplsTunnelIncludeAllAffinity");
    static const Object &excludeAny = Named("mplsTunnelExcludeAnyAffinity");
    const auto putCommon = [&](const auto &form) {
        if (form.setupPriority <= setup.greatest)
            builder.Put(setup, uint32_t{form.setupPriority});
        if (form.holdingPriority <= holding.greatest)
            builder.Put(holding, uint32_t{form.holdingPriority});
        // fastReroute is the first bit; of the others the object tells nothing.
        builder.Put(flags, std::string(1, (form.flags & kLocalProtection) != 0 ? '\x80' : '\0'));
    };
    if (attribute.kind != RSVP_MOR_SESSION_ATTR_AFFINITY) {
        putCommon(attribute.shortForm);
        return;
    }
    putCommon(attribute.affinityForm);
    builder.Put(includeAny, attribute.affinityForm.includeAny);
    builder.Put(includeAll, attribute.affinityForm.includeAll);
    builder.Put(excludeAny, attribute.affinityForm.excludeAny);
}

class TunnelReader {
public:
    TunnelReader(const manager::Dictionary &dictionary, std::shared_ptr<const TunnelAttributes> attributes)
        : dictionary_(dictionary), attributes_(std::move(attributes)),
          names_(kTunnelTable, manager::kTunnels.row(), dictionary),
          ofLsp_(kTunnelTable, manager::kCrLsps.row(), dictionary)
    {
    }

    bool HasIndex() const { return names_.HasIndex(); }

    std::vector<Snapshot> Read()
    {
        if (!attributes_->byTunnel)
            throw ReadError(attributes_->problem);
        const std::map<Oid, std::vector<std::pair<const Object *, Cell>>> lsps = ReadLsps();
        Builder builder(kTunnelTable);
        uint32_t active = 0;
        bool tellsState = false;
        ReadAll(manager::kTunnels, dictionary_, [&](const void *row) {
            auto index = names_.IndexOf(row);
            if (!index)
                return;
            const auto attribute = attributes_->byTunnel->find({(*index)[0], (*index)[1], (*index)[2], (*index)[3]});
            const auto lsp = lsps.find(*index);
            builder.Begin(std::move(*index));
            if (attribute != attributes_->byTunnel->end())
                PutAttributes(attribute->second, builder);
            if (lsp != lsps.end()) {
                for (const auto &[object, cell] : lsp->second)
                    builder.Put(*object, cell);
            }
            names_.PutCells(row, builder);
            for (const MappedField &column : names_.Columns()) {
                if (column.object != &state_)
                    continue;
                tellsState = true;
                active += CellOf(column, row) == Cell(kUp) ? 1 : 0;
            }
        });
        Builder scalars(kTunnelScalars);
        scalars.Begin({0});
        scalars.Put(*kTunnelScalars.Find("mplsTunnelConfigured"), static_cast<uint32_t>(builder.RowCount()));
        if (tellsState || builder.RowCount() == 0)
            scalars.Put(*kTunnelScalars.Find("mplsTunnelActive"), active);
        std::vector<Snapshot> results;
        results.push_back(scalars.Finish());
        results.push_back(builder.Finish());
        return results;
    }

private:
    // Only if the dictionary says what in a CR-LSP's key names its tunnel.
    std::map<Oid, std::vector<std::pair<const Object *, Cell>>> ReadLsps()
    {
        std::map<Oid, std::vector<std::pair<const Object *, Cell>>> lsps;
        if (!ofLsp_.HasIndex() || !ofLsp_.HasColumns())
            return lsps;
        ReadAll(manager::kCrLsps, dictionary_, [&](const void *row) {
            auto index = ofLsp_.IndexOf(row);
            if (!index)
                return;
            auto &cells = lsps[std::move(*index)];
            for (const MappedField &column : ofLsp_.Columns()) {
                if (auto cell = CellOf(column, row))
                    cells.emplace_back(column.object, std::move(*cell));
            }
        });
        return lsps;
    }

    const manager::Dictionary &dictionary_;
    std::shared_ptr<const TunnelAttributes> attributes_;
    Mapping names_;
    Mapping ofLsp_;
    const Object &state_ = Named("mplsTunnelOperStatus");
};

} // namespace

std::unique_ptr<Job> MakeTunnelJob(const manager::Dictionary &dictionary,
                                   std::shared_ptr<const TunnelAttributes> attributes)
{
    auto reader = std::make_shared<TunnelReader>(dictionary, std::move(attributes));
    if (!reader->HasIndex())
        return nullptr;
    return std::make_unique<Job>(std::vector{&kTunnelScalars, &kTunnelTable}, [reader] { return reader->Read(); });
}

} // namespace agentx
