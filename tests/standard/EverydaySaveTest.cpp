// Everyday documents: each is read with everything(), one value is changed, and it is saved as it was read. The file
// has the bytes that it had before, but for that value, and for what docs/standard.md names: that list is quoted here,
// and the table has each place of a document that it is about, before and after.
#include "standard/Encoded.h"
#include "standard/Everyday.h"
#include "support/Pattern.h"
#include "support/Places.h"
#include "support/Sources.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/easy/Ask.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Texts.h"
#include "xml/standard/Read.h"
#include "xml/standard/Save.h"
#include "xml/standard/Write.h"
#include <gtest/gtest.h>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// The exceptions by the words of the page.
const char* const kReferences = "references to entities and to characters: what they stand for";
const char* const kGreater = "a literal `>` in text becomes one";
const char* const kValues = "values, which are normalised";
const char* const kTags = "quotes, which are double, and white space inside tags";
const char* const kEmptyTags = "`<a></a>`, which is `<a/>`";
const char* const kAround = "white space around the root";

struct Exception {
    const char* rule;
    const char* before;  // each place of it in the file
    const char* after;
};

struct Change {
    const char* file;
    const char* path;   // to one node
    const char* value;  // what it is given
    const char* before;
    const char* after;
    std::vector<Exception> exceptions;
};

