#include "os/fresh_stack.h"

#include <pthread.h>
#include <signal.h>

#include <exception>

#include "os/signal_stack.h"

namespace tpu::fresh_stack {

namespace {

constexpr std::size_t kStackSize = kFrameFactor * (std::size_t{64} << 20);
// What is left when a stack counts as nearly used up: enough for the deepest run of
// calls between two looks at the limit, with room for the frames of sanitizers.
constexpr std::size_t kReserve = std::size_t{2} << 20;

std::size_t first_share = std::size_t{192} << 10;

struct Task {
    void (*work)(void*, const char*);
    void* argument;
    sigset_t signals;  // that are held back
    std::exception_ptr failure;
};

void* run_task(void* pointer) {
    auto* task = static_cast<Task*>(pointer);
    SignalStack for_handlers;
    pthread_sigmask(SIG_SETMASK, &task->signals, nullptr);
    // What is thrown has to be caught where it is waited for.
    try {
        task->work(task->argument, here() - (kStackSize - kReserve));
    } catch (...) {
        task->failure = std::current_exception();
    }
    return nullptr;
}

}  // namespace

void set_first_share(std::size_t bytes) {
    first_share = bytes;
}

const char* first_limit() {
    return here() - first_share;
}

// A thread is the portable way to a stack. The one that asks waits, so that there is
// still just one that runs. It is that one whose waiting a signal is to end.
bool run(void (*work)(void*, const char*), void* argument) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStackSize);
    Task task{work, argument, {}, nullptr};
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &task.signals);
    pthread_t thread;
    bool started = pthread_create(&thread, &attributes, run_task, &task) == 0;
    pthread_attr_destroy(&attributes);
    if (started) pthread_join(thread, nullptr);
    pthread_sigmask(SIG_SETMASK, &task.signals, nullptr);
    if (task.failure) std::rethrow_exception(task.failure);
    return started;
}

}  // namespace tpu::fresh_stack
