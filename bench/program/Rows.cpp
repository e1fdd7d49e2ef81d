#include "Rows.h"
#include "Questions.h"
#include "Shapes.h"
#include "Validation.h"
#include "libraries/Libraries.h"
#include <cmath>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

namespace bench {

namespace {

using Contenders = std::vector<Contender>;

std::size_t scaled(double size, const Plan& plan) { return static_cast<std::size_t>(std::ceil(size * plan.scale)); }

template <class Library>
Contender parser(const Text& text) {
    return {Library::kName, timed([text] { Library::parse(*text); })};
}

template <class Library>
Contender fileParser(const std::string& path) {
    return {Library::kName, timed([path] { Library::parseFile(path); })};
}

// A parse, a look at everything, and the end of the tree.
template <class Library>
Contender reader(const Text& text) {
    return {Library::kName, timed([text] { keep(Library::read(Library::parse(*text))); })};
}

// A look at every event.
template <class Library>
Contender eventReader(const Text& text) {
    return {Library::kName, timed([text] { keep(Library::parse(*text)); })};
}

// A tree that several calls share.
template <class Library>
std::shared_ptr<const typename Library::Tree> sharedTree(const Text& text) {
    return std::make_shared<const typename Library::Tree>(Library::parse(*text));
}

template <class Library>
Contender writer(const Text& text) {
    return {Library::kName, timed([tree = sharedTree<Library>(text)] {
                if (Library::write(*tree) == 0) throw std::runtime_error("nothing was written");
            })};
}

template <class Library>
Contender copier(const Text& text) {
    const auto tree = sharedTree<Library>(text);
    return {Library::kName, timedAlone([tree] { return tree.get(); }, [](auto* from) { return Library::copy(*from); })};
}

// Work on the text of each document by the libraries that can read it.
template <class Make>
std::vector<Case> onDocuments(const std::string& row, const std::vector<Document>& documents, Make make) {
    std::vector<Case> cases;
    for (const Document& document : documents) {
        cases.push_back({row, document.path, "", document.text->size(), [make, document] { return make(document); }});
    }
    return cases;
}

template <class Library>
void addIfRead(Contenders& contenders, const Document& document, Contender (*make)(const Text&), const Text& text) {
    if (document.isReadBy(Library::kName)) contenders.push_back(make(text));
}

Contenders parsersOf(const Document& document, const Text& text) {
    Contenders contenders;
    forEachLibrary(
        [&](auto library) { addIfRead<decltype(library)>(contenders, document, parser<decltype(library)>, text); });
    return contenders;
}

std::vector<Case> parse(const std::vector<Document>& documents, const Plan&) {
    return onDocuments("parse", documents, [](const Document& document) { return parsersOf(document, document.text); });
}

// The text with CR LF for every end of a line.
Text withCrLf(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n' && (result.empty() || result.back() != '\r')) result += '\r';
        result += c;
    }
    return std::make_shared<const std::string>(std::move(result));
}

std::vector<Case> parseCrLf(const std::vector<Document>& documents, const Plan&) {
    return onDocuments("crlf", documents,
                       [](const Document& document) { return parsersOf(document, withCrLf(*document.text)); });
}

std::vector<Case> readAll(const std::vector<Document>& documents, const Plan&) {
    return onDocuments("read", documents, [](const Document& document) {
        Contenders contenders;
        forEachTree([&](auto library) {
            addIfRead<decltype(library)>(contenders, document, reader<decltype(library)>, document.text);
        });
        return contenders;
    });
}

std::vector<Case> parseFile(const std::vector<Document>& documents, const Plan&) {
    return onDocuments("file", documents, [](const Document& document) {
        Contenders contenders;
        forEachLibrary([&](auto library) {
            using Library = decltype(library);
            if (document.isReadBy(Library::kName)) contenders.push_back(fileParser<Library>(document.path));
        });
        return contenders;
    });
}

std::vector<Case> parsePlatformFile(const std::vector<Document>& documents, const Plan&) {
    return onDocuments("filespec", documents, [](const Document& document) {
        return Contenders{fileParser<OrvXmlPlatformFile>(document.path), fileParser<PugiXml>(document.path)};
    });
}

std::vector<Case> write(const std::vector<Document>& documents, const Plan&) {
    return onDocuments("write", documents, [](const Document& document) {
        Contenders contenders;
        forEachWriter([&](auto library) {
            addIfRead<decltype(library)>(contenders, document, writer<decltype(library)>, document.text);
        });
        return contenders;
    });
}

std::vector<Case> copy(const std::vector<Document>& documents, const Plan&) {
    return onDocuments("copy", documents, [](const Document& document) {
        Contenders contenders;
        forEachTree([&](auto library) {
            addIfRead<decltype(library)>(contenders, document, copier<decltype(library)>, document.text);
        });
        return contenders;
    });
}

// What the reading of XML 1.0 refuses is left out.
template <class Make>
std::vector<Case> onStandard(const std::string& row, const std::vector<Document>& documents, Make make) {
    std::vector<Document> read;
    for (const Document& document : documents) {
        if (document.isReadBy(Standard::kLeftOutAs)) read.push_back(document);
    }
    return onDocuments(row, read, make);
}

std::vector<Case> parseStandard(const std::vector<Document>& documents, const Plan&) {
    return onStandard("standard", documents, [](const Document& document) {
        Contenders contenders;
        forEachStandard([&](auto library) { contenders.push_back(parser<decltype(library)>(document.text)); });
        return contenders;
    });
}

std::vector<Case> parseStandardAll(const std::vector<Document>& documents, const Plan&) {
    return onStandard("standard-all", documents, [](const Document& document) {
        return Contenders{parser<StandardAll>(document.text), parser<PugiXmlAll>(document.text)};
    });
}

std::vector<Case> writeStandard(const std::vector<Document>& documents, const Plan&) {
    return onStandard("standard-write", documents, [](const Document& document) {
        Contenders contenders;
        forEachStandard([&](auto library) { contenders.push_back(writer<decltype(library)>(document.text)); });
        return contenders;
    });
}

std::vector<Case> writeStandardRaw(const std::vector<Document>& documents, const Plan&) {
    return onStandard("standard-write-raw", documents, [](const Document& document) {
        return Contenders{writer<StandardRaw>(document.text), writer<PugiXmlRaw>(document.text)};
    });
}

// A file of its own beside the program, as long as it is used.
class ScratchFile {
public:
    ScratchFile()
        : name(std::filesystem::read_symlink("/proc/self/exe").string() + ".saved" + std::to_string(count++)) {}
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove(name, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& path() const { return name; }

private:
    static inline int count = 0;
    const std::string name;
};

// Not in a folder of temporary files, which may lie in memory.
std::vector<Case> saveStandard(const std::vector<Document>& documents, const Plan&) {
    return onStandard("standard-save", documents, [](const Document& document) {
        const auto saver = [&](auto library) {
            using Library = decltype(library);
            return Contender{Library::kName, timedWithWaiting([tree = sharedTree<Library>(document.text),
                                                               file = std::make_shared<ScratchFile>()] {
                                 Library::save(*tree, file->path());
                             })};
        };
        return Contenders{saver(StandardSaved()), saver(StandardInPlace())};
    });
}

std::vector<Case> readEvents([[maybe_unused]] const std::vector<Document>& documents, const Plan&) {
#ifdef ORVXML_BENCH_EXPAT
    return onStandard("events", documents, [](const Document& document) {
        if (!document.isReadBy(ExpatEvents::kName)) return Contenders();
        if (!StandardEvents::parse(*document.text).isSameAs(ExpatEvents::parse(*document.text))) {
            throw std::runtime_error("the events of " + document.path + " are not those of " + ExpatEvents::kName);
        }
        return Contenders{eventReader<StandardEvents>(document.text), eventReader<ExpatEvents>(document.text)};
    });
#else
    return {};
#endif
}

// Libraries that find another number of nodes than this one, or know no such path, were asked something else: they are
// left out, or it is an error where they must agree.
template <class Library>
bool findsAsMany(const typename Library::Tree& tree, const Question& question, std::size_t expected) {
    std::string reason;
    try {
        const std::size_t found = Library::find(tree, question.by(Library::kName));
        if (found == expected) return true;
        reason = question.by(Library::kName) + " finds " + std::to_string(found) + " nodes in " + Library::kName +
                 ", and not " + std::to_string(expected);
    } catch (const std::exception& error) {
        reason = error.what();
    }
    if (question.mustAgree) throw std::runtime_error(reason);
    return false;
}

Contenders finders(const Document& document, const Question& question) {
    Contenders contenders;
    const std::size_t expected = OrvXml::find(OrvXml::parse(*document.text), question.ours);
    forEachFinder([&](auto library) {
        using Library = decltype(library);
        if (expected == 0 || !document.isReadBy(Library::kName)) return;
        const auto tree = sharedTree<Library>(document.text);
        const std::string path = question.by(Library::kName);
        if (!findsAsMany<Library>(*tree, question, expected)) return;
        contenders.push_back({Library::kName, timed([tree, path] { keep(Library::find(*tree, path)); })});
    });
    return contenders;
}

std::vector<Case> find(const std::vector<Document>& documents, const Plan&) {
    std::vector<Case> cases;
    for (const Document& document : documents) {
        for (const Question& question : questionsAbout(document.path, *document.text)) {
            cases.push_back({"find", document.path, question.name, document.text->size(),
                             [document, question] { return finders(document, question); }});
        }
    }
    return cases;
}

std::vector<Case> validate(const std::vector<Document>&, const Plan& plan) {
    const auto made = [](const std::string& name, const Typed& typed) {
        return Case{"validate", name, "", typed.text.size(), [typed] { return validators(typed); }};
    };
    return {made("40 element types", manyTypes(scaled(10e6, plan))),
            made("many children", manyChildren(scaled(100000, plan)))};
}

// Work on a text that is generated.
template <class Make>
Case onShape(const std::string& row, const std::string& name, const std::string& part, std::string text, Make make) {
    const auto shared = std::make_shared<const std::string>(std::move(text));
    return {row, name, part, shared->size(), [make, shared] { return make(shared); }};
}

Contenders allParsers(const Text& text) {
    Contenders contenders;
    forEachLibrary([&](auto library) { contenders.push_back(parser<decltype(library)>(text)); });
    return contenders;
}

std::vector<Case> siblingRow(const std::vector<Document>&, const Plan& plan) {
    const std::string text = siblings(scaled(1e6, plan));
    return {onShape("siblings", "siblings", "parse", text, allParsers),
            onShape("siblings", "siblings", "write", text, [](const Text& shared) {
                Contenders contenders;
                forEachWriter([&](auto library) { contenders.push_back(writer<decltype(library)>(shared)); });
                return contenders;
            })};
}

std::vector<Case> tinyRow(const std::vector<Document>&, const Plan&) {
    return {onShape("tiny", "order", "", tiny(), allParsers)};
}

// A parse, a look at every text, a copy as text, and the end of the tree.
std::vector<Case> referenceRow(const std::vector<Document>&, const Plan& plan) {
    return {onShape("references", "references", "", references(scaled(920000, plan)), [](const Text& text) {
        Contenders contenders;
        forEachWriter([&](auto library) {
            using Library = decltype(library);
            contenders.push_back({Library::kName, timed([text] {
                                      const auto tree = Library::parse(*text);
                                      keep(Library::read(tree));
                                      keep(Library::write(tree));
                                  })});
        });
        return contenders;
    })};
}

std::vector<Case> growth(const std::vector<Document>&, const Plan& plan) {
    constexpr std::size_t kMostMegabytes = 64;
    const struct {
        const char* name;
        std::string (*make)(std::size_t bytes);
    } kShapes[] = {{"attributes", attributeHeavy}, {"elements", elementHeavy}, {"text", textHeavy}};
    std::vector<Case> cases;
    for (const auto& shape : kShapes) {
        for (std::size_t megabytes = 1; megabytes <= kMostMegabytes; megabytes *= 2) {
            const std::size_t size = scaled(static_cast<double>(megabytes) * 1e6, plan);
            const auto make = shape.make;
            cases.push_back({"growth", shape.name, "", size,
                             [make, size] { return allParsers(std::make_shared<const std::string>(make(size))); }});
        }
    }
    return cases;
}

using Row = std::vector<Case> (*)(const std::vector<Document>&, const Plan&);

const std::map<std::string, Row> kRows = {
    {"parse", parse},
    {"crlf", parseCrLf},
    {"read", readAll},
    {"file", parseFile},
    {"write", write},
    {"copy", copy},
    {"find", find},
    {"filespec", parsePlatformFile},
    {"validate", validate},
    {"siblings", siblingRow},
    {"tiny", tinyRow},
    {"references", referenceRow},
    {"growth", growth},
    {"standard", parseStandard},
    {"standard-all", parseStandardAll},
    {"standard-write", writeStandard},
    {"standard-write-raw", writeStandardRaw},
    {"standard-save", saveStandard},
    {"events", readEvents},
};

}  // namespace

std::vector<Case> casesOf(const std::string& row, const std::vector<Document>& documents, const Plan& plan) {
    const auto found = kRows.find(row);
    return found != kRows.end() ? found->second(documents, plan) : std::vector<Case>();
}

}  // namespace bench
