// Measures this library beside its peers on the documents of the examples, all in one run. A benchmark is named
// operation/document/library; README.md tells what each library is asked to do, summarise.py makes ratios of a run.
#include "xml/xml.h"
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/valid.h>
#include <libxml/xpath.h>
#include <memory>
#include <pugixml.hpp>
#include <sstream>
#include <string>
#include <tinyxml2.h>

namespace {

const char* const kDocuments[] = {"mame-nes.xml",       "vk.xml",      "jacob-leisler.svg.xml",
                                  "strawberry.svg.xml", "cldr-cs.xml", "cldr-annot-ka.xml",
                                  "fugue1.mscx.xml"};

// Those with a document type that is measured too.
const char* const kValidated[] = {"vk", "cldr-cs"};

std::string pathOf(const std::string& name) { return std::string(ORVXML_BENCH_DATA) + "/" + name; }

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text.empty()) {
        std::cerr << "bench: cannot read " << path << '\n';
        std::exit(1);
    }
    return text;
}

// --- The libraries: one type each, with a tree and the same operations on it. A tree that is false was not read. ---

struct OrvXml {
    static constexpr char kName[] = "orvxml";
    using Tree = std::unique_ptr<Xml::Document>;

    static Tree parseFrom(Xml::InStream& in) {
        Xml::DocumentReader reader;
        return reader.parse(in) ? Tree(reader.extractDocument()) : nullptr;
    }
    static Tree parse(const std::string& text) {
        Xml::StringInStream in(text);
        return parseFrom(in);
    }
    // A standard file stream.
    static Tree parseFile(const std::string& path) {
        std::ifstream file;
        Xml::FileInStream in(path, &file);
        return parseFrom(in);
    }
    static std::size_t write(const Tree& tree) {
        std::ostringstream text;
        Xml::FileOutStream out(&text);
        tree->toStream(out);
        return static_cast<std::size_t>(text.tellp());
    }
    static Tree copy(const Tree& tree) { return std::make_unique<Xml::Document>(*tree); }
    // How many nodes a path finds; taking the path apart is part of it, here and below.
    static std::size_t find(const Tree& tree, const std::string& path) {
        return Xml::XPath(tree.get()).GetValues(OrvSys::UTF8ToUni16Char(path));
    }
};

// The same from a file of the platform layer.
struct OrvXmlPlatformFile : OrvXml {
    static constexpr char kName[] = "orvxml-platform";

    static Tree parseFile(const std::string& path) {
        Xml::FileSpecInStream in{OrvSys::FileSpec(path)};
        return parseFrom(in);
    }
};

struct PugiXml {
    static constexpr char kName[] = "pugixml";
    using Tree = std::unique_ptr<pugi::xml_document>;

    // Neither line ends nor white space in attributes are normalised here; comments and instructions are dropped.
    static constexpr unsigned kOptions = pugi::parse_cdata | pugi::parse_escapes;

    struct Text : pugi::xml_writer {
        void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
        std::string text;
    };

    static Tree parse(const std::string& text) {
        auto tree = std::make_unique<pugi::xml_document>();
        return tree->load_buffer(text.data(), text.size(), kOptions, pugi::encoding_utf8) ? std::move(tree) : nullptr;
    }
    static Tree parseFile(const std::string& path) {
        auto tree = std::make_unique<pugi::xml_document>();
        return tree->load_file(path.c_str(), kOptions, pugi::encoding_utf8) ? std::move(tree) : nullptr;
    }
    static std::size_t write(const Tree& tree) {
        Text out;
        tree->save(out, "\t", pugi::format_default, pugi::encoding_utf8);
        return out.text.size();
    }
    static Tree copy(const Tree& tree) {
        auto copy = std::make_unique<pugi::xml_document>();
        copy->reset(*tree);
        return copy;
    }
    static std::size_t find(const Tree& tree, const std::string& path) {
        return tree->select_nodes(path.c_str()).size();
    }
};

struct TinyXml2 {
    static constexpr char kName[] = "tinyxml2";
    using Tree = std::unique_ptr<tinyxml2::XMLDocument>;

