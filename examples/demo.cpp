// Reads a document, checks it against its document type, shows what it holds, asks it by paths, changes it and writes
// it to another file; and saves a copy in which nothing but one value is another.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>
#include <xml/easy.h>
#include <xml/standard.h>
#include <xml/xml.h>

namespace fs = std::filesystem;

namespace {

const char kHelp[] = R"(Usage: demo [--data FOLDER] [FILE [PATH ...]]

Without a PATH: reads FILE, any document of XML 1.0, checks it, shows what it holds, asks it a few paths, changes it
and writes the changed document to NAME-changed.ENDING in the working directory. Then it changes one value of FILE,
saves all as it was to NAME-saved.ENDING, and shows the lines that differ. FILE itself is left as it is. Without a FILE
it takes vk.xml in the folder of the examples' data.

With a PATH: prints what it finds in FILE, one result a line, or the text of its error. A PATH that does not begin with
/ goes out from the document, or from what the PATH before it has found.

A document is checked against the declarations in its DOCTYPE; one without any against NAME.dtd, if there is such a file
beside it. What is wrong is shown with the line in question, in colour on a terminal unless NO_COLOR is set.

Exit status: 0, or 1 if FILE could not be read, is not well-formed or not valid, or could not be written, or if a PATH
found nothing.
)";

class Stopwatch {
public:
    std::string elapsed() const {
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        return Xml::toString(time.count()) + " ms";
    }

private:
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

// 2125952 -> "2,125,952".
std::string grouped(std::uintmax_t number) {
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3; i -= 3) text.insert(i - 3, 1, ',');
    return text;
}

// Whether a character of UTF-8 goes on at that byte.
bool isInside(const std::string& text, std::size_t at) { return at < text.size() && (text[at] & 0xC0) == 0x80; }

// The beginning of a text, on one line.
std::string brief(std::string text, std::size_t length = 84) {
    std::replace_if(text.begin(), text.end(), Xml::isWhite, ' ');
    if (text.size() <= length) return text;
    std::size_t end = length - 3;
    while (end > 0 && isInside(text, end)) --end;
    return text.substr(0, end) + "...";
}

// --- Reading ---

constexpr const char* kBold = "1";
constexpr const char* kRed = "1;31";
constexpr const char* kGreen = "1;32";

// The text in colour where what it is written to is a terminal, unless NO_COLOR is set.
std::string coloured(const char* code, const std::string& text, int file = STDERR_FILENO) {
    const char* const no = std::getenv("NO_COLOR");
    const bool isColoured = ::isatty(file) == 1 && (no == nullptr || *no == '\0');
    return isColoured ? std::string("\x1B[") + code + "m" + text + "\x1B[0m" : text;
}

// app.xml:3:13: error: ..., the line in question, and a caret below it.
void tell(const Xml::Problem& problem) {
    const std::string error = "error:";
    const std::string line = problem.toString();
    const std::size_t at = line.size() - problem.text.size() - error.size() - 1;
    std::cerr << coloured(kBold, line.substr(0, at)) << coloured(kRed, error) << ' ' << problem.text << '\n';
    const std::size_t caret = problem.excerpt.find('\n');
    if (caret == std::string::npos) return;
    std::cerr << problem.excerpt.substr(0, caret + 1) << coloured(kGreen, problem.excerpt.substr(caret + 1)) << '\n';
}

// Says where in the file reading stopped, by lines as editors count them.
void tellPlace(const fs::path& path, int position) {
    std::ifstream file(path, std::ios::binary);
    std::string before{std::istreambuf_iterator<char>(file), {}};
    if (position >= 0) before.resize(std::min(before.size(), static_cast<std::size_t>(position)));
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    before.erase(0, before.rfind('\n') + 1);
    std::cerr << "  Reading stopped in line " << line << " of the file, behind byte " << before.size() << " of it";
    if (before.size() > 60) before.erase(0, before.size() - 60);
    std::cerr << (before.empty() ? "" : ":\n  " + brief(before)) << '\n';
}

