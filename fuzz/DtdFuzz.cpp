// The text of document types: read, written, read again and written again it is the same, as an internal subset after
// <!DOCTYPE and as the declarations of a file alone (RoundTrip.h has the exceptions). Attribute lists of undeclared
// elements are not written, so it is the first written text that counts. What was read again judges elements as the
// first did.
//
// Input: the declarations, read once as a file's and once as an internal subset that ends with "]". What stands before
// a mistake counts too.
#include "fuzz/Input.h"
#include "fuzz/Property.h"
#include "fuzz/RoundTrip.h"
#include "fuzz/Target.h"
#include "reader/GrowthLimit.h"
#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DoctypeReader.h"
#include "xml/stream/StringInStream.h"
#include <memory>
#include <string>
#include <vector>

namespace Xml::fuzz {
namespace {

using test::textOf;

constexpr std::int64_t kEntityGrowth = 50'000;
const char* const kName = "doc";

// What a <!DOCTYPE reads; null where it fails.
std::unique_ptr<Dtd> readDoctype(const std::string& text, std::string& error) {
    StringInStream in(text);
    DoctypeReader reader;
    const bool ok = reader.parse(in);
    error = reader.getErrorMessage();
    std::unique_ptr<Dtd> dtd(reader.extractDtd());
    return ok ? std::move(dtd) : nullptr;
}

// What stands between the brackets.
std::string declarationsOf(const std::string& text) {
    const std::size_t from = text.find('[') + 1;
    return text.substr(from, text.rfind("]>") - from);
}

// Elements a, b and c with up to two children of them, of text, and with an attribute.
const std::vector<std::unique_ptr<Document>>& probes() {
    static const std::vector<std::unique_ptr<Document>> made = [] {
        const std::string kChildren[] = {"", "<a/>", "<b/>", "<c/>", "t"};
        std::vector<std::unique_ptr<Document>> documents;
        const auto add = [&documents](const std::string& name, const std::string& attributes,
                                      const std::string& content) {
            const std::string text = "<" + name + attributes + ">" + content + "</" + name + ">";
            documents.push_back(test::readDocument(text).document);
        };
        for (const char* name : {"a", "b", "c"}) {
            add(name, " x='1'", "");
            for (const std::string& first : kChildren) {
                for (const std::string& second : kChildren) add(name, "", first + second);
            }
        }
        return documents;
    }();
    return made;
}

// Which of them are valid.
std::string judgement(const Dtd& dtd) {
    std::string result;
    for (const auto& probe : probes()) {
        if (dtd.validate(probe->getRoot())) result += test::dump(probe.get()) + "\n";
        probe->getRoot()->setDtd(nullptr);
    }
    return result;
}

void checkRoundTrip(const Dtd& dtd, test::MessageCollector& diagnostics) {
    const Written written = writtenDtd(dtd, diagnostics);
    std::string error;
    const std::unique_ptr<Dtd> again = readDoctype(written.text, error);
    if (!written.refusal.empty()) {
        expectTrue("refused is " + written.refusal, again == nullptr, written.text);
        return;
    }
    expectTrue("a written document type can be read", again != nullptr, error + "\n" + written.text);
    expectSame("a document type read, written and read is the same", written.nextText, textOf(*again));

    expectSame("a document type judges as the one that it was written by", judgement(dtd), judgement(*again));
    for (const char* name : {"e", "f", "g"}) {
        expectSame("an entity is what it was", dtd.getEntityValue(name), again->getEntityValue(name));
    }

    StringInStream in(declarationsOf(written.text));
    DTDReader reader(kName);
    const bool ok = reader.parse(in);
    expectTrue("written declarations can be read", ok, reader.getErrorMessage() + "\n" + written.text);
    expectSame("declarations read, written and read are the same", written.nextText, textOf(*reader.getDtd()));
}

}  // namespace

const std::size_t kLongestInput = 4096;

void check(const std::string& text) {
    const test::GrowthLimit limit(kEntityGrowth);
    test::MessageCollector diagnostics;
    for (const bool internal : {false, true}) {
        StringInStream in(text);
        DTDReader reader(kName);
        reader.setInternal(internal);
        reader.parse(in);
        checkRoundTrip(*reader.getDtd(), diagnostics);
        if (text.find(']') == std::string::npos) break;  // the second reading would be the first
    }
}

}  // namespace Xml::fuzz
