#include "standard/ConstraintsPage.h"

#include "support/Places.h"
#include "support/Sources.h"
#include "support/Tables.h"
#include <regex>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Xml::test {

namespace {

using Cells = std::vector<std::string>;

// --- Documents ---

enum class Encoding { Utf8, Utf16LittleEndian, Utf16BigEndian };

void appendUnit(std::string& bytes, std::uint32_t unit, Encoding encoding) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += encoding == Encoding::Utf16BigEndian ? high : low;
    bytes += encoding == Encoding::Utf16BigEndian ? low : high;
}

void appendUtf8(std::string& bytes, std::uint32_t character) {
    const auto continuation = [&](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        bytes += static_cast<char>(character);
        return;
    }
    if (character < 0x800) {
        bytes += static_cast<char>(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            bytes += static_cast<char>(0xE0 | character >> 12);
        } else {
            bytes += static_cast<char>(0xF0 | character >> 18);
            bytes += continuation(12);
        }
        bytes += continuation(6);
    }
    bytes += continuation(0);
}

void append(std::string& bytes, std::uint32_t character, Encoding encoding) {
    if (encoding == Encoding::Utf8) {
        appendUtf8(bytes, character);
    } else if (character < 0x10000) {
        appendUnit(bytes, character, encoding);
    } else {
        appendUnit(bytes, 0xD800 + ((character - 0x10000) >> 10), encoding);
        appendUnit(bytes, 0xDC00 + ((character - 0x10000) & 0x3FF), encoding);
    }
}

// The bytes that the text means. Outside of escapes it is ASCII.
std::string bytesOf(const std::string& text, Encoding encoding) {
    static const std::regex escape(R"(\\(?:([nrt\\])|x([0-9A-F]{2})|u\{([0-9A-F]{1,6})\}))");
    std::string bytes;
    for (auto at = text.cbegin(); at != text.cend();) {
        std::smatch parts;
        if (*at != '\\') {
            if (*at < 0x20 || *at > 0x7E) throw std::runtime_error("a character that wants an escape in: " + text);
            append(bytes, static_cast<unsigned char>(*at++), encoding);
            continue;
        }
        if (!std::regex_search(at, text.cend(), parts, escape, std::regex_constants::match_continuous))
            throw std::runtime_error("an escape of no known kind in: " + text);
        if (parts[1].matched) {
            const char named = *parts[1].first;
            append(bytes, named == 'n' ? '\n' : named == 'r' ? '\r' : named == 't' ? '\t' : '\\', encoding);
        } else if (parts[2].matched) {
            bytes += static_cast<char>(std::stoi(parts[2], nullptr, 16));
        } else {
            append(bytes, static_cast<std::uint32_t>(std::stoul(parts[3], nullptr, 16)), encoding);
        }
        at = parts[0].second;
    }
    return bytes;
}

// A cell `document`, `document` as UTF-16LE, or either with: under `rule`.
struct DocumentCell {
    PageDocument document;
    std::string under;
};

std::optional<DocumentCell> documentIn(const std::string& cell) {
    static const std::regex form("(`([^`]*)`(?: as (UTF-16LE|UTF-16BE))?)(?: under `([^`]+)`)?");
    if (cell == "-") return std::nullopt;
    std::smatch parts;
    if (!std::regex_match(cell, parts, form)) throw std::runtime_error("neither a document nor -: " + cell);
    const Encoding encoding = !parts[3].matched        ? Encoding::Utf8
                              : parts[3] == "UTF-16LE" ? Encoding::Utf16LittleEndian
                                                       : Encoding::Utf16BigEndian;
    return DocumentCell{{parts[1], bytesOf(parts[2], encoding)}, parts[4]};
}

// --- Rows ---

std::string nameIn(const std::string& cell) {
    static const std::regex form("`([^`]+)`");
    std::smatch parts;
    if (!std::regex_match(cell, parts, form)) throw std::runtime_error("not the name of a rule: " + cell);
    return parts[1];
}

const Cells kRefusalHeader = {"refused under", "when"};
const Cells kMarkHeader = {"oracle", "document", "clause"};

Cells rowHeader(Setting setting) {
    const std::string as = setting == Setting::ExternalSubset   ? " as external subset"
                           : setting == Setting::ExternalEntity ? " as external entity"
                                                                : "";
    return {"rule", "where", "accepted" + as, "refused" + as, "note"};
}

std::optional<Setting> settingOf(const Cells& header) {
    for (const Setting setting : {Setting::Whole, Setting::ExternalSubset, Setting::ExternalEntity}) {
        if (header == rowHeader(setting)) return setting;
    }
    return std::nullopt;
}

ConstraintRow rowOf(const Cells& cells, const std::string& heading, Setting setting) {
    ConstraintRow row;
    row.heading = heading;
    row.setting = setting;
    row.rule = nameIn(cells[0]);
    row.where = cells[1];
    row.note = cells[4];
    const auto accepted = documentIn(cells[2]);
    const auto refused = documentIn(cells[3]);
    if (accepted) {
        if (!accepted->under.empty()) throw std::runtime_error("what is accepted falls under no rule");
        row.accepted = accepted->document;
    }
    if (refused) {
        row.refused = refused->document;
        row.fallsUnder = refused->under.empty() ? row.rule : refused->under;
    }
    return row;
}

OracleMark markOf(const Cells& cells) {
    const auto document = documentIn(cells[1]);
    if (!document) throw std::runtime_error("a mark without a document");
    OracleMark mark;
    mark.oracle = cells[0];
    mark.document = document->document;
    mark.clause = cells[2];
    return mark;
}

// Reads the page line by line; a table is known by its header.
class PageReader {
public:
    void take(const std::string& line, std::size_t number) {
        if (line.rfind('|', 0) != 0) {
            header.clear();
            if (line.rfind("## ", 0) == 0) heading = line.substr(3);
            return;
        }
        const Cells cells = cellsOf(line);
        if (header.empty()) {
            header = cells;
        } else if (line.rfind("|---", 0) != 0) {
            if (cells.size() != header.size()) throw std::runtime_error("not the cells of the table");
            takeRow(cells, number);
        }
    }

    ConstraintsPage page;

private:
    void takeRow(const Cells& cells, std::size_t number) {
        if (const auto setting = settingOf(header)) {
            page.rows.push_back(rowOf(cells, heading, *setting));
            page.rows.back().line = number;
        } else if (header == kRefusalHeader) {
            page.refusals.push_back({nameIn(cells[0]), cells[1]});
        } else if (header == kMarkHeader) {
            page.marks.push_back(markOf(cells));
            page.marks.back().line = number;
        }
    }

    std::string heading;
    Cells header;
};

}  // namespace

ConstraintsPage constraintsPageOf(const std::string& text) {
    PageReader reader;
    std::istringstream lines(text);
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        try {
            reader.take(line, number);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
        }
    }
    return std::move(reader.page);
}

const ConstraintsPage& constraintsPage() {
    static const ConstraintsPage page = constraintsPageOf(readFile(sourceFolder() + "/docs/standard-constraints.md"));
    return page;
}

}  // namespace Xml::test