// Says which element makes a tree invalid: the first from the top whose children are all valid in themselves.
void tellMisfit(const fs::path& path, const Xml::Dtd& dtd, Xml::Element* element) {
    Xml::Problem problem;
    problem.kind = Xml::Problem::Kind::Invalid;
    problem.source = path.string();
    for (Xml::Element* next = element; next != nullptr;) {
        element = next;
        next = nullptr;
        problem.path += "/" + element->getName();
        for (int i = 0; i < element->getChildCount() && next == nullptr; ++i) {
            Xml::Object* child = element->getChild(i);
            if (child->isElement() && !dtd.validate(child->toElement())) next = child->toElement();
        }
    }
    problem.place = Xml::placeOf(*element);
    problem.text = "not valid: the document type does not allow " + problem.path + ", or not what is in it";
    problem.excerpt = "  <" + brief(element->toString()) + ">\n  ^";
    tell(problem);
}

// Whether the document says itself what its elements may contain. Many have a document type without that.
bool hasDeclarations(const Xml::Document& document) {
    return Xml::prologOf(document).internalSubset.find("<!ELEMENT") != std::string::npos;
}

// The document with another document type.
std::unique_ptr<Xml::Document> withDtd(Xml::Document& document, Xml::Dtd* dtd) {
    auto result = std::make_unique<Xml::Document>(document.extractRoot(), dtd);
    Xml::prologOf(*result) = std::move(Xml::prologOf(document));
    return result;
}

// The document in a file, with the document type that belongs to it, and a line about it to `out`; null, and why on
// standard error.
std::unique_ptr<Xml::Document> read(const fs::path& path, std::ostream& out) {
    const Stopwatch watch;
    Xml::ReadOptions options;
    options.keepPlaces = true;
    options.space = Xml::Space::Dropped;  // for validation white space is text
    Xml::ReadResult result = Xml::readFile(path, options);
    for (const Xml::Problem& problem : result.problems()) tell(problem);
    if (!result) return nullptr;
    const std::string time = watch.elapsed();
    std::unique_ptr<Xml::Document> document = result.take();

    std::string type = "the document type in it";
    const fs::path dtdPath = fs::path(path).replace_extension(".dtd");
    if (!hasDeclarations(*document)) {
        type = dtdPath.filename().string();
        if (fs::is_regular_file(dtdPath)) {
            std::ifstream dtdFile;
            Xml::FileInStream dtdIn(dtdPath.string(), &dtdFile);
            Xml::DTDReader dtdReader(document->getRoot()->getName());
            if (!dtdReader.parse(dtdIn)) {
                std::cerr << dtdPath.string() << ": not well-formed\n  " << dtdReader.getErrorMessage() << '\n';
                tellPlace(dtdPath, dtdIn.getPosition());
                return nullptr;
            }
            document = withDtd(*document, dtdReader.extractDtd());
        } else if (document->getDtd() != nullptr) {
            document = withDtd(*document, nullptr);
        }
    }
    const Stopwatch validation;
    if (!document->validate()) {
        tellMisfit(path, *document->getDtd(), document->getRoot());
        return nullptr;
    }
    out << path.filename().string() << ": ";
    if (fs::is_regular_file(path)) out << grouped(fs::file_size(path)) << " bytes, ";
    out << "read in " << time
        << (document->getDtd() == nullptr ? ", well-formed; no document type\n"
                                          : ", valid by " + type + " in " + validation.elapsed() + "\n");
    return document;
}

// --- What it holds ---

// All elements of one name.
struct Kind {
    std::size_t count = 0;
    Xml::Element* last = nullptr;
};

// Elements by name, the most frequent first.
using Kinds = std::vector<std::pair<std::string, Kind>>;

Kinds show(Xml::Document& document) {
    std::map<std::string, Kind> byName;
    std::size_t elements = 0, attributes = 0, texts = 0, textBytes = 0, others = 0, deepest = 0;

    // A stack of our own: a document may be nested deeper than a recursion could go.
    std::vector<std::pair<Xml::Element*, std::size_t>> waiting = {{document.getRoot(), 1}};
    while (!waiting.empty()) {
        const auto [element, depth] = waiting.back();
        waiting.pop_back();
        ++elements;
        attributes += static_cast<std::size_t>(element->getAttributeCount());
        deepest = std::max(deepest, depth);
        Kind& kind = byName[element->getName()];
        ++kind.count;
        kind.last = element;
        for (int i = element->getChildCount(); i-- > 0;) {
            Xml::Object* child = element->getChild(i);
            if (child->isElement()) {
                waiting.emplace_back(child->toElement(), depth + 1);
            } else if (child->isCharData()) {
                ++texts;
                textBytes += child->toString().size();
            } else {
                ++others;
            }
        }
    }
    std::cout << "\nIt holds\n"
              << "  root        <" << document.getRoot()->getName() << ">\n"
              << "  elements    " << grouped(elements) << " of " << byName.size() << " names, nested " << deepest
              << (deepest == 1 ? " level deep\n" : " levels deep\n")  //
              << "  attributes  " << grouped(attributes) << '\n'
              << "  text        " << grouped(textBytes) << " bytes in " << grouped(texts) << " runs\n"
              << "  and         " << grouped(others) << " comments and instructions\n"
              << "\nMost often, with the last of each\n";

    Kinds kinds(byName.begin(), byName.end());
    std::stable_sort(kinds.begin(), kinds.end(),
                     [](const auto& a, const auto& b) { return a.second.count > b.second.count; });
    for (std::size_t i = 0; i < std::min<std::size_t>(kinds.size(), 5); ++i) {
        const Kind& kind = kinds[i].second;
        const std::string& text = kind.last->getCharData();
        std::cout << std::setw(9) << grouped(kind.count) << "  <" << brief(kind.last->toString()) << '>'
                  << (text.empty() ? "" : " " + brief(text, 40)) << '\n';
    }
    return kinds;
}

