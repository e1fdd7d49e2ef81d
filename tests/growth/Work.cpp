#include "growth/Work.h"

#include "support/HeapOperators.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>

namespace Xml::test {

namespace {

constexpr Kind kAllKinds[] = {SourceCalls, SinkCalls, NodeCalls, Allocations, AllocatedBytes};
static_assert(std::size(kAllKinds) == kKinds);

std::string shown(const Growth& growth, Kind kind) {
    std::ostringstream text;
    text << kKindNames[kind] << " at n, 2n, 4n, 8n:";
    for (const Work& work : growth) text << ' ' << work[kind];
    text << ", exponent " << exponentOf(growth, kind);
    return text.str();
}

// The largest exponent met by this process. It is reported at the end, as a property of no test.
double largest = 0;

class ReportLargest : public testing::Environment {
    void TearDown() override { testing::Test::RecordProperty("largest_exponent", std::to_string(largest)); }
};
const auto* const reportLargest = testing::AddGlobalTestEnvironment(new ReportLargest);

// Records the largest exponent of a case as a property of the test.
void record(const std::string& name, const Growth& growth) {
    Kind steepest = kAllKinds[0];
    for (const Kind kind : kAllKinds) {
        if (exponentOf(growth, kind) > exponentOf(growth, steepest)) steepest = kind;
    }
    largest = std::max(largest, exponentOf(growth, steepest));
    testing::Test::RecordProperty(name, std::to_string(exponentOf(growth, steepest)) + " " + kKindNames[steepest]);
}

}  // namespace

Work totals = {};

void* allocate(std::size_t bytes, bool, std::size_t alignment) noexcept {
    ++totals[Allocations];
    totals[AllocatedBytes] += static_cast<long long>(bytes);
    return plainMemory(bytes, alignment);
}

void giveBack(void* memory) noexcept { std::free(memory); }

Work workOf(const std::function<void()>& job) {
    const Work before = totals;
    job();
    Work work = totals;
    for (std::size_t i = 0; i < work.size(); ++i) work[i] -= before[i];
    return work;
}

Growth growthOf(const Jobs& jobs, int n) {
    Growth growth;
    for (Work& work : growth) {
        work = workOf(jobs(n));
        n *= 2;
    }
    return growth;
}

double exponentOf(const Growth& growth, Kind kind) {
    if (growth.back()[kind] < (kind == AllocatedBytes ? 4'096 : 64)) return 0;
    // The sizes are powers of two apart: on that scale they lie at -1.5, -0.5, 0.5 and 1.5, whose squares sum to 5.
    double slope = 0;
    for (std::size_t i = 0; i < growth.size(); ++i) {
        const auto work = static_cast<double>(std::max(growth[i][kind], 1LL));
        slope += (static_cast<double>(i) - 1.5) * std::log2(work) / 5;
    }
    return slope;
}

std::vector<Kind> tooFast(const Growth& growth) {
    std::vector<Kind> kinds;
    for (const Kind kind : kAllKinds) {
        if (exponentOf(growth, kind) > kMostExponent) kinds.push_back(kind);
    }
    return kinds;
}

double expectAtMostLinear(const std::string& name, const Jobs& jobs, Kind kind, int n) {
    const Growth growth = growthOf(jobs, n);
    record(name, growth);
    for (const Kind fast : tooFast(growth)) ADD_FAILURE() << name << ": " << shown(growth, fast);
    return exponentOf(growth, kind);
}

void expectLinear(const std::string& name, const Jobs& jobs, Kind kind, int n) {
    EXPECT_GE(expectAtMostLinear(name, jobs, kind, n), kLeastExponent)
        << name << ": " << kKindNames[kind] << " do not show what grows";
}

void expectSame(const std::string& name, const Jobs& jobs, Kind kind, int n) {
    const Growth growth = growthOf(jobs, n);
    record(name, growth);
    for (const Kind fast : tooFast(growth)) ADD_FAILURE() << name << ": " << shown(growth, fast);
    EXPECT_GT(growth.front()[kind], 0) << name << ": " << kKindNames[kind] << " were not counted";
    EXPECT_LE(growth.back()[kind], growth.front()[kind] * 11 / 10) << name << ": " << shown(growth, kind);
}

}  // namespace Xml::test
