#include "Fresh.h"
#include "Documents.h"
#include "Heap.h"
#include "Measure.h"
#include "Questions.h"
#include "libraries/Libraries.h"
#include <cstdio>
#include <stdexcept>

namespace bench {

namespace {

// Hands over the one of that name, if it is among those that are visited with this.
template <class Use>
auto named(const std::string& name, bool& isKnown, Use use) {
    return [&name, &isKnown, use](auto library) {
        if (name != decltype(library)::kName) return;
        isKnown = true;
        use(library);
    };
}

void expectKnown(bool isKnown, const std::string& name) {
    if (!isKnown) throw std::runtime_error("no library is named " + name);
}

}  // namespace

void measureFirstParse(const std::string& row, const std::string& library, const std::string& path) {
    const std::string text = readFile(path);
    bool isKnown = false;
    const auto first = named(library, isKnown, [&text](auto chosen) {
        const double start = processorSeconds();
        const auto tree = decltype(chosen)::parse(text);
        const double seconds = processorSeconds() - start;
        keep(tree);
        std::printf("%.4g\n", seconds);
    });
    if (row == "standard-first") {
        forEachStandard(first);
    } else {
        forEachLibrary(first);
    }
    expectKnown(isKnown, library);
}

void measureHeap(const std::string& library, const std::string& path) {
    const std::string text = readFile(path);
    std::size_t taken = 0;
    bool isKnown = false;
    forEachLibrary(named(library, isKnown, [&](auto chosen) {
        const std::size_t before = usedHeap();
        const auto tree = decltype(chosen)::parse(text);
        taken = usedHeap() - before;
        keep(tree);
    }));
    expectKnown(isKnown, library);
    checkHeapCounting();
    std::printf("%zu\t%zu\n", taken, OrvXml::read(OrvXml::parse(text)).nodes());
}

void measureShapeQuery(const std::string& library, const std::string& name, std::size_t count, int repetitions) {
    constexpr double kEnough = 1;  // what takes so many seconds is not repeated
    for (const ShapeQuestion& asked : shapeQuestions()) {
        if (asked.name != name) continue;
        forEachFinder([&](auto candidate) {
            using Library = decltype(candidate);
            if (library != Library::kName) return;
            const auto tree = Library::parse(asked.shape(count));
            const std::string& path = asked.question.by(library);
            double spent = 0;
            for (int i = 0; i < repetitions && spent < kEnough; ++i) {
                const double start = processorSeconds();
                const std::size_t found = Library::find(tree, path);
                const double seconds = processorSeconds() - start;
                spent += seconds;
                std::printf(i == 0 ? "%.4g" : "\t%.4g", seconds);
                if (found != asked.expected(count)) {
                    throw std::runtime_error(path + " finds " + std::to_string(found) + " nodes");
                }
            }
            std::printf("\n");
        });
        return;
    }
    throw std::runtime_error("no query is named " + name);
}

}  // namespace bench
