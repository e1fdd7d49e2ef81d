#include "Validation.h"
#include "libraries/LibXml2.h"
#include "libraries/OrvXml.h"
#include <memory>
#include <stdexcept>

namespace bench {

namespace {

// A reader checks a document that brings its document type along. So the two are read apart and then joined.
std::unique_ptr<Xml::Document> unseenByOrvXml(const Typed& typed) {
    const OrvXml::Tree tree = OrvXml::parse(typed.text);
    Xml::StringInStream in(typed.declarations);
    Xml::DTDReader reader(typed.root);
    if (!reader.parse(in)) throw Unreadable(reader.getErrorMessage());
    std::unique_ptr<Xml::Dtd> dtd(reader.extractDtd());
    return std::make_unique<Xml::Document>(tree->extractRoot(), dtd.release());
}

LibXml2::Tree unseenByLibXml2(const Typed& typed) {
    return LibXml2::parse("<!DOCTYPE " + typed.root + " [\n" + typed.declarations + "]>" + typed.text);
}

bool expectValid(bool isValid) {
    if (!isValid) throw std::runtime_error("a valid document was found not to be valid");
    return isValid;
}

}  // namespace

std::vector<Contender> validators(const Typed& typed) {
    return {
        {OrvXml::kName, timedAlone([typed] { return unseenByOrvXml(typed); },
                                   [](auto& document) { return expectValid(document->validate()); })},
        {LibXml2::kName, timedAlone([typed] { return unseenByLibXml2(typed); },
                                    [](LibXml2::Tree& document) {
                                        const std::unique_ptr<xmlValidCtxt, LibXml2::Free> context(xmlNewValidCtxt());
                                        return expectValid(xmlValidateDocument(context.get(), document.get()) == 1);
                                    })}};
}

}  // namespace bench
