/* Prints the daemon's path state, one LSP on each line: the smallest program that shows how to walk a table, who
 * releases what, and how a walk can end.
 *
 *     cc walk.c $(pkg-config --cflags --libs rsvp_mor) -o walk && ./walk
 */
#include <arpa/inet.h>
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include <rsvp_mor.h>

/* Records hold addresses as numbers in host order. */
static void PrintAddress(const char *label, uint32_t address)
{
    const struct in_addr network = {htonl(address)};
    char text[INET_ADDRSTRLEN];
    printf("%s%s", label, inet_ntop(AF_INET, &network, text, sizeof(text)));
}

static void PrintBlock(const RSVP_MOR_ReplyPsb *psb)
{
    printf("tunnel %u", psb->session.tunnelId);
    PrintAddress(" from ", psb->sender.senderAddress);
    PrintAddress(" to ", psb->session.tunnelEndpoint);
    printf(", LSP %u, came over", psb->sender.lspId);
    for (unsigned i = 0; i < psb->hopList.count; ++i)
        if (psb->hopList.entries[i].kind == RSVP_MOR_HOP_IPV4)
            PrintAddress(" ", psb->hopList.entries[i].address);
    printf("\n");
}

int main(void)
{
    const int32_t fd = RSVP_MOR_LIPCOpen();
    if (fd < 0) {
        fprintf(stderr, "walk: no session to the daemon; is the service enabled?\n");
        return 3;
    }

    RSVP_MOR_ReplyPsb psb;
    RSVP_MOR_Session session = {0};
    RSVP_MOR_Sender sender = {0};
    int stuck = 0;
    memset(&psb, 0, sizeof(psb)); /* list slots are null before a get */
    uint32_t status = RSVP_MOR_GetFirstPsbInfo(fd, &psb);
    while (status == RSVP_MOR_OK && !stuck) {
        /* The key is the only cursor. If the daemon sent the same row again, the walk would never end. */
        stuck =
            memcmp(&session, &psb.session, sizeof(session)) == 0 && memcmp(&sender, &psb.sender, sizeof(sender)) == 0;
        if (!stuck)
            PrintBlock(&psb);
        RSVP_MOR_FreeReplyPsb(&psb);
        session = psb.session;
        sender = psb.sender;
        memset(&psb, 0, sizeof(psb));
        if (!stuck)
            status = RSVP_MOR_GetNextPsbInfo(fd, &session, &sender, &psb);
    }
    /* The last get failed, or its record was released: only the session is left to close. */
    RSVP_MOR_LIPCClose(fd);

    if (stuck)
        fprintf(stderr, "walk: the table does not advance\n");
    else if (status != RSVP_MOR_ERR_NOT_EXIST) /* which is how the simulated daemon ends a table */
        fprintf(stderr, "walk: ended early with status 0x%08" PRIx32 "\n", status);
    return stuck || status != RSVP_MOR_ERR_NOT_EXIST ? 4 : 0;
}
