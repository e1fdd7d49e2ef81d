#include "xml/standard/internal/EncodingDeclaration.h"
#include <gtest/gtest.h>
#include <string>

namespace {

using Xml::EncodingDeclaration;

// In pieces of that size, until it is decided; returns how many characters were taken.
std::size_t takePieces(EncodingDeclaration& declaration, const std::string& text, std::size_t size) {
    std::size_t taken = 0;
    for (std::size_t at = 0; at < text.size(); at += size) {
        const std::string piece = text.substr(at, size);
        taken += declaration.take(piece);
        if (declaration.isDecided()) break;
    }
    return taken;
}

TEST(EncodingDeclarationTest, TakesWhatLeadsToTheNameAndNothingElse) {
    const struct {
        const char* taken;
        const char* rest;
        bool isDecided;
        const char* name;
    } kCases[] = {
        {"", "", false, ""},
        {"<?xm", "", false, ""},
        {"<?xml version='1.0' encoding='UTF-8'", "?><a/>", true, "UTF-8"},
        {"<?xml encoding=\"a.b_c-9\"", " ?>", true, "a.b_c-9"},
        {"<?xml\r\n version = \"1.99\"\tencoding\n=\n'x'", "x", true, "x"},
        {"<?xml version='1.0'", "?>", true, ""},
        {"<?xml version='1.0' ", "standalone='yes'?>", true, ""},
        {"<?xml", "-stylesheet?>", true, ""},
        {"<", "a/>", true, ""},
        {"", "a", true, ""},
        {"<?xml version='1.0' encoding='", "'?>", true, ""},
        {"<?xml version='1.0' encoding='a", " b'?>", true, ""},
        {"<?xml version='1.0' encoding='a", "", false, ""},
        {"<?xml version='1.", "'", true, ""},
        {"<?xml version='", "2.0'", true, ""},
        {"<?xml version='1.0' encodin", "G='x'", true, ""},
    };
    for (const auto& c : kCases) {
        const std::string text = std::string(c.taken) + c.rest;
        SCOPED_TRACE(text);
        for (const std::size_t size : {std::size_t{1}, std::size_t{3}, std::size_t{1000}}) {
            EncodingDeclaration declaration;
            const std::size_t taken = takePieces(declaration, text, size);
            EXPECT_EQ(text.substr(0, taken), c.taken);
            EXPECT_EQ(declaration.isDecided(), c.isDecided);
            EXPECT_EQ(declaration.name(), c.name);
            if (!declaration.name().empty()) {
                EXPECT_EQ(text.substr(declaration.nameOffset(), declaration.name().size()), c.name);
            }
        }
    }
}

}  // namespace
