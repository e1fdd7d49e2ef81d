// Who may include whom. A module's headers know only what stands below it; what a node or an entity asks of a document
// type runs back up and stays in sources, behind forward declarations.
#include "support/Pattern.h"
#include "support/Places.h"
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Modules = std::set<std::string>;

// A module may always include itself; what its headers may include of the others stands here.
const std::map<std::string, Modules> kHeaderMap = {
    {"orvsys", {}},
    {"xml/text", {}},
    {"xml/stream", {"xml/text", "orvsys"}},
    {"xml/dom", {"xml/text", "xml/stream"}},
    {"xml/dtd", {"xml/text", "xml/stream", "xml/dom"}},
    {"xml/reader", {"xml/text", "xml/stream", "xml/dom", "xml/dtd"}},
    {"xml/xpath", {"xml/text", "xml/dom", "orvsys"}},
    {"xml/standard", {"xml/text", "xml/stream", "xml/dom", "xml/dtd"}},
    {"xml/easy", {"xml/text", "xml/dom", "xml/dtd", "xml/xpath", "xml/standard"}},
};
const std::map<std::string, Modules> kUpInSources = {
    {"xml/text", {"xml/dtd"}},
    {"xml/dom", {"xml/dtd"}},
};

const std::string kExportHeader = "xml/Export.h";

// Those that bring in others, for users.
const std::set<std::string> kUserHeaders = {"xml/xml.h", "xml/standard.h", "xml/easy.h"};

// The module of a path: its first folder, below xml its first two. The files of xml itself are in none.
std::string moduleOf(const std::string& path) {
    static const Xml::test::Pattern kModule("(orvsys|xml/[^/]+)/.+");
    const auto parts = kModule.match(path);
    return parts.empty() ? "" : parts[1];
}

bool isHeader(const std::string& path) { return fs::path(path).extension() == ".h"; }
bool isInternal(const std::string& path) { return path.find("/internal/") != std::string::npos; }

// Whether `to` stands on the map below `from`, for a source also with other modules between them.
bool isBelow(const std::string& from, const std::string& to, bool header) {
    const auto below = kHeaderMap.find(from);
    if (below == kHeaderMap.end()) return false;
    if (below->second.count(to) > 0) return true;
    const auto leadsThere = [&](const std::string& between) { return isBelow(between, to, header); };
    return !header && std::any_of(below->second.begin(), below->second.end(), leadsThere);
}

bool isOnMap(const std::string& from, const std::string& to, bool header) {
    if (from == to || isBelow(from, to, header)) return true;
    const auto up = kUpInSources.find(from);
    return !header && up != kUpInSources.end() && up->second.count(to) > 0;
}

// What is wrong with `file` including `included`, written with `bracket`; empty when nothing is.
std::string faultOf(const std::string& file, char bracket, const std::string& included) {
    const bool ours = included.rfind("xml/", 0) == 0 || included.rfind("orvsys/", 0) == 0;
    if (!ours) {
        if (bracket == '"') return "is not a path from the root";
        const bool standard = included.find_first_of("./") == std::string::npos;
        return standard || !isHeader(file) || isInternal(file) ? "" : "is not of the standard library";
    }
    if (bracket == '<') return "is ours and wants quotes";
    if (isHeader(file) && !isInternal(file) && isInternal(included)) return "is internal, the header is public";

    const std::string from = moduleOf(file);
    const std::string to = moduleOf(included);
    if (included == kExportHeader) return from == "orvsys" ? "is above it" : "";
    if (kUserHeaders.count(included) > 0) return "is for users";
    if (kUserHeaders.count(file) > 0) return kHeaderMap.count(to) > 0 ? "" : "is of no module";
    return isOnMap(from, to, isHeader(file)) ? "" : "is not on the map";
}

// One line for each include of the text that is not allowed in the file of that path.
std::vector<std::string> faultsOf(const std::string& file, std::istream& text) {
    static const Xml::test::Pattern kInclude(R"(\s*#\s*include\s*([<"])([^>"]+)[>"].*)");
    std::vector<std::string> faults;
    std::string line;
    while (std::getline(text, line)) {
        const auto parts = kInclude.match(line);
        if (parts.empty()) continue;
        const std::string fault = faultOf(file, parts[1][0], parts[2]);
        if (!fault.empty()) faults.push_back(file + " includes " + parts[2] + ", which " + fault);
    }
    return faults;
}

// The library's headers and sources, as paths from the root.
std::vector<std::string> libraryFiles() {
    std::vector<std::string> files;
    const fs::path root = Xml::test::sourceFolder();
    for (const char* folder : {"orvsys", "xml"}) {
        for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
            const auto extension = entry.path().extension();
            if (extension == ".h" || extension == ".cpp")
                files.push_back(fs::relative(entry.path(), root).generic_string());
        }
    }
    return files;
}

struct IncludeCase {
    const char* file;
    const char* line;
    const char* fault;  // the end of the sentence; empty when the include is allowed
};

