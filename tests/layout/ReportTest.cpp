// Readers reach code of callers through Report alone, so that none forgets to give the window back first.
#include "support/Pattern.h"
#include "support/Places.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace {

namespace fs = std::filesystem;

// What is a way around Report in a reader's source: issuing a diagnostic, calling Reader::message, giving the window
// back on its own, declaring what may be a duplicate. Empty when the line is none.
std::string wayAround(const std::string& line) {
    static const Xml::test::Pattern kWay(R"((\bMessage\b|[.>]message\(|^\s*message\(|StreamAccess::release)"
                                         R"(|(\.|->)(addAttDecl|addElementDecl|addName)\())");
    static const Xml::test::Pattern kComment(R"(\s*//.*)");
    if (kComment.fits(line) || line.find("Report::during(") != std::string::npos) return "";
    const auto found = kWay.find(line);
    return found.empty() ? "" : found[0];
}

TEST(ReportLayoutTest, TellsAWayAroundFromOthers) {
    const struct {
        const char* line;
        bool isAWayAround;
    } kCases[] = {
        {"    Message(\"<x> y \" + name);", true},
        {"#include \"xml/text/Message.h\"", true},
        {"    nested.message(in, text);", true},
        {"    reader->message(in, text);", true},
        {"    message(in, text);", true},
        {"    StreamAccess::release(in);", true},
        {"    dtd->addAttDecl(element, attribute, definition.get());", true},
        {"    dtd.addElementDecl(name, model.get());", true},
        {"    Report::during(in, [&] { dtd.addElementDecl(name, model.get()); });", false},
        {"    Report::message(*this, in, text);", false},
        {"    Report::diagnose(in, text);", false},
        {"    // Keeps the message as by message().", false},
        {"    setMessage(other.getErrorMessage());", false},
        {"    addName(level, name, readMark());", false},
        {"void Reader::message(InStream& in, const std::string& text) {", false},
    };
    for (const auto& c : kCases) EXPECT_EQ(!wayAround(c.line).empty(), c.isAWayAround) << c.line;
}

TEST(ReportLayoutTest, NoReaderHasAWayAround) {
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(Xml::test::sourceFolder()) / "xml/reader")) {
        const fs::path& path = entry.path();
        if (path.extension() != ".cpp" || path.stem() == "Report") continue;
        ++files;
        std::ifstream text(path);
        std::string line;
        for (int number = 1; std::getline(text, line); ++number)
            EXPECT_EQ(wayAround(line), "") << path << ":" << number;
    }
    EXPECT_GT(files, 10);
}

}  // namespace
