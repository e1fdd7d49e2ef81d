#include "xml/reader/VersionInfoReader.h"

#include "xml/reader/internal/Report.h"
#include "xml/reader/internal/Tokens.h"
#include <string>

namespace Xml {

namespace {

// The declaration as it usually stands, but for the closing ">".
constexpr const char* headerTokens[] = {"<?xml", "version", "=", "\"1.0\"", "?"};
constexpr int kVersionValue = 3;
constexpr int kQuestionMark = 4;

// Tokens after the encoding (a standalone declaration, say) are passed over, but not for ever.
constexpr int kMostTokens = 20;

}  // namespace

bool VersionInfoReader::parse(InStream& in) {
    std::string token;
    for (int i = 0; i < kMostTokens; ++i) {
        if (!getToken(in, token)) return false;
        if (i > kQuestionMark) {
            if (token == kGreaterThen) return true;
            continue;
        }
        if (token == headerTokens[i] || (i == kVersionValue && token == "'1.0'")) continue;
        if (i != kQuestionMark || token != "encoding") return false;

        if (!checkToken(in, kEqual) || !getToken(in, token)) return false;
        if (token != "\"UTF-8\"" && token != "'UTF-8'") Report::message(*this, in, "Unsupported encoding: " + token);
        if (!getToken(in, token)) return false;
    }
    return false;
}

}  // namespace Xml