// --- Asking it ---

// A result on one line: <name attributes> text, name="value", text, number.
std::string resultText(Xml::XPath& query, unsigned index) {
    const Xml::Object* const node = query.GetResult(index).node;
    const std::string text = brief(OrvSys::Uni16CharToPlatformCString(query.GetValue(index, -1)));
    if (node == nullptr) return text;
    if (node->isElement()) return "<" + brief(node->toString()) + ">" + (text.empty() ? "" : " " + text);
    return node->isAttribute() || node->isDocument() ? brief(node->toString()) : text;
}

// Why a path found nothing. A few paths fail without saying why.
std::string reasonText(Xml::XPath& query, bool ok) {
    if (query.GetErrorCode() != Xml::XPath::NONE) return OrvSys::Uni16CharToPlatformCString(query.GetErrorString());
    return ok ? "The expression has no value" : "This is not a path";
}

// Prints what the paths find; each goes on from what the one before it has found.
bool ask(Xml::Document& document, const std::vector<std::string>& paths) {
    Xml::XPath query(&document);
    bool found = true;
    for (const std::string& path : paths) {
        const bool ok = query.FindNodes(OrvSys::UTF8ToUni16Char(path));
        const unsigned count = query.GetNrOfResults();
        for (unsigned i = 0; i < count; ++i) std::cout << resultText(query, i) << '\n';
        if (count == 0) std::cerr << path << ": " << reasonText(query, ok) << '\n';
        found = found && count > 0;
    }
    return found;
}

// Asks a few paths and shows the first result of each.
void askSome(Xml::Document& document, const Kinds& kinds) {
    const std::string& often = kinds.front().first;
    std::vector<std::string> paths = {"//" + often, "//" + often + "[last()]/ancestor::*", "//@*",
                                      "//" + often + "[nothing]"};
    if (document.getRoot()->getName() == "registry") {
        paths = {"//type[@category = 'bitmask']",
                 "//command[proto/name = 'vkCreateInstance']/param/name",
                 "//enum[@bitpos > 40]/@name",
                 "//extension[position() = 3]/following-sibling::extension",
                 "//param[type = 'VkInstance']/../proto/name",
                 "/registry/extensions/extension[last()]/@name",
                 "//command[@successcodes]/nothing",
                 "//type[@category = 'bitmask'"};
    }
    std::cout << "\nAsked by path\n";
    for (const std::string& path : paths) {
        const Stopwatch watch;
        Xml::XPath query(&document);
        const unsigned count = query.GetValues(OrvSys::UTF8ToUni16Char(path));
        const std::string time = watch.elapsed();
        std::cout << std::setw(9) << grouped(count) << "  " << path << "  (" << time << ")\n           "
                  << (count > 0 ? resultText(query, 0) : reasonText(query, true)) << '\n';
    }
}

// --- Changing it ---

// Tries a change and takes it back when the document type does not allow it.
void tryChange(Xml::Document& document, const std::string& what, const std::function<void()>& change,
               const std::function<void()>& takeBack) {
    change();
    const bool valid = document.validate();
    if (!valid) {
        takeBack();
        document.validate();
    }
    std::cout << (valid ? "  done     " : "  refused  ") << what << '\n';
}

