#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace Xml::test {

inline constexpr int kThreads = 4;
inline constexpr int kRounds = 50;

// Runs the job in several threads that begin together; the job gets the number of its thread.
template <class Job>
void inThreads(Job job) {
    std::atomic<int> waiting{kThreads};
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&waiting, &job, number] {
            --waiting;
            while (waiting > 0) std::this_thread::yield();
            job(number);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace Xml::test
