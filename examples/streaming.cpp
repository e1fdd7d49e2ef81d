// Reads XML 1.0 an event at a time: what is larger than memory, or comes through a pipe.
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <xml/standard.h>

namespace {

// Sums up the records of a log, one of which is in memory at a time. Empty, or what is wrong.
std::string sum(std::istream& in, long& total) {
    Xml::StreamReader reader(in);
    for (;;) {
        switch (reader.next()) {
        case Xml::StreamReader::Event::Start:
            if (reader.name() == "head") {
                reader.skipElement();
            } else if (reader.name() == "entry") {
                const std::unique_ptr<Xml::Element> entry = reader.readElement();
                if (entry != nullptr) total += std::stol(entry->findElementCharData("bytes"));
            }
            break;
        case Xml::StreamReader::Event::Failed: return reader.problems().front().toString();
        case Xml::StreamReader::Event::Finished: return "";
        default: break;
        }
    }
}

}  // namespace

int main() {
    for (const char* end : {"</log>", "</lgo>"}) {
        std::istringstream in(
            "<log><head><!-- any --></head>\n"
            "<entry><bytes>10</bytes></entry>\n"
            "<entry><bytes>32</bytes></entry>\n" +
            std::string(end));
        long total = 0;
        const std::string problem = sum(in, total);
        std::cout << total << '\n' << problem << (problem.empty() ? "" : "\n");
    }
}
