// Writes XML 1.0: a document that others wrote, with one value changed, and a document piece by piece.
#include <iostream>
#include <sstream>
#include <string>
#include <xml/standard.h>

namespace {

// Gives the first <port> another text. Nothing else of the file changes. Empty, or what is wrong.
std::string setPort(const std::string& path, const std::string& port) {
    Xml::ReadResult config = Xml::readFile(path, Xml::everything());
    if (!config) return config.message();
    config->find("port")->setCharData(port);
    return Xml::saveFile(*config, path, Xml::asRead(*config)).message();
}

// Leaves the comments out of a document as large as one likes. Empty, or what is wrong.
std::string withoutComments(std::istream& in, std::ostream& out) {
    Xml::ReadOptions options = Xml::everything();
    options.keepComments = false;
    Xml::StreamReader reader(in, options);
    Xml::WriteOptions form;
    form.indent.clear();
    Xml::StreamWriter writer(out, form);
    for (;;) {
        const Xml::StreamReader::Event event = reader.next();
        writer.copy(reader);
        if (event == Xml::StreamReader::Event::Finished || event == Xml::StreamReader::Event::Failed) break;
    }
    return writer.finish() ? "" : writer.problems().front().toString();
}

}  // namespace

int main() {
    std::istringstream source("<config><!-- of the server --><port>80</port></config>");
    std::ostringstream filtered;
    std::cout << withoutComments(source, filtered) << filtered.str();

    const Xml::ReadResult config =
        Xml::readText("<config>\n  <port>80</port> <!-- not 8080 -->\n</config>", Xml::everything());
    if (!config || !Xml::saveFile(*config, "config.xml", Xml::asRead(*config))) return 1;
    std::cout << setPort("config.xml", "81");
    const Xml::ReadResult changed = Xml::readFile("config.xml", Xml::everything());
    if (!changed) return 1;
    std::cout << Xml::writeText(*changed, Xml::asRead(*changed)).text();

    Xml::StreamWriter writer(std::cout);
    writer.start("log").start("entry").attribute("id", "1").text("a < b").end().end();
    return writer.finish() ? 0 : 1;
}
