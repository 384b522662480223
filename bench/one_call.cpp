// Makes one kind of call a number of times and does nothing else: the counting tools run it. With "measure" it prints
// how many heap blocks the calls took and how deep the stack went.
#include "calls.h"

#include "rsvp_mor.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <vector>

// Counts the allocations of every library in this process.
static std::atomic<long> allocations;
extern "C" {
void *__libc_malloc(size_t size);
void *malloc(size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}
}

namespace {

struct Run {
    bench::Call call;
    long count;
    int fd;
};

void *Repeat(void *argument)
{
    const Run &run = *static_cast<Run *>(argument);
    for (long i = 0; i < run.count; ++i)
        run.call.library(run.fd);
    return nullptr;
}

// Runs the calls on a stack that was painted before, and looks how much paint is left.
void Measure(Run &run)
{
    constexpr size_t kRoom = 512 * 1024;
    constexpr unsigned char kPaint = 0xA7;
    std::vector<unsigned char> stack(kRoom, kPaint);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack.data(), kRoom);
    size_t used[2] = {};
    for (const long count : {0L, run.count}) { // what a thread needs without the calls, and with them
        Run each = run;
        each.count = count;
        pthread_t thread;
        if (pthread_create(&thread, &attributes, Repeat, &each) != 0)
            bench::Fail("cannot start a thread");
        pthread_join(thread, nullptr);
        size_t untouched = 0;
        while (untouched < kRoom && stack[untouched] == kPaint)
            ++untouched;
        used[count != 0] = kRoom - untouched;
    }
    const long before = allocations;
    Repeat(&run);
    std::printf("%ld %zu\n", (allocations - before) / run.count, used[1] - used[0]);
}

} // namespace

int main(int count, char **words)
{
    if (count < 3)
        bench::Fail("usage: one_call floor|KIND COUNT [measure]");
    const long times = std::atol(words[2]);
    if (std::strcmp(words[1], "floor") == 0) {
        for (long i = 0; i < times; ++i)
            bench::Floor();
        return 0;
    }
    Run run{bench::CallOf(static_cast<bench::Kind>(std::atoi(words[1]))), times, -1};
    if (!run.call.ownSession)
        run.fd = RSVP_MOR_LIPCOpen();
    if (count > 3)
        Measure(run);
    else
        Repeat(&run);
    return 0;
}
