// Reads XML 1.0 from a file: what is wrong with it, and what is in it.
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <xml/standard.h>
#include <xml/xml.h>

namespace {

// The document in the file, or null. What is wrong is said on `out`.
std::unique_ptr<Xml::Document> load(const std::string& path, std::ostream& out) {
    Xml::ReadResult result = Xml::readFile(path);
    if (!result) {
        const Xml::Problem& problem = result.problems().front();
        out << problem.toString() << '\n' << problem.excerpt << '\n';
        return nullptr;
    }
    return result.take();
}

void writeFile(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

// The children of an element, each with its place.
void list(const Xml::Element& element) {
    for (int i = 0; i < element.getChildCount(); ++i) {
        const Xml::Object& node = *element.getChild(i);
        const Xml::Place place = Xml::placeOf(node);
        std::cout << place.line << ":" << place.column << ' ';
        switch (Xml::kindOf(node)) {
        case Xml::NodeKind::Element: std::cout << "element " << node.toElement()->getName(); break;
        case Xml::NodeKind::Comment: std::cout << "comment " << static_cast<const Xml::Comment&>(node).getText(); break;
        case Xml::NodeKind::Instruction: std::cout << "instruction " << node.toString(); break;
        default: std::cout << "other"; break;
        }
        std::cout << '\n';
    }
}

}  // namespace

int main() {
    writeFile("app.xml", "<app>\n  <server>\n    <port>80</prot>\n  </server>\n</app>\n");
    load("app.xml", std::cout);

    writeFile("app.xml", "<app>\n  <server>\n    <port>80</port>\n  </server>\n</app>\n");
    if (const std::unique_ptr<Xml::Document> document = load("app.xml", std::cout)) {
        std::cout << document->find("port")->getCharData() << '\n';
    }

    Xml::ReadOptions options;
    options.keepPlaces = true;
    const Xml::ReadResult result = Xml::readText(
        "<!DOCTYPE menu [<!ATTLIST dish price CDATA 'free'>]>\n"
        "<menu>\n"
        "  <!--today-->\n"
        "  <dish>soup</dish>\n"
        "  <?page break?>\n"
        "</menu>",
        options);
    if (!result) return std::cerr << result.message() << '\n', 1;
    list(*result->getRoot());
    const Xml::Attribute* const price = result->find("dish")->getAttribute("price");
    std::cout << price->getValue() << (Xml::isDefault(*price) ? " by default\n" : "\n");
}
