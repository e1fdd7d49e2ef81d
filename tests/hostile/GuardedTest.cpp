// That the guard of all other tests here notices what it is there for.
#include "hostile/Guarded.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <string>

namespace Xml::test {
namespace {

int descend(int levels) {
    volatile char room[1024];
    room[0] = static_cast<char>(levels);
    return levels > 0 ? descend(levels - 1) + room[0] : 0;
}

void* volatile kept = nullptr;

TEST(GuardedTest, TellsWhatTheJobReturns) {
    EXPECT_EQ(runGuarded([] { return std::string("done"); }), "done");
    EXPECT_EQ(runGuarded([] { return std::string(1'000'000, 'x'); }), std::string(1'000'000, 'x'));
    EXPECT_EQ(runGuarded([] { return std::string(); }), "");
}

TEST(GuardedTest, TellsHowAJobEndsThatDoesNotReturn) {
    EXPECT_EQ(runGuarded([]() -> std::string { throw std::runtime_error("out"); }), "threw out");
    EXPECT_EQ(runGuarded([]() -> std::string { std::_Exit(7); }), "ended with code 7");
    const std::string killed = runGuarded([]() -> std::string {
        nowAt("the end");
        std::abort();
    });
    EXPECT_EQ(killed, "killed by signal 6 (Aborted) at the end");
}

TEST(GuardedTest, EndsAJobThatTakesTooLong) {
    Bounds bounds;
    bounds.seconds = 1;
    const std::string answer = runGuarded(
        [] {
            for (volatile bool on = true; on;) continue;
            return std::string("ended");
        },
        bounds);
    EXPECT_EQ(answer, "killed by signal 24 (CPU time limit exceeded)");
}

TEST(GuardedTest, GivesAJob256KilobytesOfStackAndNoMore) {
    if (!kMemoryIsBounded) GTEST_SKIP() << "frames have other sizes here";
    EXPECT_EQ(runGuarded([] { return descend(100) != 1 ? std::string("done") : ""; }), "done");
    EXPECT_EQ(runGuarded([] { return descend(300) != 1 ? std::string("done") : ""; }),
              "killed by signal 11 (Segmentation fault)");
}

TEST(GuardedTest, RefusesMoreMemoryThanIsAllowed) {
    if (!kMemoryIsBounded) GTEST_SKIP() << "memory has no bound here";
    Bounds bounds;
    bounds.memory = 1'000'000;
    EXPECT_EQ(runGuarded([] { return std::to_string(std::string(500'000, 'x').size()); }, bounds), "500000");
    EXPECT_EQ(runGuarded([] { return std::to_string(std::string(2'000'000, 'x').size()); }, bounds),
              "threw std::bad_alloc");
}

TEST(GuardedTest, NoticesMemoryThatWasNotGivenBack) {
    if (!kMemoryIsBounded) GTEST_SKIP() << "the leak sanitizer would print it";
    const std::string answer = runGuarded([] {
        kept = ::operator new(1);
        return std::string("done");
    });
    EXPECT_EQ(answer, "done [memory was not given back]");
}

}  // namespace
}  // namespace Xml::test
