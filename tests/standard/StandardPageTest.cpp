// Reads docs/standard.md and README.md and does what they say. In every table with a column `document` each other cell
// is what that column asks of the document, and blocks of code are parts of programs in examples/, which run as tests.
#include "standard/Oracles.h"
#include "standard/PageDocument.h"
#include "support/Pattern.h"
#include "support/Places.h"
#include "support/Sources.h"
#include "support/Tables.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/Write.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Cells = std::vector<std::string>;

// --- The page ---

struct Row {
    std::size_t line = 0;
    std::map<std::string, std::string> cells;  // by the header of their column

    bool has(const std::string& column) const { return cells.count(column) > 0; }
};

struct Block {
    std::size_t line = 0;
    std::string language;
    Cells lines;
};

struct Page {
    std::vector<Row> rows;
    std::vector<Block> blocks;
};

Page readPage(const std::string& file) {
    Page page;
    std::istringstream text(readFile(sourceFolder() + "/" + file));
    bool isInBlock = false;
    Cells header;
    std::size_t number = 0;
    for (std::string line; std::getline(text, line);) {
        ++number;
        if (line.rfind("```", 0) == 0) {
            isInBlock = !isInBlock;
            if (isInBlock) page.blocks.push_back({number, line.substr(3), {}});
        } else if (isInBlock) {
            page.blocks.back().lines.push_back(line);
        } else if (line.rfind('|', 0) != 0) {
            header.clear();
        } else if (header.empty()) {
            header = cellsOf(line);
        } else if (line.rfind("|---", 0) != 0) {
            const Cells cells = cellsOf(line);
            if (cells.size() != header.size())
                throw std::runtime_error(file + " line " + std::to_string(number) + " has not the cells of its table");
            page.rows.push_back({number, {}});
            for (std::size_t i = 0; i < cells.size(); ++i) page.rows.back().cells[header[i]] = cells[i];
        }
    }
    return page;
}

// --- Options ---

// Sets what a cell says: `maxBytes = 10`, several with commas between them.
ReadOptions optionsIn(const std::string& cell) {
    static const Pattern form("(\\w+) = ([^,`]+)");
    ReadOptions options;
    for (const Pattern::Groups& each : form.findAll(cell)) {
        const std::string& name = each[1];
        const std::string& value = each[2];
        if (name == "maxBytes") {
            options.maxBytes = std::stoll(value);
        } else if (name == "maxDepth") {
            options.maxDepth = std::stoi(value);
        } else if (name == "entityGrowth") {
            options.entityGrowth = std::stoll(value);
        } else if (name == "encoding") {
            options.encoding = value.substr(1, value.size() - 2);
        } else if (name == "namespaces") {
            options.namespaces = value == "true";
        } else if (name == "validate") {
            options.validate = value == "true";
        } else if (name == "keepCData") {
            options.keepCData = value == "true";
        } else if (name == "keepComments") {
            options.keepComments = value == "true";
        } else if (name == "space") {
            options.space = value == "Space::Dropped" ? Space::Dropped : Space::All;
        } else {
            throw std::runtime_error("no option that the test knows: " + name);
        }
    }
    return options;
}

// --- What columns ask of a document ---

const char* const kKinds[] = {"NotFound", "Unreadable", "Malformed",   "Namespace",  "Invalid",
                              "Refused",  "Limit",      "Unsupported", "Unwritable", "BadPath"};

std::string treeOf(const ReadResult& result) { return result ? dump(result.get()) : result.message(); }

Problem problemOf(const std::string& document, const ReadOptions& options) {
    const ReadResult result = readText(document, options);
    if (!result) return result.problems().front();
    Problem none;
    none.text = none.rule = none.path = "it is read";
    return none;
}

std::string eventsOf(const std::string& document, const ReadOptions& options) {
    StreamReader reader(std::string_view(document), options);
    std::string text;
    for (;;) {
        const StreamReader::Event event = reader.next();
        const std::string name(reader.name());
        const std::string content = "'" + std::string(reader.text()) + "'";
        switch (event) {
        case StreamReader::Event::Start: text += "Start " + name; break;
        case StreamReader::Event::End: text += "End " + name; break;
        case StreamReader::Event::Text: text += "Text " + content; break;
        case StreamReader::Event::CData: text += "CData " + content; break;
        case StreamReader::Event::Comment: text += "Comment " + content; break;
        case StreamReader::Event::Instruction: text += "Instruction " + name + " " + content; break;
        case StreamReader::Event::Doctype: text += "Doctype " + name; break;
        case StreamReader::Event::Finished: return text + "Finished";
        case StreamReader::Event::Failed: return text + "Failed";
        }
        text += ", ";
    }
}

