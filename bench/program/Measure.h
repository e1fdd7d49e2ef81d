// How a time is taken. A case is one work on one document; its contenders, one for each library, take turns, so that
// what else the machine does meets them all alike.
#pragma once
#include <chrono>
#include <cstddef>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// One library's way of doing the work: does it so many times and gives the seconds that the measured part took.
struct Contender {
    std::string library;
    std::function<double(int times)> run;
};

struct Case {
    std::string row;       // the work
    std::string document;  // a path, or the name of a document that is generated
    std::string part;      // which part of the work on that document; empty where there is one only
    std::size_t size;      // bytes of text
    // Made when the case's turn comes, and dropped after it: trees of other cases take no memory.
    std::function<std::vector<Contender>()> contenders;
};

struct Plan {
    int repetitions = 9;
    double secondsPerSample =
        0.02;          // short work is done several times over in one sample; 0: all work once, and not warm
    double scale = 1;  // of the documents that are generated
};

// Writes a line "row, document, part, size, library, seconds..." for each contender of each case, split by tabs: a
// sample for each repetition. A case of which some library's samples are far apart is measured again after all others,
// up to three times, as something has disturbed the machine for a while; that measurement counts whose samples are
// closest together.
void measureAll(const std::vector<Case>& cases, const Plan& plan);

// Seconds of processor time that the process has taken, in its own code and in the system's on its account. What other
// programs take meanwhile is not in it. Most works neither wait nor have threads of their own.
inline double processorSeconds() {
    std::timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Makes the compiler believe that the result is used.
template <class Result>
void keep(const Result& result) {
    asm volatile("" : : "g"(&result) : "memory");
}

// The whole operation is measured, the end of what it gives included.
template <class Operation>
std::function<double(int)> timed(Operation operation) {
    return [operation](int times) {
        const double start = processorSeconds();
        for (int i = 0; i < times; ++i) operation();
        return processorSeconds() - start;
    };
}

// The same in time that passes, for what waits for a disk.
template <class Operation>
std::function<double(int)> timedWithWaiting(Operation operation) {
    return [operation](int times) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < times; ++i) operation();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
}

// The operation alone is measured: neither what makes ready for it nor the end of what either of them gave.
template <class Prepare, class Operation>
std::function<double(int)> timedAlone(Prepare prepare, Operation operation) {
    return [prepare, operation](int times) {
        double seconds = 0;
        for (int i = 0; i < times; ++i) {
            auto prepared = prepare();
            const double start = processorSeconds();
            const auto result = operation(prepared);
            keep(result);
            seconds += processorSeconds() - start;
        }
        return seconds;
    };
}

}  // namespace bench