TEST(IncludeMapTest, TellsAllowedIncludesFromOthers) {
    const IncludeCase kCases[] = {
        {"xml/text/Names.h", "#include <string>", ""},
        {"xml/text/Names.h", "#include \"xml/Export.h\"", ""},
        {"xml/text/Names.h", "#include \"xml/text/DataHolder.h\"", ""},
        {"xml/text/Names.h", "#include \"orvsys/Uni16.h\"", "is not on the map"},
        {"xml/text/Entities.h", "#include \"xml/dtd/Dtd.h\"", "is not on the map"},
        {"xml/text/Entities.cpp", "#include \"xml/dtd/Dtd.h\"", ""},
        {"xml/text/Entities.cpp", "#include \"xml/dom/Element.h\"", "is not on the map"},
        {"xml/dom/Object.h", "#include \"xml/stream/OutStream.h\"", ""},
        {"xml/dom/Object.h", "  #  include  \"xml/dtd/Dtd.h\"  // why", "is not on the map"},
        {"xml/dom/Object.cpp", "#include \"xml/dtd/Dtd.h\"", ""},
        {"xml/stream/InStream.cpp", "#include \"xml/dom/Object.h\"", "is not on the map"},
        {"xml/stream/FileSpecInStream.h", "#include \"orvsys/Files.h\"", ""},
        {"xml/dtd/Dtd.h", "#include \"xml/dom/Object.h\"", ""},
        {"xml/dtd/Dtd.h", "#include \"xml/reader/Reader.h\"", "is not on the map"},
        {"xml/reader/Reader.h", "#include \"xml/dtd/Dtd.h\"", ""},
        {"xml/reader/Reader.h", "#include \"orvsys/Files.h\"", "is not on the map"},
        {"xml/reader/DoctypeReader.cpp", "#include \"orvsys/Files.h\"", ""},
        {"xml/reader/DoctypeReader.cpp", "#include \"xml/xpath/XPath.h\"", "is not on the map"},
        {"xml/xpath/XPath.h", "#include \"orvsys/Uni16.h\"", ""},
        {"xml/xpath/XPath.h", "#include \"xml/dtd/Dtd.h\"", "is not on the map"},
        {"xml/text/Names.h", "#include \"xml/text/internal/ByteClasses.h\"", "is internal, the header is public"},
        {"xml/text/internal/Table.h", "#include \"xml/text/internal/ByteClasses.h\"", ""},
        {"xml/stream/InStream.cpp", "#include \"xml/text/internal/ByteClasses.h\"", ""},
        {"xml/standard/Read.h", "#include \"xml/dtd/Dtd.h\"", ""},
        {"xml/standard/Read.h", "#include \"xml/reader/Reader.h\"", "is not on the map"},
        {"xml/standard/Read.cpp", "#include \"xml/xpath/XPath.h\"", "is not on the map"},
        {"xml/dom/Element.cpp", "#include \"xml/standard/Problem.h\"", "is not on the map"},
        {"xml/easy/Values.h", "#include \"xml/dom/Element.h\"", ""},
        {"xml/easy/Values.h", "#include \"xml/standard/Problem.h\"", ""},
        {"xml/easy/Values.h", "#include \"xml/reader/Reader.h\"", "is not on the map"},
        {"xml/standard/Read.cpp", "#include \"xml/easy/Values.h\"", "is not on the map"},
        {"orvsys/Files.h", "#include \"orvsys/Export.h\"", ""},
        {"orvsys/Files.h", "#include \"xml/Export.h\"", "is above it"},
        {"orvsys/Files.cpp", "#include \"xml/text/Names.h\"", "is not on the map"},
        {"orvsys/Files.cpp", "#include <sys/stat.h>", ""},
        {"orvsys/Files.h", "#include <sys/stat.h>", "is not of the standard library"},
        {"xml/dom/Element.h", "#include \"Object.h\"", "is not a path from the root"},
        {"xml/dom/Element.h", "#include <xml/dom/Object.h>", "is ours and wants quotes"},
        {"xml/dom/Element.h", "#include \"xml/xml.h\"", "is for users"},
        {"xml/standard/Read.cpp", "#include \"xml/standard.h\"", "is for users"},
        {"xml/xml.h", "#include \"xml/dom/Element.h\"", ""},
        {"xml/standard.h", "#include \"xml/standard/Read.h\"", ""},
        {"xml/xml.h", "#include \"xml/other/Element.h\"", "is of no module"},
        {"xml/xml.h", "#include \"xml/dom/internal/Links.h\"", "is internal, the header is public"},
        {"xml/other/Thing.h", "#include \"xml/dom/Element.h\"", "is not on the map"},
        {"xml/Export.h", "#include \"xml/text/Names.h\"", "is not on the map"},
        {"xml/dom/Element.h", "// #include \"xml/dtd/Dtd.h\"", ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.file) + ": " + c.line);
        std::istringstream text(std::string("#pragma once\n") + c.line + "\n");
        const auto faults = faultsOf(c.file, text);
        if (*c.fault == '\0') {
            EXPECT_EQ(faults, std::vector<std::string>());
        } else {
            ASSERT_EQ(faults.size(), 1u);
            EXPECT_EQ(faults[0].substr(faults[0].find(", which ") + 8), c.fault);
        }
    }
}

TEST(IncludeMapTest, HoldsForEveryFileOfTheLibrary) {
    const auto files = libraryFiles();
    ASSERT_NE(std::find(files.begin(), files.end(), kExportHeader), files.end());
    for (const auto& file : files) {
        std::ifstream text(fs::path(Xml::test::sourceFolder()) / file);
        ASSERT_TRUE(text) << file;
        for (const auto& fault : faultsOf(file, text)) ADD_FAILURE() << fault;
    }
}

TEST(IncludeMapTest, KnowsTheModuleOfEveryFile) {
    for (const auto& file : libraryFiles()) {
        if (file == kExportHeader || kUserHeaders.count(file) > 0) continue;
        EXPECT_EQ(kHeaderMap.count(moduleOf(file)), 1u) << file;
    }
}

}  // namespace