const std::vector<Change>& changes() {
    static const std::vector<Change> all = {
        {"book.xml",
         "//chapter[@id = 'two']/@role",
         "first draft",
         R"(role="final")",
         R"(role="first draft")",
         {{kReferences, "&title;", "Larch by example"},
          {kReferences, "</title>&legal;",
           "</title><legalnotice><para>All of Larch is <emphasis>free</emphasis>.</para></legalnotice>"},
          {kReferences, "&product;&#160;2", "Larch\u00A02"},
          {kValues, "label=\"  a\n    b \"", "label=\"a b\""}}},
        {"build.xml",
         "/project/@default",
         "all",
         R"(default="dist")",
         R"(default="all")",
         {{kReferences, "&quot; &gt; log", "&quot; > log"},
          {kValues, "init,\n                                 compile,\n                                 test",
           "init,                                  compile,                                  test"}}},
        {"dialog.xml", "//width", "500", "<width>400<", "<width>500<", {}},
        {"drawing.xml",
         "//g/following-sibling::*[@x]/@x",
         "2.5",
         R"(<text x="1">)",
         R"(<text x="2.5">)",
         {{kReferences, "\"&ns_svg;\"", "\"http://www.w3.org/2000/svg\""},
          {kReferences, "\"&ns_xlink;\"", "\"http://www.w3.org/1999/xlink\""},
          {kReferences, "\"&st0;\"", "\"fill:#FFFFFF;stroke:none;\""},
          {kTags, "y=\"0px\"\n\t viewBox", "y=\"0px\" viewBox"},
          {kValues, "2,12\n\ts4.5", "2,12  s4.5"}}},
        {"emoji.xml",
         "/chat/msg[@from = 'a']",
         "Bye \U0001F98A",
         "Hi &#128512;&#x1F600;!",
         "Bye \U0001F98A",
         {{kReferences, "\"&#x1F98A;\"", "\"\U0001F98A\""},
          {kReferences, "&wave;", "\U0001F44B"},
          {kReferences, "&#x200D;&#xFE0F;", "\u200D\uFE0F"},
          {kReferences, "&#9;&#xA;&#13;", "\t\n&#13;"}}},
        {"entries.xml",
         "//entry/title",
         "On blanks & tabs",
         "On white space",
         "On blanks &amp; tabs",
         {{kTags, "version='1.0' encoding='utf-8'", "version=\"1.0\" encoding=\"utf-8\""},
          {kTags, "xmlns='http://www.w3.org/2005/Atom' xml:lang='en' xml:base='https://example.org/'",
           "xmlns=\"http://www.w3.org/2005/Atom\" xml:lang=\"en\" xml:base=\"https://example.org/\""},
          {kTags, "type='html'", "type=\"html\""},
          {kTags, "type='xhtml'", "type=\"xhtml\""},
          {kTags, "xmlns='http://www.w3.org/1999/xhtml'", "xmlns=\"http://www.w3.org/1999/xhtml\""}}},
        {"envelope.xml", "//item[. = '9.99']", "10.49", ">9.99<", ">10.49<", {{kReferences, "&#xD;", "&#13;"}}},
        {"feed.xml",
         "//item[guid]/guid/@isPermaLink",
         "true",
         "\"false\"",
         "\"true\"",
         {{kReferences, "&#8211;", "\u2013"},
          {kTags, "\"2.0\"\n\txmlns:", "\"2.0\" xmlns:"},
          {kTags, "/\"\n\txmlns:", "/\" xmlns:"},
          {kTags, "+xml\" />", "+xml\"/>"},
          {kEmptyTags, "<description></description>", "<description/>"}}},
        {"formula.xml",
         "/math/@display",
         "inline",
         R"(display="block")",
         R"(display="inline")",
         {{kReferences, "&half;", "<mfrac><mn>1</mn><mn>2</mn></mfrac>"},
          {kReferences, "&InvisibleTimes;", "\u2062"},
          {kReferences, "<mi>&alpha;", "<mi>\u03B1"}}},
        {"manifest.xml",
         "/manifest/@app:versionCode",
         "18",
         "\"17\"",
         "\"18\"",
         {{kTags, "\n    xmlns:tools", " xmlns:tools"},
          {kTags, "\n    package", " package"},
          {kTags, "\n    app:versionCode", " app:versionCode"},
          {kTags, "\n        app:label", " app:label"},
          {kTags, "\n        app:theme", " app:theme"},
          {kTags, "\n        tools:ignore", " tools:ignore"},
          {kTags, "\" />", "\"/>"}}},
        {"names.xml", "//größe[@höhe = 3]", "13 µm", "12½", "13 µm", {{kTags, "höhe='3'", "höhe=\"3\""}}},
        {"outline.xml", "//title", "Müßige Lektüre", "My reading list", "Müßige Lektüre", {}},
        {"package-list.xml",
         "/list/a/@x",
         "0",
         "x = \"1\"",
         "x=\"0\"",
         {{kTags, "  encoding='UTF-8'  standalone='yes' ?>", " encoding=\"UTF-8\" standalone=\"yes\"?>"},
          {kTags, "<list\n>", "<list>"},
          {kTags, "<a   x", "<a x"},
          {kTags, "\n     y\t=\t'2'\n/>", " y=\"2\"/>"},
          {kEmptyTags, "<b\n></b\n>", "<b/>"},
          {kTags, "</list\n>", "</list>"},
          {kAround, "\n\n<!-- one", "\n<!-- one"},
          {kAround, "three --> <?order", "three -->\n<?order"},
          {kAround, "last ?>\n\n", "last ?>\n"}}},
        {"package.xml",
         "/project/version",
         "1.0",
         "<version>1.0-SNAPSHOT<",
         "<version>1.0<",
         {{kTags, "instance\"\n         xsi:", "instance\" xsi:"}}},
        {"page.xml",
         "//li[. = 2]",
         "drei",
         "<li>2<",
         "<li>drei<",
         {{kReferences, "&#160;", "\u00A0"},
          {kReferences, "&#xA0;", "\u00A0"},
          {kTags, "Strict//EN\"\n\t\"http", "Strict//EN\" \"http"},
          {kTags, "\" />", "\"/>"},
          {kTags, "<br />", "<br/>"}}},
        {"page5.xml",
         "//p/@hidden",
         "until-found",
         "hidden=\"\"",
         "hidden=\"until-found\"",
         {{kTags, R"('{"k": [1, 2]}')", R"("{&quot;k&quot;: [1, 2]}")"}}},
        {"placemarks.xml", "//Document/name", "Trees > wells", "Trees &amp; wells", "Trees &gt; wells", {}},
        {"properties.xml",
         "//array/integer",
         "42",
         "<integer>-1<",
         "<integer>42<",
         {{kEmptyTags, "<string></string>", "<string/>"}}},
        {"publication.xml",
         "//dc:title",
         "Faust – Fragment",
         "Faust – Der Tragödie erster Teil",
         "Faust – Fragment",
         {}},
        {"report.xml", "//w:t[. = \"Ms. O'Neill\"]", "O\"Neill", "Ms. O'Neill", "O\"Neill", {}},
        {"schema.xml",
         "//xs:any/@processContents",
         "skip",
         "\"lax\"",
         "\"skip\"",
         {{kReferences, "&lt;none&gt;", "&lt;none>"}, {kValues, "\" unbounded \"", "\"unbounded\""}}},
        {"score.xml", "//alter", "1", "<alter>-1<", "<alter>1<", {}},
        {"service.xml", "//wsdl:part/@name", "head", "\"body\"", "\"head\"", {}},
        {"settings.xml",
         "//compilation/@debug",
         "false",
         R"(debug="true")",
         R"(debug="false")",
         {{kReferences, "&#xA;", "&#10;"},
          {kValues, "\"tabs\tand\nends\"", "\"tabs and ends\""},
          {kValues, "\"\ta\tb\n  c\"", "\" a b   c\""}}},
        {"sheet.xml", "//c[@r = 'B2']/v", "0.05", "4.4999999999999996E-2", "0.05", {}},
        {"sitemap.xml",
         "//priority",
         "0.5",
         "<priority>1.0<",
         "<priority>0.5<",
         {{kAround, "?><urlset", "?>\n<urlset"}}},
        {"statement.xml", "//Ntry/Amt[. = '0.01']", "0.02", "0.01", "0.02", {}},
        {"strings.xml",
         "//string[@name = 'c']",
         "it's \"closed\"",
         "\"unclosed",
         "it's \"closed\"",
         {{kGreater, "&lt;b>now&lt;/b>", "&lt;b&gt;now&lt;/b&gt;"},
          {kReferences, "&apos;", "'"},
          {kGreater, "]] > ok", "]] &gt; ok"}}},
        {"style.xml", "//xsl:output/@method", "xml", "\"text\"", "\"xml\"", {{kReferences, "&#10;", "\n"}}},
        {"track.xml", "//trkpt[@lat < 0]/@lon", "13.25", "\"+13.2\"", "\"13.25\"", {{kTags, "\"no\" ?>", "\"no\"?>"}}},
        {"translation.xml", "//target/@state", "final", "\"new\"", "\"final\"", {}},
    };
    return all;
}