void change(Xml::Document& document, const Kinds& kinds) {
    std::cout << "\nChanges, kept where the document stays valid\n";
    Xml::Element* root = document.getRoot();
    if (root->getAttribute("edited") == nullptr) {
        tryChange(
            document, "an attribute: edited=\"by demo\" in <" + root->getName() + ">",
            [root] { root->setAttribute("edited", "by demo"); }, [root] { root->removeAttribute("edited"); });
    }
    for (const auto& [name, kind] : kinds) {
        Xml::Element* element = kind.last;
        if (element->getChildCount() != 1 || !element->getChild(0)->isCharData()) continue;
        const Xml::DataHolder before = element->getCharData();
        tryChange(
            document, "a text: " + brief(before, 40) + " & Co. in the last <" + name + ">",
            [&] { element->setCharData(before + " & Co."); }, [&] { element->setCharData(before); });
        break;
    }
    for (const auto& [name, kind] : kinds) {
        if (kind.last == root) continue;
        Xml::Element* parent = kind.last->getParent()->toElement();
        Xml::Object* copy = kind.last->clone();
        tryChange(
            document, "an element: a copy of the last <" + name + "> beside it",
            [&, last = kind.last] { parent->insertChild(last, copy); }, [&] { delete parent->extractChild(copy); });
        break;
    }
}

// --- Writing it ---

// Whether the file is read again, and valid where it has a document type. Declarations are written as the dialect has
// them, which XML 1.0 does not read all: #FIXED"1.0".
bool readsBack(const fs::path& path) {
    Xml::ReadOptions options;
    options.space = Xml::Space::Dropped;
    Xml::ReadResult result = Xml::readFile(path, options);
    if (result) return result->validate();
    std::ifstream file;
    Xml::FileInStream in(path.string(), &file);
    Xml::DocumentReader reader;
    return reader.parse(in);
}

bool write(const Xml::Document& document, const fs::path& path) {
    const Stopwatch watch;
    std::ofstream file;
    {
        Xml::FileOutStream out(path.string(), &file);
        document.toStream(out);
    }
    if (!file) {
        std::cerr << path.string() << ": could not be written\n";
        return false;
    }
    std::cout << "\nWrote " << path.string() << ": " << grouped(fs::file_size(path)) << " bytes in " << watch.elapsed()
              << (document.getDtd() != nullptr ? ", its document type included\n" : "\n");

    if (!readsBack(path)) {
        std::cerr << path.string() << ": does not read back\n";
        return false;
    }
    std::cout << "Read it again: " << (document.getDtd() != nullptr ? "valid\n" : "well-formed\n");
    return true;
}

// --- Saving it ---

using Lines = std::vector<std::string>;

Lines linesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    Lines lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

// Where two files differ: that many lines from there on have become so many others.
struct Difference {
    std::size_t before, after;  // counted from 0
    std::size_t removed, added;
};

// Up to the next line that both have. Where that is far away all the rest differs.
Difference differenceAt(const Lines& before, const Lines& after, std::size_t i, std::size_t j) {
    constexpr std::size_t kFar = 200;
    for (std::size_t passed = 1; passed <= kFar; ++passed) {
        for (std::size_t removed = 0; removed <= passed; ++removed) {
            const std::size_t added = passed - removed;
            if (i + removed > before.size() || j + added > after.size()) continue;
            const bool areAtEnd = i + removed == before.size() && j + added == after.size();
            const bool areInside = i + removed < before.size() && j + added < after.size();
            if (areAtEnd || (areInside && before[i + removed] == after[j + added])) return {i, j, removed, added};
        }
    }
    return {i, j, before.size() - i, after.size() - j};
}

std::vector<Difference> differences(const Lines& before, const Lines& after) {
    std::vector<Difference> all;
    std::size_t i = 0, j = 0;
    while (i < before.size() || j < after.size()) {
        if (i < before.size() && j < after.size() && before[i] == after[j]) {
            ++i, ++j;
            continue;
        }
        all.push_back(differenceAt(before, after, i, j));
        i += all.back().removed;
        j += all.back().added;
    }
    return all;
}

// A line from shortly before that byte on.
std::string from(const std::string& line, std::size_t byte) {
    constexpr std::size_t kBefore = 30;
    if (byte <= 2 * kBefore) return brief(line);
    std::size_t begin = byte - kBefore;
    while (isInside(line, begin)) --begin;
    return brief("..." + line.substr(begin));
}

// What both lines begin with, in bytes.
std::size_t sameIn(const std::string& one, const std::string& other) {
    const auto end = one.begin() + static_cast<std::ptrdiff_t>(std::min(one.size(), other.size()));
    return static_cast<std::size_t>(std::mismatch(one.begin(), end, other.begin()).first - one.begin());
}

