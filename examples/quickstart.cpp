#include <iostream>
#include <memory>
#include <xml/xml.h>

int main() {
    Xml::StringInStream in("<shelf><seed id='pea'><name>Early Marrow</name><sow from='March'/></seed></shelf>");
    Xml::DocumentReader reader;
    if (!reader.parse(in)) return std::cerr << reader.getErrorMessage() << '\n', 1;
    const std::unique_ptr<Xml::Document> document(reader.extractDocument());

    Xml::Element* seed = document->find("seed");
    std::cout << seed->getElementCharData("name") << " is sown in "
              << seed->getElement("sow")->getAttributeValue("from") << "\n\n";
    seed->setAttribute("packets", "12");
    seed->addElement("hint", "Peas & beans like company");

    Xml::FileOutStream out(&std::cout);
    document->toStream(out);
}
