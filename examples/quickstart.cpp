// Changes a value in a file that somebody else wrote, and shows what is wrong with a document.
#include <fstream>
#include <iostream>
#include <xml/easy.h>
#include <xml/standard.h>

int main() {
    std::ofstream("app.xml") << R"(<?xml version="1.0" encoding="ISO-8859-1"?>
<app>
  <!-- not for everybody -->
  <server port="80" host="::1"><![CDATA[Tom & Ana]]></server>
</app>
)";

    Xml::ReadResult app = Xml::readFile("app.xml", Xml::everything());
    if (!app) return std::cerr << app.message() << '\n', 1;
    for (Xml::Element& server : Xml::descendants(*app->getRoot(), "server"))
        Xml::setValue(server, "port", Xml::valueOr(server, "port", 80) + 8000);
    const Xml::WriteResult saved = Xml::saveFile(*app, "app.xml", Xml::asRead(*app));
    if (!saved) return std::cerr << saved.message() << '\n', 1;
    std::cout << std::ifstream("app.xml").rdbuf();

    const Xml::ReadResult wrong = Xml::readText("<app>\n  <server><port>80</prot></server>\n</app>");
    const Xml::Problem& problem = wrong.problems().front();
    std::cout << problem.toString() << '\n' << problem.excerpt << '\n';
}
