/*
 * Keeps the sub-LSPs of a point-to-multipoint LSP after the record that they came in has been released: each becomes
 * a node of the program's own, with a copy of its route, in the type that the library can release node by node.
 */
#include <rsvp_mor.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The daemon's message operation for the first record of the table; it ignores the key. */
enum { kGetFirst = 4 };

/* A copy of one sub-LSP: the first two words of its path, the number of its hops, and the hops. Null if there is no
 * memory.
 */
static RSVP_MOR_P2mpReplySubLsp *Keep(const RSVP_MOR_P2mpRro *sub)
{
    RSVP_MOR_P2mpReplySubLsp *kept = calloc(1, sizeof(*kept));
    if (kept == NULL)
        return NULL;
    kept->words[0] = sub->path.pathWord0;
    kept->words[1] = sub->path.pathWord1;
    kept->words[2] = sub->hopList.count;
    if (sub->hopList.count == 0)
        return kept;
    const size_t size = sub->hopList.count * sizeof(*sub->hopList.entries);
    kept->rroBlock = malloc(size);
    if (kept->rroBlock == NULL) {
        rsvp_mor_FreeP2mpReplySubLsp(kept);
        return NULL;
    }
    memcpy(kept->rroBlock, sub->hopList.entries, size);
    return kept;
}

/* Prints a kept sub-LSP and releases it. */
static void PrintAndRelease(RSVP_MOR_P2mpReplySubLsp *kept)
{
    const RSVP_MOR_HopEntry *hops = kept->rroBlock;
    printf("sub-LSP %08x:", (unsigned)kept->words[0]);
    for (uint32_t i = 0; i < kept->words[2]; ++i) {
        if (hops[i].kind == RSVP_MOR_HOP_IPV4)
            printf(" %08x", (unsigned)hops[i].address);
    }
    printf("\n");
    rsvp_mor_FreeP2mpReplySubLsp(kept);
}

int main(void)
{
    const int32_t fd = RSVP_MOR_LIPCOpen();
    if (fd < 0) {
        fprintf(stderr, "sub_lsps: no session to the daemon\n");
        return 1;
    }
    const RSVP_MOR_P2mpCrlspKey key = {0};
    RSVP_MOR_P2mpCrlspInfo lsp = {0};
    const uint32_t status = RSVP_MOR_GetP2mpCrlsp(fd, kGetFirst, &key, &lsp);
    RSVP_MOR_LIPCClose(fd);
    if (status != RSVP_MOR_OK) {
        fprintf(stderr, "sub_lsps: no LSP from the daemon: status 0x%08x\n", (unsigned)status);
        return 1;
    }

    enum { kMost = 64 };
    RSVP_MOR_P2mpReplySubLsp *kept[kMost];
    int count = 0;
    for (const RSVP_MOR_P2mpRro *sub = lsp.rroHead; sub != NULL && count < kMost; sub = sub->next) {
        kept[count] = Keep(sub);
        if (kept[count] == NULL) {
            fprintf(stderr, "sub_lsps: out of memory at sub-LSP %d; the rest are missing\n", count + 1);
            break;
        }
        ++count;
    }
    RSVP_MOR_FreeP2mpCrlspInfo(&lsp); /* the record is gone, the copies stay */

    for (int i = 0; i < count; ++i)
        PrintAndRelease(kept[i]);
    return 0;
}
