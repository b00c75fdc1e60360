// A device thread: a queue of jobs ordered by time, run one after the other with no lock held.
#include <pthread.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "simulator/core/sim.h"
#include "simulator/core/thread_name.h"

namespace sim {

using Clock = std::chrono::steady_clock;

struct Job {
    const void* owner;
    std::function<void()> run;
};

struct EventThread::Impl {
    const char* name;
    std::mutex mutex;
    std::condition_variable changed;
    // The second part of the key keeps jobs of one time in posting order.
    std::multimap<std::pair<Clock::time_point, uint64_t>, Job> queue;
    uint64_t posted = 0;
    bool started = false;
    bool running = false;
    const void* runningOwner = nullptr;
    std::thread::id id;

    void loop();
};

EventThread::EventThread(const char* name) : impl_(new Impl) {
    impl_->name = name;
}

void EventThread::Impl::loop() {
    setThreadName(name);
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        if (queue.empty()) {
            changed.wait(lock);
            continue;
        }
        auto first = queue.begin();
        if (first->first.first > Clock::now()) {
            Clock::time_point due = first->first.first;
            changed.wait_until(lock, due);
            continue;
        }
        Job job = std::move(first->second);
        queue.erase(first);
        running = true;
        runningOwner = job.owner;
        lock.unlock();
        job.run();
        job.run = nullptr;
        lock.lock();
        running = false;
        runningOwner = nullptr;
        changed.notify_all();
    }
}

void EventThread::post(const void* owner, int64_t delayMs, std::function<void()> job) {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    Clock::time_point due = Clock::now() + std::chrono::milliseconds(delayMs);
    impl_->queue.emplace(std::make_pair(due, impl_->posted++), Job{owner, std::move(job)});
    if (!impl_->started) {
        impl_->started = true;
        std::thread thread([impl = impl_] { impl->loop(); });
        impl_->id = thread.get_id();
        thread.detach();
    }
    impl_->changed.notify_all();
}

void EventThread::cancel(const void* owner) {
    std::unique_lock<std::mutex> lock(impl_->mutex);
    for (auto job = impl_->queue.begin(); job != impl_->queue.end();)
        job = job->second.owner == owner ? impl_->queue.erase(job) : std::next(job);
    if (std::this_thread::get_id() == impl_->id)
        return;
    while (impl_->running && impl_->runningOwner == owner)
        impl_->changed.wait(lock);
}

void EventThread::cancelAll() {
    std::unique_lock<std::mutex> lock(impl_->mutex);
    impl_->queue.clear();
    if (std::this_thread::get_id() == impl_->id)
        return;
    while (impl_->running)
        impl_->changed.wait(lock);
}

bool EventThread::isCurrent() const {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    return impl_->started && std::this_thread::get_id() == impl_->id;
}

}  // namespace sim