    static Tree parse(const std::string& text) {
        auto tree = std::make_unique<tinyxml2::XMLDocument>();
        return tree->Parse(text.data(), text.size()) == tinyxml2::XML_SUCCESS ? std::move(tree) : nullptr;
    }
    static Tree parseFile(const std::string& path) {
        auto tree = std::make_unique<tinyxml2::XMLDocument>();
        return tree->LoadFile(path.c_str()) == tinyxml2::XML_SUCCESS ? std::move(tree) : nullptr;
    }
    static std::size_t write(const Tree& tree) {
        tinyxml2::XMLPrinter out;
        tree->Print(&out);
        return static_cast<std::size_t>(out.CStrSize());
    }
    static Tree copy(const Tree& tree) {
        auto copy = std::make_unique<tinyxml2::XMLDocument>();
        tree->DeepCopy(copy.get());
        return copy;
    }
};

struct LibXml2 {
    static constexpr char kName[] = "libxml2";
    struct Free {
        void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
        void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
        void operator()(xmlDtd* dtd) const { xmlFreeDtd(dtd); }
        void operator()(xmlValidCtxt* context) const { xmlFreeValidCtxt(context); }
        void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
        void operator()(xmlXPathObject* object) const { xmlXPathFreeObject(object); }
    };
    using Tree = std::unique_ptr<xmlDoc, Free>;
    using Context = std::unique_ptr<xmlParserCtxt, Free>;

    // Blanks between elements are dropped, nothing is limited or fetched.
    static constexpr int kOptions = XML_PARSE_NOBLANKS | XML_PARSE_HUGE | XML_PARSE_COMPACT | XML_PARSE_NONET;

    // Comments and instructions are dropped.
    static Context context() {
        Context context(xmlNewParserCtxt());
        context->sax->comment = nullptr;
        context->sax->processingInstruction = nullptr;
        return context;
    }
    static Tree parse(const std::string& text) {
        return Tree(
            xmlCtxtReadMemory(context().get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr, kOptions));
    }
    static Tree parseFile(const std::string& path) {
        return Tree(xmlCtxtReadFile(context().get(), path.c_str(), nullptr, kOptions));
    }
    static std::size_t write(const Tree& tree) {
        xmlChar* text = nullptr;
        int size = 0;
        xmlDocDumpFormatMemory(tree.get(), &text, &size, 1);
        xmlFree(text);
        return static_cast<std::size_t>(size);
    }
    static Tree copy(const Tree& tree) { return Tree(xmlCopyDoc(tree.get(), 1)); }
    static std::size_t find(const Tree& tree, const std::string& path) {
        const std::unique_ptr<xmlXPathContext, Free> context(xmlXPathNewContext(tree.get()));
        const std::unique_ptr<xmlXPathObject, Free> found(
            xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(path.c_str()), context.get()));
        return found && found->nodesetval != nullptr ? static_cast<std::size_t>(found->nodesetval->nodeNr) : 0;
    }
};

// --- What is measured ---

void setBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

// Runs `prepare`, not measured, and `run` on what it gave, measured; what it gave is destroyed behind the measurement.
template <class Prepare, class Run>
void measure(benchmark::State& state, Prepare prepare, Run run) {
    for (auto _ : state) {
        auto prepared = prepare();
        const auto start = std::chrono::steady_clock::now();
        run(prepared);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(time.count());
    }
}

// From a text in memory; the tree is destroyed too.
template <class Library>
void parse(benchmark::State& state, const std::string& document) {
    const std::string text = readFile(pathOf(document));
    for (auto _ : state) {
        if (!Library::parse(text)) state.SkipWithError("was not read");
    }
    setBytes(state, text.size());
}

template <class Library>
void parseFile(benchmark::State& state, const std::string& document) {
    const std::string path = pathOf(document);
    for (auto _ : state) {
        if (!Library::parseFile(path)) state.SkipWithError("was not read");
    }
    setBytes(state, std::filesystem::file_size(path));
}

template <class Library>
void write(benchmark::State& state, const std::string& document) {
    const auto tree = Library::parse(readFile(pathOf(document)));
    std::size_t bytes = 0;
    for (auto _ : state) {
        bytes = Library::write(tree);
        if (bytes == 0) state.SkipWithError("was not written");
    }
    setBytes(state, bytes);
}

