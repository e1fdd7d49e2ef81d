// A program outside the project: uses what is installed, through the headers that bring in others.
#include <iostream>
#include <memory>
#include <xml/standard.h>
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

    const Xml::ReadResult result = Xml::readText("<!DOCTYPE greeting><greeting><![CDATA[Hello]]></greeting>");
    if (!result) {
        std::cerr << result.message() << '\n';
        return 1;
    }
    if (Xml::prologOf(*result).doctype != "greeting") return 1;

    OrvSys::Localization::SetString("greeting", "consumer", u"hello");
    return OrvSys::Localization::GetString("greeting", "consumer", u"") == u"hello" ? 0 : 1;
}
