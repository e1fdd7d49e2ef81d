// Validates a document by its document type, asks it by a path, changes it and writes it as the dialect has it.
#include <iostream>
#include <xml/standard.h>
#include <xml/xml.h>

int main() {
    Xml::ReadResult shelf = Xml::readText(
        "<!DOCTYPE shelf [<!ELEMENT shelf (seed)*><!ELEMENT seed (name)><!ELEMENT name (#PCDATA)>"
        "<!ATTLIST seed sow CDATA #REQUIRED packets CDATA '0'>]>\n"
        "<shelf>\n"
        "  <seed sow='3'><name>Early Marrow</name></seed>\n"
        "  <seed sow='5' packets='2'><name><![CDATA[Snow & Sugar]]></name></seed>\n"
        "</shelf>\n");
    if (!shelf) return std::cerr << shelf.message() << '\n', 1;

    Xml::XPath query(shelf.get());
    for (unsigned i = 0, n = query.GetValues(u"//seed[@sow > 4]/name"); i < n; ++i)
        std::cout << OrvSys::Uni16CharToPlatformCString(query.GetValue(i, -1)) << " is sown after April\n\n";

    shelf->find("seed")->setAttribute("packets", "12");
    if (!shelf->validate()) return 1;

    Xml::FileOutStream out(&std::cout);
    shelf->toStream(out);
}
