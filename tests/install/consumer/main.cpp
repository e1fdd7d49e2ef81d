// A program outside the project: uses what is installed, through the one header for everything.
#include <iostream>
#include <memory>
#include <xml/xml.h>

int main() {
    Xml::StringInStream in("<?xml version=\"1.0\"?>\n<greeting to=\"world\"><word>Hello</word></greeting>\n");
    Xml::DocumentReader reader;
    if (!reader.parse(in)) {
        std::cerr << reader.getErrorMessage() << '\n';
        return 1;
    }
    const std::unique_ptr<Xml::Document> document(reader.extractDocument());
    std::cout << document->getRoot()->getName() << '\n';

    OrvSys::Localization::SetString("greeting", "consumer", u"hello");
    return OrvSys::Localization::GetString("greeting", "consumer", u"") == u"hello" ? 0 : 1;
}
