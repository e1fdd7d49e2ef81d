#include "Measure.h"
#include <algorithm>
#include <cstdio>

namespace bench {

namespace {

struct Samples {
    int times = 1;  // how often the work is done in one sample
    std::vector<double> seconds;

    // Whether the middle half of them is close together. A machine that is disturbed for a while is so for all.
    bool areSettled() const {
        constexpr double kWidest = 1.2;
        std::vector<double> sorted = seconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() * 3 / 4] <= kWidest * sorted[sorted.size() / 4];
    }
};

bool areAllSettled(const std::vector<Samples>& samples) {
    return std::all_of(samples.begin(), samples.end(), [](const Samples& one) { return one.areSettled(); });
}

}  // namespace

void measure(const Case& work, const Plan& plan) {
    constexpr double kMostTimes = 1e6;
    constexpr int kMostRounds = 3;
    const std::vector<Contender> contenders = work.contenders();
    std::vector<Samples> samples(contenders.size());
    for (std::size_t i = 0; i < contenders.size(); ++i) {
        const double once = std::max(contenders[i].run(1), 1e-9);
        samples[i].times = static_cast<int>(std::clamp(plan.secondsPerSample / once, 1.0, kMostTimes));
    }
    // Each repetition begins with another library, so that none always runs after the same one. What the one before has
    // done to caches and heap is no part of a sample of warm work: that begins with a run that does not count.
    const int most = plan.secondsPerSample > 0 ? kMostRounds * plan.repetitions : plan.repetitions;
    for (int repetition = 0; repetition < most; ++repetition) {
        if (repetition > 0 && repetition % plan.repetitions == 0 && areAllSettled(samples)) break;
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
