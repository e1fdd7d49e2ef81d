#include <iostream>
#include <memory>
#include <xml/xml.h>

int main() {
    Xml::StringInStream in(
        "<!DOCTYPE shelf [<!ELEMENT shelf (seed*)><!ELEMENT seed (name)><!ELEMENT name (#PCDATA)>"
        "<!ATTLIST seed sow CDATA #REQUIRED packets CDATA '0'>]>"
        "<shelf><seed sow='3'><name>Early Marrow</name></seed>"
        "<seed sow='5' packets='2'><name>Snow &amp; Sugar</name></seed></shelf>");
    Xml::DocumentReader reader;  // reads, and checks by the document type
    if (!reader.parse(in)) return std::cerr << reader.getErrorMessage() << '\n', 1;
    const std::unique_ptr<Xml::Document> document(reader.extractDocument());

    Xml::XPath query(document.get());
    for (unsigned i = 0, n = query.GetValues(u"//seed[@sow > 4]/name"); i < n; ++i)
        std::cout << OrvSys::Uni16CharToPlatformCString(query.GetValue(i, -1)) << " is sown after April\n\n";

    document->find("seed")->setAttribute("packets", "12");
    if (!document->validate()) return 1;

    Xml::FileOutStream out(&std::cout);
    document->toStream(out);
}
