/* How to wait less than a call does: with a time-out of one's own on the held session, and by shutting the session
 * down from another thread, here when somebody presses Enter.
 *
 *     cc give_up.c $(pkg-config --cflags --libs rsvp_mor) -pthread -o give_up && ./give_up [MILLISECONDS]
 *
 * MILLISECONDS is how long the daemon may take (2000 if not given; 0 for any time).
 */
#include <errno.h>
#include <inttypes.h>
#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <rsvp_mor.h>

typedef struct Call {
    int32_t fd;
    int done; /* the writing end of a pipe, closed when the call has returned */
    uint32_t status;
} Call;

static void *Run(void *argument)
{
    Call *call = argument;
    RSVP_MOR_GlobalInfo info;
    memset(&info, 0, sizeof(info));
    call->status = RSVP_MOR_GetGlobalInfo(call->fd, &info);
    close(call->done);
    return NULL;
}

/* This is the stand-in's option. On a router it is 0x1006 at level 1, with two 32-bit words. */
static int LimitReceive(int32_t fd, unsigned long milliseconds)
{
    const struct timeval limit = {(time_t)(milliseconds / 1000), (suseconds_t)(milliseconds % 1000 * 1000)};
    return setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
}

/* Returns when the call has; Enter makes it return. The descriptor stays open: a number that is closed here could be
 * another file's by the time the call uses it. */
static void WaitForCallOrEnter(int32_t fd, int done)
{
    struct pollfd ready[] = {{.fd = done}, {.fd = STDIN_FILENO, .events = POLLIN}};
    while (ready[0].revents == 0) {
        char key;
        if (poll(ready, 2, -1) < 0 && errno != EINTR)
            return;
        if (ready[1].revents == 0)
            continue;
        if (read(STDIN_FILENO, &key, 1) == 1)
            shutdown(fd, SHUT_RDWR);
        ready[1].fd = -1; /* whether a key or the end of the input: there is nothing more to wait for */
        ready[1].revents = 0;
    }
}

int main(int argc, char **argv)
{
    Call call = {.fd = RSVP_MOR_LIPCOpen()};
    int ends[2];
    pthread_t thread;
    struct timespec begin, end;
    if (call.fd < 0 || LimitReceive(call.fd, argc > 1 ? strtoul(argv[1], NULL, 10) : 2000) != 0 || pipe(ends) != 0) {
        fprintf(stderr, "give_up: no session to the daemon\n");
        return 3;
    }
    call.done = ends[1];
    clock_gettime(CLOCK_MONOTONIC, &begin);
    if (pthread_create(&thread, NULL, Run, &call) != 0) {
        fprintf(stderr, "give_up: no thread\n");
        return 1;
    }
    WaitForCallOrEnter(call.fd, ends[0]);
    pthread_join(thread, NULL);
    clock_gettime(CLOCK_MONOTONIC, &end);
    RSVP_MOR_LIPCClose(call.fd); /* a late reply, or the shutdown, has spoilt it for another call */

    printf("status 0x%08" PRIx32 " after %ld s\n", call.status, (long)(end.tv_sec - begin.tv_sec));
    return call.status == RSVP_MOR_OK ? 0 : 4;
}
