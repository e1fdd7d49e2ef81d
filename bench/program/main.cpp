// Measures this library beside its peers. bench/compare runs it and makes tables and charts of what it writes:
//
//     orvxml_bench run REPETITIONS SECONDS_PER_SAMPLE SCALE ROW,ROW... FILE...   times, one line a document and library
//     orvxml_bench first|standard-first|heap LIBRARY FILE                        one figure of a fresh process
//     orvxml_bench query LIBRARY QUERY COUNT REPETITIONS                         times of it, over a generated document
//     orvxml_bench libraries | queries                                           what there is
#include "Documents.h"
#include "Fresh.h"
#include "Measure.h"
#include "Questions.h"
#include "Rows.h"
#include "libraries/Libraries.h"
#include <cstdio>
#include <exception>
#include <iostream>
#include <sstream>

namespace {

using Arguments = std::vector<std::string>;

// The number of cases comes first, for a progress bar.
void run(const Arguments& arguments) {
    const bench::Plan plan{std::stoi(arguments.at(1)), std::stod(arguments.at(2)), std::stod(arguments.at(3))};
    const auto documents = bench::loadDocuments({arguments.begin() + 5, arguments.end()});
    std::istringstream rows(arguments.at(4));
    std::vector<bench::Case> cases;
    for (std::string row; std::getline(rows, row, ',');) {
        for (bench::Case& work : bench::casesOf(row, documents, plan)) cases.push_back(std::move(work));
    }
    std::printf("cases\t%zu\n", cases.size());
    std::fflush(stdout);
    bench::measureAll(cases, plan);
}

void listLibraries() {
    bench::forEachLibrary([](auto library) { std::printf("%s\n", decltype(library)::kName); });
}

bool start(const Arguments& arguments) {
    const std::string& what = arguments.at(0);
    if (what == "run") {
        run(arguments);
    } else if (what == "first" || what == "standard-first") {
        bench::measureFirstParse(what, arguments.at(1), arguments.at(2));
    } else if (what == "heap") {
        bench::measureHeap(arguments.at(1), arguments.at(2));
    } else if (what == "query") {
        bench::measureShapeQuery(arguments.at(1), arguments.at(2), std::stoul(arguments.at(3)),
                                 std::stoi(arguments.at(4)));
    } else if (what == "queries") {
        for (const auto& asked : bench::shapeQuestions()) std::printf("%s\n", asked.name.c_str());
    } else if (what == "libraries") {
        listLibraries();
    } else {
        return false;
    }
    return true;
}

}  // namespace

int main(int count, char** values) {
    try {
        if (count > 1 && start({values + 1, values + count})) return 0;
        std::cerr << "Run bench/compare; bench/program/main.cpp says what this program takes\n";
    } catch (const std::exception& error) {
        std::cerr << "orvxml_bench: " << error.what() << '\n';
    }
    return 1;
}