std::string pathInEvents(const std::string& document, const ReadOptions& options) {
    StreamReader reader(std::string_view(document), options);
    StreamReader::Event event = reader.next();
    while (event != StreamReader::Event::Finished && event != StreamReader::Event::Failed) event = reader.next();
    return event == StreamReader::Event::Failed ? reader.problems().front().path : "it is read";
}

std::string verdict(const Verdict& verdict) { return verdict.isAccepted ? "read" : "refused"; }

Question questionOf(const std::string& document) {
    Question question;
    question.document = document;
    return question;
}

// What the dialect makes of it: the tree, or its message without the place.
std::string treeOfDialect(const std::string& document) {
    const Outcome outcome = readDocument(document);
    static const Pattern wrapping("^\\(line = [0-9]+, column = -?[0-9]+\\) (.*) <[^<]*>$");
    if (outcome.ok) return dump(outcome.document.get());
    const Pattern::Groups parts = wrapping.match(outcome.error);
    return "error: " + (parts.empty() ? outcome.error : parts[1]);
}

// What toStream makes of the whole, without the XML declaration and the last line end.
std::string writtenByDialect(const Document& document) {
    const std::string text = textOf(document);
    const std::size_t from = text.find('\n') + 1;
    return text.substr(from, text.size() - 1 - from);
}

std::string written(const std::string& document, const ReadOptions& options) {
    const ReadResult result = readText(document, options);
    return result ? writtenByDialect(*result) : result.message();
}

// What writeText makes of the whole, without the last line end.
std::string lineOf(const ReadResult& read, const WriteOptions& options) {
    if (!read) return read.message();
    const WriteResult result = writeText(*read, options);
    return result ? result.text().substr(0, result.text().find_last_not_of("\r\n") + 1) : result.message();
}

std::string validity(const std::string& document, const ReadOptions& options) {
    ReadResult result = readText(document, options);
    if (!result) return result.message();
    return result->validate() ? "valid" : "not valid";
}

std::string ofRoot(const std::string& document, const std::function<std::string(Element&)>& ask) {
    ReadResult result = readText(document);
    return result ? ask(*result->getRoot()) : result.message();
}

using Ask = std::function<std::string(const std::string& document, const ReadOptions& options)>;

ReadOptions with(Space space) {
    ReadOptions options;
    options.space = space;
    return options;
}

std::map<std::string, Ask> questions() {
    std::map<std::string, Ask> all;
    const auto addTree = [&all](const char* column, const ReadOptions& options) {
        all[column] = [options](const std::string& text, const ReadOptions&) {
            return treeOf(readText(text, options));
        };
    };
    all["tree"] = [](const std::string& text, const ReadOptions& options) { return treeOf(readText(text, options)); };
    addTree("with everything()", everything());
    addTree("Space::All", with(Space::All));
    addTree("Space::Content", with(Space::Content));
    addTree("Space::Dropped", with(Space::Dropped));
    all["problem"] = [](const auto& text, const auto& options) { return problemOf(text, options).toString(); };
    all["rule"] = [](const auto& text, const auto& options) { return problemOf(text, options).rule; };
    all["path"] = [](const auto& text, const auto& options) { return problemOf(text, options).path; };
    all["kind"] = [](const auto& text, const auto& options) {
        return kKinds[static_cast<std::size_t>(problemOf(text, options).kind)];
    };
    all["path of StreamReader"] = pathInEvents;
    all["events"] = eventsOf;
    all["here"] = [](const auto& text, const auto& options) { return readText(text, options) ? "read" : "refused"; };
    all["Expat"] = [](const auto& text, const auto&) { return verdict(askExpat(questionOf(text))); };
    all["libxml2"] = [](const auto& text, const auto&) { return verdict(askLibXml2(questionOf(text))); };
    all["the dialect"] = [](const auto& text, const auto&) { return treeOfDialect(text); };
    all["validate()"] = validity;
    all["toStream writes"] = written;
    all["by the dialect"] = [](const auto& text, const auto&) {
        const Outcome outcome = readDocument(text);
        return outcome.ok ? writtenByDialect(*outcome.document) : treeOfDialect(text);
    };
    all["readText reads of that"] = [](const auto& text, const auto& options) {
        return treeOf(readText(written(text, options)));
    };
    all["the dialect reads of that"] = [](const auto& text, const auto& options) {
        return treeOfDialect(written(text, options));
    };
    all["written by default"] = [](const auto& text, const auto& options) {
        WriteOptions form;
        form.declaration = false;
        return lineOf(readText(text, options), form);
    };
    all["as it was read"] = [](const auto& text, const auto&) {
        const ReadResult result = readText(text, everything());
        return lineOf(result, result ? asRead(*result) : WriteOptions());
    };
    all["its Dtd writes"] = [](const auto& text, const auto&) {
        const ReadResult result = readText(text);
        return result && result->getDtd() != nullptr ? textOf(*result->getDtd()) : "none";
    };
    all["data()"] = [](const auto& text, const auto&) {
        return ofRoot(text, [](Element& root) { return root.getChild(0)->toCharData()->data(); });
    };
    all["getCharData()"] = [](const auto& text, const auto&) {
        return ofRoot(text, [](Element& root) { return root.getCharData(); });
    };
    return all;
}

