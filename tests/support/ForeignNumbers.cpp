#include "support/ForeignNumbers.h"

#include "support/Sources.h"
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <stdlib.h>

namespace Xml::test {

namespace {

class Punctuation : public std::numpunct<char> {
public:
    Punctuation(char point, char separator) : point_(point), separator_(separator) {}

protected:
    char do_decimal_point() const override { return point_; }
    char do_thousands_sep() const override { return separator_; }
    std::string do_grouping() const override { return "\3"; }

private:
    char point_;
    char separator_;
};

// A locale of the C library has to be installed; this one is compiled on the spot, from a source and a character map
// that have nothing but what numbers need, so that nothing else need be installed. What the category sets for the
// process is kept when the folder is gone.
void setCNumbers(char point, char separator) {
    const std::string folder = scratchPath("locales");
    std::filesystem::create_directories(folder);
    writeFile(folder + "/map",
              "<code_set_name> TINY\n<mb_cur_max> 1\n<escape_char> /\nCHARMAP\n"
              "<U002C> /x2c COMMA\n<U002E> /x2e PERIOD\nEND CHARMAP\n");
    writeFile(folder + "/source", std::string("LC_NUMERIC\ndecimal_point \"") + point + "\"\nthousands_sep \"" +
                                      separator + "\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    // It warns of all that is left out, and ends with 1 then.
    const std::string name = std::string("numbers-") + (point == ',' ? "comma" : "point");
    const std::string command = "localedef -c -f '" + folder + "/map' -i '" + folder + "/source' '" + folder + "/" +
                                name + "' > '" + folder + "/log' 2>&1";
    const int status = std::system(command.c_str());
    const char* const pathBefore = std::getenv("LOCPATH");
    const std::string kept = pathBefore != nullptr ? pathBefore : "";
    setenv("LOCPATH", folder.c_str(), 1);
    const bool set = std::setlocale(LC_NUMERIC, name.c_str()) != nullptr;
    if (pathBefore != nullptr) {
        setenv("LOCPATH", kept.c_str(), 1);
    } else {
        unsetenv("LOCPATH");
    }
    const std::string log = set ? "" : readFile(folder + "/log");
    std::filesystem::remove_all(folder);
    if (!set)
        throw std::runtime_error("localedef made no locale, it ended with " + std::to_string(status) + ": " + log);
}

}  // namespace

ForeignNumbers::ForeignNumbers(char point, char separator) : cBefore(std::setlocale(LC_NUMERIC, nullptr)) {
    setCNumbers(point, separator);
    before = std::locale::global(std::locale(std::locale::classic(), new Punctuation(point, separator)));

    // What is tested against it must be in force.
    char printed[16];
    std::snprintf(printed, sizeof printed, "%.1f", 1.5);
    std::ostringstream text;
    text << 1234567;
    const std::string expected = std::string("1") + separator + "234" + separator + "567";
    if (printed != std::string("1") + point + "5" || text.str() != expected) {
        throw std::runtime_error("the locale is not in force: " + std::string(printed) + " " + text.str());
    }
}

ForeignNumbers::~ForeignNumbers() {
    std::locale::global(before);
    std::setlocale(LC_NUMERIC, cBefore.c_str());
}

}  // namespace Xml::test
