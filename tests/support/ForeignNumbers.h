#pragma once

#include <locale>
#include <string>

namespace Xml::test {

// While this lives, the program's locale writes its numbers otherwise, for streams and for C: with `point` as decimal
// point, and with `separator` between every three digits. Throws where no such locale can be made. One at a time.
class ForeignNumbers {
public:
    ForeignNumbers(char point, char separator);
    ~ForeignNumbers();
    ForeignNumbers(const ForeignNumbers&) = delete;
    ForeignNumbers& operator=(const ForeignNumbers&) = delete;

private:
    std::string cBefore;
    std::locale before;
};

}  // namespace Xml::test