// Those lines, beside those that they were, or became.
void showLines(const Lines& lines, std::size_t first, std::size_t count, const Lines& others, std::size_t other,
               const char* sign, const char* colour) {
    constexpr std::size_t kMost = 3;
    for (std::size_t i = 0; i < std::min(count, kMost); ++i) {
        const std::size_t same = other + i < others.size() ? sameIn(lines[first + i], others[other + i]) : 0;
        std::cout << coloured(colour, sign + from(lines[first + i], same), STDOUT_FILENO) << '\n';
    }
    if (count > kMost) std::cout << sign << "and " << grouped(count - kMost) << " more\n";
}

// In the form of diff, the first few.
void showDifferences(const Lines& before, const Lines& after) {
    constexpr std::size_t kMost = 3;
    const std::vector<Difference> all = differences(before, after);
    for (std::size_t i = 0; i < std::min(all.size(), kMost); ++i) {
        const Difference& d = all[i];
        std::cout << "  line " << d.before + 1 << '\n';
        showLines(before, d.before, d.removed, after, d.after, "  - ", kRed);
        showLines(after, d.after, d.added, before, d.before, "  + ", kGreen);
    }
    if (all.size() > kMost) std::cout << "  and in " << grouped(all.size() - kMost) << " more places\n";
    if (all.size() > 1) {
        std::cout << "  But for the value these are other ways to write the same: quotes and white space in tags,\n"
                     "  references that are resolved. docs/standard.md names them all.\n";
    }
}

// Changes one value: the first text of one line that is alone in its element, or else an attribute of the root.
void changeOne(Xml::Document& document) {
    Xml::Element& root = *document.getRoot();
    for (Xml::Element& element : Xml::descendants(root)) {
        const auto all = Xml::children(element);
        if (all.size() != 1 || Xml::kindOf(all[0]) != Xml::NodeKind::Text) continue;
        const std::string text = Xml::textOf(element);
        if (text.find('\n') != std::string::npos || std::all_of(text.begin(), text.end(), Xml::isWhite)) continue;
        Xml::setText(element, text + " & Co.");
        return;
    }
    Xml::setValue(root, "edited", "by demo");
}

// Whether a copy of the file could be saved. Nothing in it is lost: comments, sections, white space, order, the
// document type and the encoding are as they were.
bool saveCopy(const fs::path& path) {
    if (!fs::is_regular_file(path)) return true;  // what came through a pipe is gone
    Xml::ReadResult document = Xml::readFile(path, Xml::everything());
    if (!document) return false;
    const std::unique_ptr<Xml::Document> before = Xml::copyOf(*document);
    changeOne(*document);
    const fs::path copy = path.stem().string() + "-saved" + path.extension().string();
    const Stopwatch watch;
    const Xml::WriteResult saved = Xml::saveFile(*document, copy, Xml::asRead(*document));
    for (const Xml::Problem& problem : saved.problems()) tell(problem);
    if (!saved) return false;
    std::cout << "\nChanged one value, and saved all as it was to " << copy.string() << " in " << watch.elapsed()
              << "\n  " << brief(Xml::firstDifference(*before, *document)) << '\n';
    const std::string& encoding = Xml::prologOf(std::as_const(*document)).readAs;
    if (encoding == "UTF-8" || encoding == "US-ASCII") showDifferences(linesOf(path), linesOf(copy));
    return true;
}

bool demonstrate(const fs::path& path) {
    const std::unique_ptr<Xml::Document> document = read(path, std::cout);
    if (!document) return false;
    const Kinds kinds = show(*document);
    askSome(*document, kinds);
    change(*document, kinds);
    return write(*document, path.stem().string() + "-changed" + path.extension().string()) && saveCopy(path);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments;
    fs::path data = "examples/data";
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            std::cout << kHelp;
            return 0;
        }
        if (argument == "--data" && i + 1 < argc) {
            data = argv[++i];
        } else {
            arguments.push_back(argument);
        }
    }
    const fs::path file = arguments.empty() ? data / "vk.xml" : fs::path(arguments.front());
    if (arguments.size() < 2) return demonstrate(file) ? 0 : 1;

    std::ostream silent(nullptr);
    const std::unique_ptr<Xml::Document> document = read(file, silent);
    return document && ask(*document, {arguments.begin() + 1, arguments.end()}) ? 0 : 1;
}
