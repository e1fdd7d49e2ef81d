#include "Measure.h"
#include <algorithm>
#include <cstdio>
#include <utility>

namespace bench {

namespace {

struct Samples {
    std::string library;
    int times = 1;  // how often the work is done in one sample
    std::vector<double> seconds;

    // How far apart the middle half of them is: by which factor.
    double spread() const {
        std::vector<double> sorted = seconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() * 3 / 4] / sorted[sorted.size() / 4];
    }
};

// Of all contenders of a case.
struct Measurement {
    const Case* work = nullptr;
    std::vector<Samples> samples;
    double spread = 0;  // the widest
};

Measurement measure(const Case& work, const Plan& plan) {
    constexpr double kMostTimes = 1e6;
    const std::vector<Contender> contenders = work.contenders();
    Measurement made{&work, {}, 0};
    for (const Contender& contender : contenders) {
        const double once = std::max(contender.run(1), 1e-9);
        made.samples.push_back(
            {contender.library, static_cast<int>(std::clamp(plan.secondsPerSample / once, 1.0, kMostTimes)), {}});
    }
    // Each repetition begins with another library, so that none always runs after the same one. What the one before has
    // done to caches and heap is no part of a sample of warm work: that begins with a run that does not count.
    for (int repetition = 0; repetition < plan.repetitions; ++repetition) {
        for (std::size_t turn = 0; turn < contenders.size(); ++turn) {
            const std::size_t i = (turn + static_cast<std::size_t>(repetition)) % contenders.size();
            if (plan.secondsPerSample > 0) contenders[i].run(1);
            Samples& samples = made.samples[i];
            samples.seconds.push_back(contenders[i].run(samples.times) / samples.times);
        }
    }
    for (const Samples& samples : made.samples) made.spread = std::max(made.spread, samples.spread());
    return made;
}

void print(const Measurement& made) {
    const Case& work = *made.work;
    for (const Samples& samples : made.samples) {
        std::printf("%s\t%s\t%s\t%zu\t%s", work.row.c_str(), work.document.c_str(), work.part.c_str(), work.size,
                    samples.library.c_str());
        for (const double seconds : samples.seconds) std::printf("\t%.4g", seconds);
        std::printf("\n");
    }
    std::fflush(stdout);
}

}  // namespace

void measureAll(const std::vector<Case>& cases, const Plan& plan) {
    constexpr double kSettled = 1.2;
    constexpr int kMostTimesAgain = 3;
    std::vector<Measurement> disturbed;
    for (const Case& work : cases) {
        Measurement made = measure(work, plan);
        if (plan.secondsPerSample > 0 && made.spread > kSettled) {
            disturbed.push_back(std::move(made));
        } else {
            print(made);
        }
    }
    for (int again = 0; again < kMostTimesAgain; ++again) {
        for (Measurement& made : disturbed) {
            if (made.spread <= kSettled) continue;
            Measurement another = measure(*made.work, plan);
            if (another.spread < made.spread) made = std::move(another);
        }
    }
    for (const Measurement& made : disturbed) print(made);
}

}  // namespace bench
