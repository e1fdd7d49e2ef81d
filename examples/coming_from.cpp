// What daily work looks like here: a call for each row of the table of docs/coming-from.md.
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <xml/easy.h>
#include <xml/standard.h>

using namespace Xml;

namespace {

const char* const kText = R"(<shop xmlns:v="urn:vat">
  <!-- today -->
  <item n="1" v:rate="19">2.50</item>
  <item n="2">ink</item>
</shop>
)";

void read() {
    std::ofstream("shop.xml") << kText;
    ReadResult doc = readFile("shop.xml", everything());
    if (!doc) std::cerr << doc.message() << '\n';
    ReadResult other = readText(kText);

    const ReadResult wrong = readText("<shop>\n</shap>");
    std::cout << wrong.message() << '\n' << wrong.problems()[0].place.line << '\n';

    ReadOptions options;
    options.keepPlaces = true;
    const ReadResult placed = readText(kText, options);
    std::cout << "line " << placeOf(*placed->find("item")).line << '\n';
}

void look() {
    const ReadResult doc = readText(kText);
    const Element& root = *doc->getRoot();
    const Element* first = elements(root, "item").first();
    if (first == nullptr) return;
    const Element& e = *first;

    for (const Element& each : elements(root, "item")) std::cout << textOf(each) << ' ';
    for (const Object& each : children(root)) std::cout << (kindOf(each) == NodeKind::Comment ? "comment " : "node ");
    for (const Element& each : descendants(root)) std::cout << nameOf(each) << ' ';
    std::cout << '\n';

    const Object* next = nextOf(e);
    std::cout << (next != nullptr && asElement(*next) != nullptr) << (parentOf(e) == &root) << '\n';

    std::cout << valueOr(e, "n", "?") << valueOr(e, "n", 0) << (e.getAttribute("m") == nullptr) << '\n';
    for (const Attribute& each : attributes(e)) std::cout << nameOf(each) << '=' << each.getValue() << ' ';
    std::cout << textOf(e) << ' ' << content<double>(e).value_or(0) << '\n';
    std::cout << namespaceOf(*e.getAttribute("v:rate")) << '\n';

    for (const Object& each : ask(*doc, "//item[@n = 2]")) std::cout << textOf(each) << '\n';
}

void change() {
    const std::unique_ptr<Document> doc = readText(kText).take();
    Element& root = *doc->getRoot();
    Element& e = *elements(root, "item").first();

    setValue(e, "n", 3);
    e.removeAttribute("v:rate");
    setText(e, "a < b");
    append(root, "item", "paper");
    insertBefore(e, copyOf(e));
    append(root, detach(e));
    detach(*elements(root, "item").first());
    std::cout << writeText(*doc).text();
}

void write() {
    const std::unique_ptr<Document> made = makeDocument("shop");
    if (!saveFile(*made, "made.xml")) std::cerr << "not saved\n";

    ReadResult doc = readFile("shop.xml", everything());
    if (!doc || !saveFile(*doc, "shop.xml", asRead(*doc))) std::cerr << "not saved\n";
    std::cout << std::ifstream("shop.xml").rdbuf();

    StreamWriter writer(std::cout);
    writer.start("shop").attribute("n", "1").text("pen").end();
    if (!writer.finish()) std::cerr << writer.problems()[0].toString() << '\n';

    StreamReader reader(kText);
    for (;;) {
        const StreamReader::Event event = reader.next();
        if (event == StreamReader::Event::Finished || event == StreamReader::Event::Failed) break;
        if (event == StreamReader::Event::Start) std::cout << reader.name() << ' ';
    }
    std::cout << '\n';
}

}  // namespace

int main() {
    read();
    look();
    change();
    write();
}