int countOf(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

// What the file is to be after the change.
std::string changed(const Change& change) {
    std::string text = everydayText(change.file);
    EXPECT_EQ(countOf(text, change.before), 1);
    text = replaced(text, change.before, change.after);
    for (const Exception& exception : change.exceptions) {
        EXPECT_NE(countOf(text, exception.before), 0) << exception.before;
        text = replaced(text, exception.before, exception.after);
    }
    return text;
}

// Gives the node that the change is about its value.
void make(const Change& change, Document& document) {
    const Selection<Object> found = ask(document, change.path);
    ASSERT_EQ(found.count(), 1u) << change.path;
    if (Element* const element = asElement(found[0])) {
        setText(*element, change.value);
    } else {
        static_cast<Attribute&>(found[0]).setValue(change.value);
    }
}

std::string encoded(const std::string& text, const std::string& name, bool mark) {
    for (const EncodingUnderTest& encoding : encodingsUnderTest()) {
        if (encoding.name == name) return encode(text, encoding, mark).bytes;
    }
    throw std::runtime_error("no encoding under test: " + name);
}

TEST(EverydaySaveTest, OnlyTheChangedValueDiffersButForWhatThePageNames) {
    std::set<std::string> files;
    for (const Change& change : changes()) {
        SCOPED_TRACE(change.file);
        files.insert(change.file);
        const std::string before = everydayText(change.file);
        const bool isLatin1 = before.find("encoding=\"ISO-8859-1\"") != std::string::npos;
        const char* const encoding = isLatin1 ? "ISO-8859-1" : "UTF-8";
        const ScratchFile file("everyday.xml", encoded(before, encoding, false));
        ReadResult document = Xml::readFile(file.path, everything());
        ASSERT_TRUE(document) << document.message();
        make(change, *document);
        const WriteResult saved = saveFile(*document, file.path, asRead(*document));
        EXPECT_TRUE(saved) << saved.message();
        EXPECT_EQ(test::readFile(file.path), encoded(changed(change), encoding, false));
    }
    for (const std::string& file : everydayFiles()) EXPECT_EQ(files.count(file), 1u) << file;
}

// With another name for the encoding, where it is declared.
std::string declaredAs(const std::string& text, const std::string& encoding) {
    static const Pattern form("(<\\?xml[^?]*encoding=)(\"[^\"]*\"|'[^']*')");
    const Pattern::Groups parts = form.matchBeginOf(text);
    if (parts.empty()) return text;
    const std::string quote = parts[2].substr(0, 1);
    return parts[1] + quote + encoding + quote + text.substr(parts[0].size());
}

TEST(EverydaySaveTest, SoItIsInOtherEncodingsAndWithOtherLineEnds) {
    const struct {
        const char* encoding;
        const char* declared;
        bool mark;
        const char* newline;
    } kForms[] = {
        {"UTF-8", "utf-8", true, "\n"},       {"UTF-8", "UTF-8", false, "\r\n"},  {"UTF-8", "UTF-8", true, "\r"},
        {"UTF-16LE", "UTF-16", true, "\r\n"}, {"UTF-16BE", "UTF-16", true, "\n"},
    };
    for (const auto& form : kForms) {
        const auto inForm = [&form](const std::string& text) {
            const std::string lines = replaced(declaredAs(text, form.declared), "\n", form.newline);
            return encoded(lines, form.encoding, form.mark);
        };
        for (const Change& change : changes()) {
            SCOPED_TRACE(std::string(form.encoding) + " " + change.file);
            ReadResult document = readText(inForm(everydayText(change.file)), everything());
            ASSERT_TRUE(document) << document.message();
            make(change, *document);
            EXPECT_EQ(writeText(*document, asRead(*document)).text(), inForm(changed(change)));
        }
    }
}

TEST(EverydaySaveTest, TheExceptionsStandOnThePage) {
    const std::string page = test::readFile(sourceFolder() + "/docs/standard.md");
    const std::size_t begin = page.find("### What is kept, and what changes");
    ASSERT_NE(begin, std::string::npos);
    const std::string part =
        replaced(replaced(page.substr(begin, page.find("\n| ", begin) - begin), "\n", " "), "  ", " ");
    for (const char* rule : {kReferences, kGreater, kValues, kTags, kEmptyTags, kAround})
        EXPECT_NE(part.find(rule), std::string::npos) << rule;
}

}  // namespace
}  // namespace Xml::test
