#include "Fresh.h"
#include "Documents.h"
#include "Heap.h"
#include "Measure.h"
#include "Questions.h"
#include "libraries/Libraries.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <sys/mman.h>

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

// Fills so many bytes and gives them back, so that what comes next gets pages that the machine has. A virtual machine
// may have handed free memory back to its host, and taking a page of 2 MB again was seen to take 3 ms or 7.
void touchFreeMemory(std::size_t size) {
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("no memory to be touched");
    madvise(memory, size, MADV_HUGEPAGE);
    std::memset(memory, 1, size);
    munmap(memory, size);
}

void expectKnown(bool isKnown, const std::string& name) {
    if (!isKnown) throw std::runtime_error("no library is named " + name);
}

}  // namespace

void measureFirstParse(const std::string& row, const std::string& library, const std::string& path) {
    constexpr std::size_t kMostTimesTheText = 16;  // that a tree and what makes it may take
    const std::string text = readFile(path);
    touchFreeMemory(kMostTimesTheText * std::max(text.size(), std::size_t{1} << 20));
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
