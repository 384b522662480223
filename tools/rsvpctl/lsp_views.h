// LSPs as people read them: one line each, or everything about one on a screen.
#ifndef RSVPCTL_LSP_VIEWS_H
#define RSVPCTL_LSP_VIEWS_H

#include "lsp_text.h"

#include <string>

namespace rsvpctl {

/** The two views of a kind of row. Brief lines need no knowledge of other rows, so that they can be streamed. */
template <typename Row> struct LspView {
    std::string (*header)();
    std::string (*brief)(const Row &row);
    std::string (*detail)(const Row &row);
};

extern const LspView<RSVP_MOR_ReplyPsb> psbView;
extern const LspView<RSVP_MOR_ReplyRsb> rsbView;
extern const LspView<RSVP_MOR_ReplyPhsb> phsbView;
extern const LspView<RSVP_MOR_ReplyCrlsp> crlspView;

std::string P2mpPsbDetail(const RSVP_MOR_P2mpPsbInfo &block);
std::string P2mpRsbDetail(const RSVP_MOR_P2mpRsbInfo &block);
std::string P2mpCrlspDetail(const RSVP_MOR_P2mpCrlspInfo &record);

} // namespace rsvpctl

#endif