template <class Library>
void copy(benchmark::State& state, const std::string& document) {
    const std::string text = readFile(pathOf(document));
    const auto tree = Library::parse(text);
    measure(
        state, [] { return typename Library::Tree(); }, [&](auto& result) { result = Library::copy(tree); });
    setBytes(state, text.size());
}

template <class Library>
void destroy(benchmark::State& state, const std::string& document) {
    const std::string text = readFile(pathOf(document));
    measure(
        state, [&] { return Library::parse(text); }, [](auto& tree) { tree.reset(); });
    setBytes(state, text.size());
}

// A tree that was read, against a document type that was read.
void validateOrvXml(benchmark::State& state, const std::string& name) {
    const std::string text = readFile(pathOf(name + ".xml"));
    const auto document = OrvXml::parse(text);
    Xml::StringInStream in(readFile(pathOf(name + ".dtd")));
    Xml::DTDReader reader(document->getRoot()->getName());
    if (!reader.parse(in)) state.SkipWithError(reader.getErrorMessage().c_str());
    // The tree links to the document type, as it does where a document brings its own.
    Xml::Document typed(document->extractRoot(), reader.extractDtd());
    for (auto _ : state) {
        if (!typed.validate()) state.SkipWithError("was not valid");
    }
    setBytes(state, text.size());
}

void validateLibXml2(benchmark::State& state, const std::string& name) {
    const std::string text = readFile(pathOf(name + ".xml"));
    const auto document = LibXml2::parse(text);
    const std::string dtdPath = pathOf(name + ".dtd");
    const std::unique_ptr<xmlDtd, LibXml2::Free> dtd(
        xmlParseDTD(nullptr, reinterpret_cast<const xmlChar*>(dtdPath.c_str())));
    if (!dtd) return state.SkipWithError("document type was not read");
    const std::unique_ptr<xmlValidCtxt, LibXml2::Free> context(xmlNewValidCtxt());
    for (auto _ : state) {
        if (xmlValidateDtd(context.get(), document.get(), dtd.get()) != 1) state.SkipWithError("was not valid");
    }
    setBytes(state, text.size());
}

// A question asked by paths of equal meaning. `theirs` is XPath 1.0: it counts positions for each context node where we
// count them over all that a step has found, and its * leaves out character data and the document.
struct Question {
    const char* name;
    const char* document;
    const char* ours;
    const char* theirs;
};

const Question kQuestions[] = {
    {"names", "vk.xml", "//type", "//type"},
    {"names", "mame-nes.xml", "//rom", "//rom"},
    {"names", "fugue1.mscx.xml", "//Note", "//Note"},
    {"steps", "vk.xml", "/registry/commands/command", "/registry/commands/command"},
    {"steps", "mame-nes.xml", "/softwarelist/software/part", "/softwarelist/software/part"},
    {"steps", "fugue1.mscx.xml", "/museScore/Score/Staff/Measure", "/museScore/Score/Staff/Measure"},
    {"attribute", "vk.xml", "//type[@category='bitmask']", "//type[@category='bitmask']"},
    {"attribute", "mame-nes.xml", "//feature[@name='slot']", "//feature[@name='slot']"},
    {"attribute", "fugue1.mscx.xml", "//Staff[@id='1']", "//Staff[@id='1']"},
    {"number", "vk.xml", "//enum[@bitpos > 5]", "//enum[@bitpos > 5]"},
    {"number", "mame-nes.xml", "//software[year > 1990]", "//software[year > 1990]"},
    {"number", "fugue1.mscx.xml", "//program[@value > 40]", "//program[@value > 40]"},
    {"last", "vk.xml", "//command[last()]", "(//command)[last()]"},
    {"last", "mame-nes.xml", "//software[last()]", "(//software)[last()]"},
    {"last", "fugue1.mscx.xml", "//Note[last()]", "(//Note)[last()]"},
    {"second", "vk.xml", "//command[position() = 2]", "(//command)[2]"},
    {"second", "mame-nes.xml", "//software[position() = 2]", "(//software)[2]"},
    {"second", "fugue1.mscx.xml", "//Note[position() = 2]", "(//Note)[2]"},
    {"following-siblings", "vk.xml", "//param/following-sibling::param", "//param/following-sibling::param"},
    {"following-siblings", "mame-nes.xml", "//info/following-sibling::part", "//info/following-sibling::part"},
    {"following-siblings", "fugue1.mscx.xml", "//Chord/following-sibling::Chord", "//Chord/following-sibling::Chord"},
    {"ancestors", "vk.xml", "//name/ancestor::*", "//name/ancestor::node()"},
    {"ancestors", "mame-nes.xml", "//rom/ancestor::*", "//rom/ancestor::node()"},
    {"ancestors", "fugue1.mscx.xml", "//Note/ancestor::*", "//Note/ancestor::node()"},
    {"nested", "vk.xml", "//types//type", "//types//type"},
    {"nested", "mame-nes.xml", "//part//rom", "//part//rom"},
    {"nested", "fugue1.mscx.xml", "//Measure//pitch", "//Measure//pitch"},
    {"preceding-siblings", "vk.xml", "//param/preceding-sibling::*", "//param/preceding-sibling::node()"},
    {"preceding-siblings", "mame-nes.xml", "//part/preceding-sibling::*", "//part/preceding-sibling::node()"},
    {"preceding-siblings", "fugue1.mscx.xml", "//Chord/preceding-sibling::*", "//Chord/preceding-sibling::node()"},
};

