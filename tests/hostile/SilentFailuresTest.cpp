// That the reasons of silent failures are found where there are such, and only there.
#include "hostile/SilentFailures.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml::test {

TEST(SilentFailuresTest, AreRecognisedByTheTextUpToTheirPlace) {
    const struct {
        const char* text;
        const char* reason;
        std::vector<std::string> diagnostics;
    } kCases[] = {
        {"<a !", "a start tag ended by anything but > or />", {}},
        {"<a><b c='>' d=\"<\" 'e'", "a start tag ended by anything but > or />", {}},
        {"<a><!--", "a comment in content that does not end", {}},
        {"<?xml x", "an XML declaration of another version, or in another order", {}},
        {" <?xml version='>'", "an XML declaration of another version, or in another order", {}},
        {"<?xml version=\"1.0\" encoding='>' a a", "an XML declaration without an end among its first 20 tokens", {}},
        {"<!DOCTYPE a [<!ATTLIST a *", "an attribute list with a token that is no name", {}},
        {"<!DOCTYPE a [<!ATTLIST a b CDATA #FIXED 'c' *", "an attribute list with a token that is no name", {}},
        {"<!DOCTYPE a [<!ATTLIST a b CDATA c ",
         "an attribute's default that is no string",
         {"<AttListReader::parse> string   c"}},
        {"<!DOCTYPE a [<!ELEMENT a b ",
         "an element declaration with an unknown content",
         {"<ElementDeclReader::parse> don't know what to do b"}},
        {"", "", {}},
        {"<a>", "", {}},
        {"<a/>", "", {}},
        {"<a b='c' d", "", {}},
        {"<a b='c'>", "", {}},
        {"<a b=c", "", {}},
        {"<a></b", "", {}},
        {"<a><!---->", "", {}},
        {"<?xml version='1.0'?>", "", {}},
        {"<?xml x ?><a>", "", {}},
        {"<!DOCTYPE a [<!ATTLIST a b ID", "", {}},
        {"<!DOCTYPE a [<!ATTLIST a b CDATA 'c'>", "", {}},
        {"<!DOCTYPE a [<!ATTLIST a b CDATA c ", "", {}},
        {"<!DOCTYPE a [<!ELEMENT a b ", "", {}},
    };
    for (const auto& c : kCases) {
        const std::string text = c.text;
        EXPECT_EQ(silentFailure(text, static_cast<int>(text.size()), c.diagnostics), c.reason) << text;
    }
}

}  // namespace Xml::test
