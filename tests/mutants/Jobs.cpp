// Ordinary jobs, each done once to warm up and then once to be counted. Ordinary content has ways of its own through
// the library, which come to the same as the general ones: that one is not taken any more shows in the instructions
// alone.
//
// `tests/mutants/run` counts those of each call of `countedJob`, and has the names of the jobs from the output.
#include "support/Sources.h"
#include "support/Texts.h"
#include "xml/easy/Ask.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/Write.h"
#include "xml/xml.h"
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

extern "C" [[gnu::noinline]] void countedJob(const std::function<void()>& job);
void countedJob(const std::function<void()>& job) { job(); }

namespace Xml::test {
namespace {

template <class Done>
void must(const Done& isDone) {
    if (!isDone) std::exit(1);
}

const std::string kLine =
    "<item number=\"%\" third=\"plain words\" fourth=\"more of them\" long-name-of-it='some value'><name>A "
    "name&amp;&#228; of it</name>\n"
    "    <text>Some words, and what is longer than that, by far: a sentence or two.</text>\n"
    "    <empty/><code lang=\"x&lt;y\"/><a_name_longer_than_others>1</a_name_longer_than_others>\n"
    "  </item>\n  ";

// With line ends as they are given, in each of which something is another number.
std::string records(int count, const std::string& lineEnd = "\n") {
    std::string text;
    for (int i = 0; i < count; ++i) {
        for (const char c : kLine) {
            if (c == '%') {
                text += std::to_string(i);
            } else if (c == '\n') {
                text += lineEnd;
            } else {
                text += c;
            }
        }
    }
    return text;
}

std::string documentOf(const std::string& content) { return "<?xml version='1.0'?>\n<r>\n  " + content + "</r>\n"; }

const std::string kDocument = documentOf(records(16));
const std::string kCrLf = documentOf(records(16, "\r\n"));
const std::string kLetters = documentOf(
    "<a b='gr\xC3\xB6\xC3\x9F"
    "er'>\xC3\x84ndern, \xE2\x82\xAC 5, \xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82, \xF0\x9F\x98\x80 und so "
    "weiter; "
    "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE6\x96\x87\xE7\xAB\xA0\xE3\x81\xA7\xE3\x81\x99</a>\n"
    "<gr\xC3\xB6\xC3\x9F"
    "e/>");
const std::string kMarkup =
    documentOf("<!-- a comment --><a><![CDATA[a section]]></a>\n<?target content?>\n" + records(8));
const std::string kElements = documentOf(repeated("<a><b><c/><d></d></b><e><f/></e></a>", 40));
const std::string kLongTexts = documentOf(
    repeated("<p>" + repeated("A sentence with some words, and one that is &quot;quoted&quot;.\n", 10) + "</p>\n", 6));
const std::string kManyAttributes = documentOf(repeated(
    "<a" + pieces(40, [](int i) { return " name" + std::to_string(i) + "=\"value " + std::to_string(i) + "\""; }) +
        "/>\n",
    6));
const std::string kTyped =
    "<!DOCTYPE r [<!ELEMENT r (item)*><!ELEMENT item (name, text, empty, code, a_name_longer_than_others)>"
    "<!ELEMENT name (#PCDATA)><!ELEMENT text (#PCDATA)><!ELEMENT empty EMPTY><!ELEMENT code EMPTY>"
    "<!ELEMENT a_name_longer_than_others (#PCDATA)><!ATTLIST item number CDATA #REQUIRED long-name-of-it CDATA "
    "#IMPLIED third CDATA #IMPLIED fourth CDATA #IMPLIED>"
    "<!ATTLIST code lang CDATA 'c'>]>\n<r>\n  " +
    records(8) + "</r>";

void readDialect(InStream& in) {
    DocumentReader reader;
    must(reader.parse(in));
    const std::unique_ptr<Document> document(reader.extractDocument());
}

void readDialect(const std::string& text) {
    StringInStream in(text);
    readDialect(in);
}

void readAll(StreamReader& reader) {
    std::size_t size = 0;
    for (auto event = reader.next(); event != StreamReader::Event::Finished; event = reader.next()) {
        must(event != StreamReader::Event::Failed);
        size += reader.name().size() + reader.text().size();
        for (int i = 0; i < reader.attributeCount(); ++i) size += reader.attributeValue(i).size();
    }
    must(size > 0U);
}

void readEvents(const std::string& text, const ReadOptions& options = {}) {
    StreamReader reader(text, options);
    readAll(reader);
}

std::unique_ptr<Document> made(const std::string& text, const ReadOptions& options = {}) {
    ReadResult result = readText(text, options);
    return result ? result.take() : nullptr;
}

struct Job {
    const char* name;
    std::function<void()> job;
};

// So that what a job needs is made before it is counted.
template <class Use>
std::function<void()> onTree(const std::string& text, Use use, const ReadOptions& options = {}) {
    return [document = std::shared_ptr<Document>(made(text, options)), use] { use(*document); };
}

ReadOptions withPlaces() {
    ReadOptions options = everything();
    options.keepPlaces = true;
    return options;
}

WriteResult writeLatin1(const Document& document) {
    WriteOptions options;
    options.encoding = "ISO-8859-1";
    return writeText(document, options);
}

std::vector<Job> jobs() {
    const auto toStream = [](Document& document) {
        std::ostringstream text;
        FileOutStream out(&text);
        document.getRoot()->toStream(out);
        must(text.tellp() > 1000);
    };
    const auto write = [](Document& document) { must(writeText(document)); };
    const auto writeAsRead = [](Document& document) { must(writeText(document, asRead(document))); };
    const auto copy = [](Document& document) { std::unique_ptr<Object>(document.clone()); };
    const auto validate = [](Document& document) { must(document.getDtd()->validate(document.getRoot())); };
    const auto query = [](Document& document) {
        XPath paths(&document);
        for (const char* const path :
             {"//item[@number = '3']/empty", "//empty", "//code/@lang", "//item/following-sibling::item"})
            must(paths.GetValues(wide(path)) > 0U);
    };
    const auto askFor = [](Document& document) {
        for (const char* const path : {"//item[@number = 2]/empty", "//empty", "//code/@lang"})
            must(!ask(document, path).empty());
    };
    const auto stream = [](Document& document) {
        std::ostringstream out;
        must(writeStream(document, out));
    };
    const auto read = [](const std::string& text, const ReadOptions& options = {}) {
        return [text, options] { must(readText(text, options)); };
    };
    const auto events = [](const std::string& text, const ReadOptions& options = {}) {
        return [text, options] { readEvents(text, options); };
    };
    const std::string wrong =
        documentOf(records(16) + records(4, " ") + kLetters.substr(kLetters.find("<a")) + "<b></c>");
    return {
        {"readDialect", [] { readDialect(kDocument); }},
        {"readDialectCrLf", [] { readDialect(kCrLf); }},
        {"readDialectTyped", [] { readDialect("<?xml version='1.0'?>" + kTyped); }},
        {"readDialectFromAStream",
         [] {
             std::istringstream source(kDocument);
             FileInStream in(&source);
             readDialect(in);
         }},
        {"readDialectFromAFile",
         [file = std::make_shared<ScratchFile>("jobs", documentOf(records(160)))] {
             std::ifstream source;
             FileInStream in(file->path, &source);
             readDialect(in);
         }},
        {"writeDialect", onTree(kDocument, toStream)},
        {"copy", onTree(kDocument, copy)},
        {"validate", onTree(kTyped, validate)},
        {"query", onTree(kDocument, query)},
        {"ask", onTree(kDocument, askFor)},
        {"read", read(kDocument)},
        {"readCrLf", read(kCrLf)},
        {"readLetters", read(kLetters)},
        {"readMarkup", read(kMarkup, everything())},
        {"readTyped", read(kTyped)},
        {"readElements", read(kElements)},
        {"readDialectElements", [] { readDialect(kElements); }},
        {"readLongTexts", read(kLongTexts)},
        {"readManyAttributes", read(kManyAttributes)},
        {"readDialectLongTexts", [] { readDialect(kLongTexts); }},
        {"readDialectManyAttributes", [] { readDialect(kManyAttributes); }},
        {"writeLongTexts", onTree(kLongTexts, write)},
        {"readAll", read(kDocument, everything())},
        {"readWithPlaces", read(kDocument, withPlaces())},
        {"readCrLfWithPlaces", read(kCrLf, withPlaces())},
        {"readLatin1", read(writeLatin1(*made(documentOf(records(8)))).text())},
        {"readWrong", [wrong] { must(!readText(wrong)); }},
        {"events", events(kDocument)},
        {"eventsWithAll", events(kMarkup, everything())},
        {"eventsFromAStream",
         [] {
             std::istringstream in(kDocument);
             StreamReader reader(in);
             readAll(reader);
         }},
        {"write", onTree(kDocument, write)},
        {"writeLetters", onTree(kLetters, write)},
        {"writeLatin1", onTree(kDocument, [](const Document& document) { must(writeLatin1(document)); })},
        {"writeAsRead", onTree(kMarkup, writeAsRead, everything())},
        {"writeStream", onTree(kDocument, stream)},
    };
}

}  // namespace

int doJobs() {
    for (const Job& job : jobs()) {
        job.job();
        countedJob(job.job);
        std::cout << job.name << '\n';
    }
    return 0;
}

}  // namespace Xml::test

int main() { return Xml::test::doJobs(); }