// Over one parent of 4,530 children. libxml2 is not asked: it takes two minutes.
const Question kWideQuestion = {"following-siblings-of-one-parent", "mame-nes.xml",
                                "//software/following-sibling::software", "//software/following-sibling::software"};

template <class Library>
void find(benchmark::State& state, const Question& question) {
    const bool isOurs = std::string(Library::kName) == OrvXml::kName;
    const std::string text = readFile(pathOf(question.document));
    const std::size_t expected = OrvXml::find(OrvXml::parse(text), question.ours);
    const auto tree = Library::parse(text);
    for (auto _ : state) {
        const std::size_t found = Library::find(tree, isOurs ? question.ours : question.theirs);
        if (found == 0 || found != expected) state.SkipWithError("found something else");
    }
    setBytes(state, text.size());
}

template <class Library>
void addQuestion(const Question& question) {
    const std::string name = std::string("find ") + question.name + "/" + question.document + "/" + Library::kName;
    benchmark::RegisterBenchmark(name.c_str(), find<Library>, question)->Unit(benchmark::kMillisecond);
}

template <class Function>
benchmark::internal::Benchmark* add(const std::string& operation, const std::string& document, const char* library,
                                    Function function) {
    const std::string name = operation + "/" + document + "/" + library;
    return benchmark::RegisterBenchmark(name.c_str(), function, document)->Unit(benchmark::kMillisecond);
}

template <class Library>
void addAll(const std::string& document) {
    add("parse", document, Library::kName, parse<Library>);
    add("parse-file", document, Library::kName, parseFile<Library>);
    add("write", document, Library::kName, write<Library>);
    add("copy", document, Library::kName, copy<Library>)->UseManualTime();
    add("destroy", document, Library::kName, destroy<Library>)->UseManualTime();
}

const bool registered = [] {
    for (const char* document : kDocuments) {
        addAll<OrvXml>(document);
        add("parse-file", document, OrvXmlPlatformFile::kName, parseFile<OrvXmlPlatformFile>);
        addAll<PugiXml>(document);
        addAll<TinyXml2>(document);
        addAll<LibXml2>(document);
    }
    for (const char* name : kValidated) {
        add("validate", name, OrvXml::kName, validateOrvXml);
        add("validate", name, LibXml2::kName, validateLibXml2);
    }
    for (const Question& question : kQuestions) {
        addQuestion<OrvXml>(question);
        addQuestion<PugiXml>(question);
        addQuestion<LibXml2>(question);
    }
    addQuestion<OrvXml>(kWideQuestion);
    addQuestion<PugiXml>(kWideQuestion);
    return true;
}();

}  // namespace