// Columns that say something about a row.
const std::set<std::string> kProse = {"document", "options", "what", "why"};

// Answers that are words and stand without quotes.
const std::set<std::string> kWords = {"read", "refused", "valid", "not valid"};

// As a cell has it: in the notation of documents, words without quotes.
std::string asCell(const std::string& text) {
    if (kWords.count(text) > 0) return text;
    std::string cell;
    for (const char* at = text.data(); at != text.data() + text.size();) {
        const Utf8::Character c = Utf8::at(at);
        char code[16];
        if (c.value == '\n') {
            cell += "\\n";
        } else if (c.value == '\r') {
            cell += "\\r";
        } else if (c.value == '\t') {
            cell += "\\t";
        } else if (c.value == '\\') {
            cell += "\\\\";
        } else if (c.value >= 0x20 && c.value < 0x7F) {
            cell += static_cast<char>(c.value);
        } else {
            std::snprintf(code, sizeof code, "\\u{%X}", static_cast<unsigned>(c.value));
            cell += code;
        }
        at += c.size;
    }
    return cell.empty() ? "-" : "`" + cell + "`";
}

TEST(StandardPageTest, SaysOfEveryDocumentWhatBecomesOfIt) {
    const std::map<std::string, Ask> all = questions();
    std::set<std::string> asked;
    int cells = 0;
    std::vector<Row> rows = readPage("docs/standard.md").rows;
    const std::vector<Row> ofReadme = readPage("README.md").rows;
    rows.insert(rows.end(), ofReadme.begin(), ofReadme.end());
    for (const Row& row : rows) {
        if (!row.has("document")) continue;
        SCOPED_TRACE("line " + std::to_string(row.line));
        const std::string document = pageDocumentOf(row.cells.at("document")).bytes;
        const ReadOptions options = row.has("options") ? optionsIn(row.cells.at("options")) : ReadOptions();
        for (const auto& [column, cell] : row.cells) {
            if (kProse.count(column) > 0) continue;
            const auto ask = all.find(column);
            ASSERT_TRUE(ask != all.end()) << "no column that the test knows: " << column;
            asked.insert(column);
            ++cells;
            EXPECT_EQ(cell, asCell(ask->second(document, options))) << column;
        }
    }
    EXPECT_EQ(asked.size(), all.size()) << "a question that no table asks";
    EXPECT_GE(cells, 180);
}

// --- Blocks of code ---

Cells trimmedLines(const std::string& text) {
    Cells lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(trimmed(line));
    return lines;
}

// The files of examples/ with that ending, as lines.
std::vector<Cells> examples(const std::string& ending) {
    std::vector<Cells> all;
    for (const auto& entry : std::filesystem::directory_iterator(sourceFolder() + "/examples")) {
        if (entry.path().extension() == ending) all.push_back(trimmedLines(readFile(entry.path().string())));
    }
    return all;
}

// Programs stand on pages as they stand in examples/, and what they print as the tests there expect it.
TEST(StandardPageTest, HasBlocksOfCodeThatRunAsTests) {
    const std::vector<Cells> programs = examples(".cpp");
    const std::vector<Cells> outputs = examples(".out");
    int compared = 0;
    for (const char* file : {"docs/standard.md", "docs/easy.md", "docs/large.md", "README.md"}) {
        for (const Block& block : readPage(file).blocks) {
            if (block.language != "cpp" && !block.language.empty()) continue;
            SCOPED_TRACE(file + (":" + std::to_string(block.line)));
            Cells lines;
            for (const std::string& line : block.lines) lines.push_back(trimmed(line));
            const std::vector<Cells>& where = block.language == "cpp" ? programs : outputs;
            EXPECT_TRUE(std::any_of(where.begin(), where.end(), [&lines](const Cells& whole) {
                return std::search(whole.begin(), whole.end(), lines.begin(), lines.end()) != whole.end();
            })) << "the block stands in no file of examples/";
            ++compared;
        }
    }
    EXPECT_GE(compared, 20);
}

}  // namespace
}  // namespace Xml::test
