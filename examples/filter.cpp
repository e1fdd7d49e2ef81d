// Goes through a document as large as one likes, record by record, and writes what is left of it to standard output:
//
//     filter orders.xml > open.xml        or: filter < orders.xml > open.xml
//
// Orders that are paid are left out, and the others are reminded once more. All else stays as it is.
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <xml/easy.h>
#include <xml/standard.h>

namespace {

// Whether the order stays, as it is then.
bool remind(Xml::Element& order) {
    if (Xml::valueOr(order, "paid", false)) return false;
    Xml::setValue(order, "reminders", Xml::valueOr(order, "reminders", 0) + 1);
    return true;
}

// Empty, or what is wrong.
std::string filter(std::istream& in, std::ostream& out) {
    using Event = Xml::StreamReader::Event;
    Xml::StreamReader reader(in, Xml::everything());
    Xml::WriteOptions form;
    form.indent.clear();
    Xml::StreamWriter writer(out, form);
    std::string before;  // the text before the event at hand, which goes with an order that is left out
    for (;;) {
        const Event event = reader.next();
        if (event == Event::Text) {
            before = reader.text();
            continue;
        }
        std::unique_ptr<Xml::Element> order;
        if (event == Event::Start && reader.name() == "order") order = reader.readElement();
        if (order == nullptr || remind(*order)) {
            if (!before.empty()) writer.text(before);
            order == nullptr ? writer.copy(reader) : writer.node(*order);
        }
        before.clear();
        if (event == Event::Finished || event == Event::Failed) break;
    }
    return writer.finish() ? "" : writer.problems().front().toString();
}

}  // namespace

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    std::ifstream file;
    if (argc > 1) file.open(argv[1], std::ios::binary);
    const std::string problem = filter(argc > 1 ? file : std::cin, std::cout);
    if (problem.empty()) return 0;
    std::cerr << problem << '\n';
    return 1;
}
