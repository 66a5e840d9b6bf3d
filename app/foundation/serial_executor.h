#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>

namespace loadwarden {

// Runs jobs one at a time, in the order they were submitted, on a thread of
// its own. An object whose state only its jobs touch needs no lock.
class SerialExecutor {
public:
    SerialExecutor();
    // Finishes the jobs already submitted, then stops the thread.
    ~SerialExecutor();
    SerialExecutor(const SerialExecutor&) = delete;
    SerialExecutor& operator=(const SerialExecutor&) = delete;

    // The future holds the job's result, or the exception it threw.
    template <typename Job>
    auto submit(Job job) -> std::future<std::invoke_result_t<Job&>> {
        using Result = std::invoke_result_t<Job&>;
        auto task = std::make_shared<std::packaged_task<Result()>>(std::move(job));
        auto future = task->get_future();
        enqueue([task] { (*task)(); });
        return future;
    }

private:
    void enqueue(std::function<void()> job);
    void run();

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> jobs_;
    bool stopping_ = false;
    std::thread thread_; // last: started once the rest is ready
};

} // namespace loadwarden
