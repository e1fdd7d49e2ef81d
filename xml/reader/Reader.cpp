#include "xml/reader/Reader.h"

#include "xml/reader/internal/Report.h"
#include "xml/stream/InStream.h"
#include <algorithm>
#include <string>
#include <typeinfo>
#include <utility>

namespace Xml {

Reader::Reader() = default;

Reader::~Reader() = default;

void Reader::message(InStream& in, const std::string& text) {
    constexpr std::size_t kMostCharacters = 255;
    std::string made =
        "(line = " + std::to_string(in.getLine()) + ", column = " + std::to_string(in.getColumn()) + ") ";
    made.append(text, 0, std::min(text.find('\0'), kMostCharacters));
    made.append(" <").append(typeid(*this).name()).append(">");
    if (made.size() > kMostCharacters) made.resize(kMostCharacters);
    errorMessage = std::move(made);
}

void Reader::setMessage(const std::string& text) { errorMessage = text; }

const std::string& Reader::getErrorMessage() const { return errorMessage; }

bool Reader::getToken(InStream& in, std::string& token) { return in.getToken(token) || fail(in); }

bool Reader::checkToken(InStream& in, const std::string& expected) { return in.checkToken(expected) || fail(in); }

bool Reader::skip(InStream& in, const std::string& terminator) { return in.skip(terminator) || fail(in); }

bool Reader::getName(InStream& in, std::string& name) { return in.getName(name) || fail(in); }

bool Reader::getString(InStream& in, std::string& text) { return in.getString(text) || fail(in); }

bool Reader::getCharData(InStream& in, DataHolder& data) { return in.getCharData(data) || fail(in); }

bool Reader::fail(InStream& in) { return fail(in, in.getErrorMessage()); }

bool Reader::fail(InStream& in, const std::string& text) {
    Report::message(*this, in, text);
    return false;
}

bool Reader::failAs(const Reader& other) {
    setMessage(other.getErrorMessage());
    return false;
}

}  // namespace Xml
