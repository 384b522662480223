/* How a network management agent serves the tunnel table without ever waiting for the daemon. A thread walks the
 * table again and again, which may block for many seconds, and hands each finished copy to the agent's loop, which
 * answers from the latest one. Each side owns the copy that it holds, so no lock is needed.
 *
 *     cc row_cache.c $(pkg-config --cflags --libs rsvp_mor) -pthread -o row_cache && ./row_cache [SECONDS]
 *
 * Lines of input stand in for an agent's requests: "next INDEX" asks for the first row with a greater tunnel index,
 * "quit" ends the program. SECONDS is the pause between two walks (5 if not given).
 */
#include <errno.h>
#include <inttypes.h>
#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <rsvp_mor.h>

enum { kMaxRows = 1000000 };

/* One copy of the table, from one walk. */
typedef struct Table {
    RSVP_MOR_ReplyTunnel *rows;
    size_t count;
    time_t walked;
    uint32_t status; /* what ended the walk */
} Table;

static int toLoop; /* the writing end of a pipe that carries pointers to tables */
static unsigned pauseSeconds = 5;

static void FreeTable(Table *table)
{
    if (table != NULL)
        free(table->rows);
    free(table);
}

/* In the simulated daemon the first four words of a row are its key. Keys must grow; a walk in which they do not is
 * stuck.
 */
static RSVP_MOR_TunnelKey KeyOf(const RSVP_MOR_ReplyTunnel *row)
{
    return (RSVP_MOR_TunnelKey){row->tunnelWord0, row->tunnelWord1, row->tunnelWord2, row->tunnelWord3};
}

static int IsBehind(const RSVP_MOR_TunnelKey *a, const RSVP_MOR_TunnelKey *b)
{
    if (a->tunnelIndex != b->tunnelIndex)
        return a->tunnelIndex > b->tunnelIndex;
    if (a->tunnelInstance != b->tunnelInstance)
        return a->tunnelInstance > b->tunnelInstance;
    if (a->ingressLsrId != b->ingressLsrId)
        return a->ingressLsrId > b->ingressLsrId;
    return a->egressLsrId > b->egressLsrId;
}

/* Null if there is no memory. Each call has a session of its own, so a late reply cannot be taken for another's. */
static Table *WalkTunnels(void)
{
    Table *table = calloc(1, sizeof(*table));
    if (table == NULL)
        return NULL;
    size_t room = 0;
    RSVP_MOR_ReplyTunnel row;
    memset(&row, 0, sizeof(row));
    table->status = RSVP_GetFirstTunnel(&row);
    while (table->status == RSVP_MOR_OK) {
        const RSVP_MOR_TunnelKey key = KeyOf(&row);
        if (table->count > 0) {
            const RSVP_MOR_TunnelKey last = KeyOf(&table->rows[table->count - 1]);
            if (!IsBehind(&key, &last) || table->count == kMaxRows) {
                table->status = RSVP_MOR_ERR_FAIL;
                break;
            }
        }
        if (table->count == room) {
            room = room == 0 ? 64 : 2 * room;
            RSVP_MOR_ReplyTunnel *rows = realloc(table->rows, room * sizeof(*rows));
            if (rows == NULL) {
                FreeTable(table);
                return NULL;
            }
            table->rows = rows;
        }
        table->rows[table->count++] = row;
        memset(&row, 0, sizeof(row));
        table->status = RSVP_GetNextTunnel(&key, &row);
    }
    table->walked = time(NULL);
    return table;
}

static void *KeepWalking(void *unused)
{
    (void)unused;
    for (;;) {
        Table *table = WalkTunnels();
        /* A pipe never splits a write as small as a pointer. From here on the loop owns the table. */
        if (table != NULL && write(toLoop, &table, sizeof(table)) != (ssize_t)sizeof(table))
            return NULL;
        sleep(pauseSeconds);
    }
}

static void AnswerNext(const Table *table, uint32_t index)
{
    if (table == NULL) {
        printf("no table yet\n");
        return;
    }
    for (size_t i = 0; i < table->count; ++i) {
        const RSVP_MOR_ReplyTunnel *row = &table->rows[i];
        if (row->tunnelWord0 > index) {
            printf("tunnel %" PRIu32 ", instance %" PRIu32 ", role %u\n", row->tunnelWord0, row->tunnelWord1,
                   row->tunnelRole);
            return;
        }
    }
    printf("no further row\n");
}

/* After a walk that ended early nobody knows which rows are missing. The older, complete table is better, and the
 * agent says how old it is. */
static Table *Adopt(Table *kept, Table *fresh)
{
    if (fresh->status == RSVP_MOR_ERR_NOT_EXIST) {
        FreeTable(kept);
        return fresh;
    }
    fprintf(stderr, "row_cache: the walk ended with status 0x%08" PRIx32 "; ", fresh->status);
    if (kept == NULL)
        fprintf(stderr, "there is no table yet\n");
    else
        fprintf(stderr, "the rows are %ld seconds old\n", (long)(fresh->walked - kept->walked));
    FreeTable(fresh);
    return kept;
}

/* Serves until "quit" or the end of the input. False if the worker has gone or a system call failed. */
static int Serve(int fromWorker)
{
    Table *kept = NULL;
    char line[128];
    size_t used = 0;
    int served = 0;
    struct pollfd ready[] = {{.fd = STDIN_FILENO, .events = POLLIN}, {.fd = fromWorker, .events = POLLIN}};
    for (;;) {
        if (poll(ready, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            break;
        }
        if (ready[1].revents != 0) {
            Table *fresh = NULL;
            if (read(fromWorker, &fresh, sizeof(fresh)) != (ssize_t)sizeof(fresh))
                break;
            kept = Adopt(kept, fresh);
        }
        if (ready[0].revents == 0)
            continue;
        /* An agent parses its protocol here. A line that is too long is answered piece by piece, as wrong lines. */
        const ssize_t got = read(STDIN_FILENO, line + used, 1);
        if (got < 0 && errno == EINTR)
            continue;
        served = got == 0;
        if (got <= 0)
            break;
        if (line[used] != '\n' && used + 2 < sizeof(line)) {
            ++used;
            continue;
        }
        line[used] = '\0';
        used = 0;
        uint32_t index;
        served = strcmp(line, "quit") == 0;
        if (served)
            break;
        if (sscanf(line, "next %" SCNu32, &index) == 1)
            AnswerNext(kept, index);
        else
            printf("say \"next INDEX\" or \"quit\"\n");
        fflush(stdout);
    }
    FreeTable(kept);
    return served;
}

int main(int argc, char **argv)
{
    int ends[2];
    pthread_t worker;
    if (argc > 1)
        pauseSeconds = (unsigned)strtoul(argv[1], NULL, 10);
    if (pipe(ends) != 0) {
        perror("row_cache: pipe");
        return 1;
    }
    toLoop = ends[1];
    const int error = pthread_create(&worker, NULL, KeepWalking, NULL);
    if (error != 0) {
        fprintf(stderr, "row_cache: no thread: %s\n", strerror(error));
        return 1;
    }
    /* The worker may block in a receive for ten seconds and cannot be woken, so the program does not wait for it, not
     * even at the end. */
    pthread_detach(worker);
    return Serve(ends[0]) ? 0 : 1;
}
