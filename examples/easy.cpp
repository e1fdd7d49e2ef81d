// Short ways for daily work: reading, asking, changing, comparing and saving trees, and going through a stream.
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <xml/easy.h>
#include <xml/standard.h>

namespace {

const char* const kMenu = R"(<!-- by the cook -->
<menu xmlns:v="urn:vegan" day="Monday">
  <dish price="4.50" v:ok="true">Soup</dish>
  <dish price="7">Fish &amp; chips</dish>
  <grün price="3.20">Salad</grün>
</menu>
)";

void readAndLook() {
    Xml::ReadResult menu = Xml::readText(kMenu);
    if (!menu) return void(std::cerr << menu.message() << '\n');

    double sum = 0;
    for (const Xml::Element& dish : Xml::elements(*menu->getRoot(), "dish")) {
        sum += Xml::valueOr(dish, "price", 0.0);
        const bool isVegan = Xml::valueOr(dish, "v:ok", false);
        std::cout << Xml::textOf(dish) << (isVegan ? ", vegan" : "") << '\n';
    }
    std::cout << sum << " for both\n";

    const Xml::Element& dish = *Xml::elements(*menu->getRoot()).first();
    for (const Xml::Attribute& attribute : Xml::attributes(dish)) {
        std::cout << Xml::nameOf(attribute) << " {" << Xml::namespaceOf(attribute) << "}\n";
    }
}

void askForDishes() {
    const std::unique_ptr<Xml::Document> menu = Xml::readText(kMenu).take();
    const std::string wish = "Fish & chips";
    for (const Xml::Object& price : Xml::ask(*menu, "//dish[. = " + Xml::literal(wish) + "]/@price"))
        std::cout << Xml::textOf(price) << '\n';
    std::cout << Xml::ask(*menu, "//grün").text(0) << '\n';
    std::cout << Xml::ask(*menu, "//dish/@price * 2").text(0) << '\n';

    const auto wrong = Xml::ask(*menu, "//dish[1]");
    if (wrong.problem()) std::cout << wrong.problem()->toString() << '\n' << wrong.problem()->excerpt << '\n';
}

void changeTheMenu() {
    const std::unique_ptr<Xml::Document> menu = Xml::readText(kMenu).take();
    const std::unique_ptr<Xml::Document> before = Xml::copyOf(*menu);
    Xml::Element& root = *menu->getRoot();

    for (Xml::Element& dish : Xml::elements(root, "dish")) {
        Xml::setValue(dish, "price", Xml::valueOr(dish, "price", 0.0) + 0.5);
    }
    std::cout << Xml::firstDifference(*before, *menu) << '\n';

    Xml::Element& cake = Xml::append(root, "dish", "Cake");
    Xml::setValue(cake, "price", 3);
    Xml::insertBefore(*Xml::elements(root).first(), Xml::detach(cake));
    Xml::sortChildren(
        root, [](const Xml::Object& one, const Xml::Object& other) { return Xml::textOf(one) < Xml::textOf(other); });
    for (const Xml::Element& dish : Xml::elements(root)) {
        std::cout << Xml::textOf(dish) << ' ' << Xml::valueOr(dish, "price", "?") << '\n';
    }
}

void saveTheMenu() {
    std::ofstream("menu.xml") << kMenu;

    Xml::ReadResult menu = Xml::readFile("menu.xml", Xml::everything());
    if (!menu) return void(std::cerr << menu.message() << '\n');
    Xml::Element& soup = *Xml::elements(*menu->getRoot(), "dish").first();
    Xml::setValue(soup, "price", 4.8);
    if (const auto saved = Xml::saveFile(*menu, "menu.xml", Xml::asRead(*menu)); !saved)
        return void(std::cerr << saved.message() << '\n');
    std::cout << std::ifstream("menu.xml").rdbuf();

    Xml::setText(soup, "Soup\x07");
    for (const Xml::Problem& problem : Xml::saveFile(*menu, "menu.xml", Xml::asRead(*menu)).problems())
        std::cout << problem.toString() << " in " << problem.path << '\n';
}

void addUpAStream() {
    std::istringstream orders(
        "<orders><order n='2'><dish>Soup</dish></order><order n='3'><dish>Cake</dish></order></orders>");
    Xml::StreamReader reader(orders);
    int count = 0;
    for (auto event = reader.next(); event != Xml::StreamReader::Event::Finished; event = reader.next()) {
        if (event == Xml::StreamReader::Event::Failed)
            return void(std::cerr << reader.problems()[0].toString() << '\n');
        if (event != Xml::StreamReader::Event::Start || reader.name() != "order") continue;
        const std::unique_ptr<Xml::Element> order = reader.readElement();
        count += Xml::valueOr(*order, "n", 1);
        std::cout << Xml::textOf(*order) << '\n';
    }
    std::cout << count << " plates\n";
}

}  // namespace

int main() {
    readAndLook();
    askForDishes();
    changeTheMenu();
    saveTheMenu();
    addUpAStream();
}
