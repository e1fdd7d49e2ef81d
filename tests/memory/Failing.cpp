#include "memory/Failing.h"

#include "support/HeapOperators.h"
#include "support/WatchedSlabs.h"
#include "xml/text/Message.h"
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace Xml::test {

namespace {

long live = 0;  // allocations that were not given back

bool counting = false;
long counted = 0;
long due = 0;            // the one to fail
bool lasting = false;    // so do all after it, as long as the operation lasts
bool refused = false;    // it has failed
bool mayShow = false;    // ... in the operation that has ended last
bool tolerated = false;  // ... where the caller had said that it can do without

int messages = 0;

void countMessage(const char*, ...) { ++messages; }

// The number that the next file would get: a file that was left open shows in it.
int nextDescriptor() {
    const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(descriptor);
    return descriptor;
}

int failedParts() {
    const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
    return test->result()->total_part_count();
}

}  // namespace

void* allocate(std::size_t bytes, bool tolerant, std::size_t alignment) noexcept {
    if (counting && (++counted == due || (lasting && due > 0 && counted > due))) {
        refused = mayShow = true;
        tolerated = tolerant;
        return nullptr;
    }
    void* const memory = plainMemory(bytes, alignment);
    if (memory != nullptr) ++live;
    return memory;
}

void giveBack(void* memory) noexcept {
    if (memory != nullptr) --live;
    std::free(memory);
}

Attempt::Attempt(long failingAllocation) {
    counted = 0;
    due = failingAllocation;
    refused = mayShow = tolerated = false;
}

bool Attempt::hasFailed() const { return refused; }

void Attempt::begin() {
    counting = true;
    mayShow = false;
}

void Attempt::end() { counting = false; }

void Attempt::judge(const std::string& thrown, bool mustShow) {
    if (mayShow && mustShow && !tolerated) {
        EXPECT_EQ(thrown, "std::bad_alloc") << "should have reached the caller";
    } else {
        EXPECT_EQ(thrown, "") << "came out although nothing had failed, or nothing that may show";
    }
}

void forEachShortage(const std::function<void(Attempt&)>& scenario) {
    lasting = true;
    forEachFailingAllocation(scenario);
    lasting = false;
}

void forEachFailingAllocation(const std::function<void(Attempt&)>& scenario) {
    constexpr long kMost = 100'000;
    for (long number = 0; number <= kMost; ++number) {
        const int before = failedParts();
        bool hasFailed = false;
        {
            SCOPED_TRACE("allocation " + std::to_string(number) + " fails");
            const long liveBefore = live;
            const int descriptorBefore = nextDescriptor();
            {
                Attempt attempt(number);
                scenario(attempt);
                hasFailed = attempt.hasFailed();
            }
            if (failedParts() != before) return;  // the report has taken memory too
            if (number > 0) {
                EXPECT_EQ(live, liveBefore) << "memory was not given back";
            }
            EXPECT_EQ(nextDescriptor(), descriptorBefore) << "a file was left open";
            if (failedParts() != before) return;
        }
        if (number == 0 || hasFailed) continue;
        EXPECT_GT(number, 1) << "nothing was allocated that could fail";
        return;
    }
    ADD_FAILURE() << "does not come to an end";
}

QuietMessages::QuietMessages() : handlerBefore(Message::mMessageHandler), outBefore(Message::disableOutput(true)) {
    messages = 0;
    Message::InstallMessageHandler(countMessage);
}

QuietMessages::~QuietMessages() {
    Message::InstallMessageHandler(handlerBefore);
    Message::disableOutput(outBefore);
}

int QuietMessages::count() const { return messages; }

}  // namespace Xml::test
