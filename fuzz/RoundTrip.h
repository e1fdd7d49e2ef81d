#pragma once

#include <string>

namespace Xml {
class Document;
class Dtd;
}  // namespace Xml

namespace Xml::test {
class MessageCollector;
}  // namespace Xml::test

// What writing and reading again does to a document or a document type where it does not give the same back: the few
// cases that the dialect has, each known by a rule.
namespace Xml::fuzz {

// A text as it was written, and what is known about reading it again.
struct Written {
    std::string text;

    // Why a reader must refuse the text; empty where it must take it.
    std::string refusal;

    // What the same writes once it was read from the text.
    std::string nextText;
};

// Refused are: a subset without any declaration; a choice of less than two names, which writes nothing; two repetition
// marks in a row, as a lone member with a mark in a group with a mark writes them.
//
// Default values are written escaped and read as they stand, so an "&" in one grows by "amp;". A tab is written at each
// line's start within an attribute list, that of a value's further lines included, and read as part of the value.
// What writing reports is taken from the collector.
Written writtenDtd(const Dtd& dtd, test::MessageCollector& diagnostics);

// Refused is further: text that begins with a quote or with "&" while nothing after it closes that. What closed it may
// have stood in a comment, which is not written.
//
// The further lines of attribute values grow by the tabs of their element's level, and texts in a row become one. The
// document itself becomes what a reader must make of the text.
Written writtenDocument(Document& document, test::MessageCollector& diagnostics);

}  // namespace Xml::fuzz
