#include "Measure.h"
#include <algorithm>
#include <cstdio>

namespace bench {

namespace {

struct Samples {
    int times = 1;  // how often the work is done in one sample
    std::vector<double> seconds;
};

}  // namespace

void measure(const Case& work, const Plan& plan) {
    constexpr double kMostTimes = 1e6;
    const std::vector<Contender> contenders = work.contenders();
    std::vector<Samples> samples(contenders.size());
    for (std::size_t i = 0; i < contenders.size(); ++i) {
        const double once = std::max(contenders[i].run(1), 1e-9);
        samples[i].times = static_cast<int>(std::clamp(plan.secondsPerSample / once, 1.0, kMostTimes));
    }
    // Each repetition begins with another library, so that none always runs after the same one. What the one before has
    // done to caches and heap is no part of a sample of warm work: that begins with a run that does not count.
    for (int repetition = 0; repetition < plan.repetitions; ++repetition) {
        for (std::size_t turn = 0; turn < contenders.size(); ++turn) {
            const std::size_t i = (turn + static_cast<std::size_t>(repetition)) % contenders.size();
            if (plan.secondsPerSample > 0) contenders[i].run(1);
            samples[i].seconds.push_back(contenders[i].run(samples[i].times) / samples[i].times);
        }
    }
    for (std::size_t i = 0; i < contenders.size(); ++i) {
        std::printf("%s\t%s\t%s\t%zu\t%s", work.row.c_str(), work.document.c_str(), work.part.c_str(), work.size,
                    contenders[i].library.c_str());
        for (const double seconds : samples[i].seconds) std::printf("\t%.4g", seconds);
        std::printf("\n");
    }
    std::fflush(stdout);
}

}  // namespace bench
