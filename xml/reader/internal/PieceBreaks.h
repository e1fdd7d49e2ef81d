#pragma once

namespace Xml {

class InStream;

// The line breaks that the tokens of a piece of content leave, where there is a CR in it. All bytes are of the window
// of the stream.
//
// They follow from which bytes the tokens consume, in which order. A piece is looked at first and then read, and a word
// ends with a byte that is read, looked at and read again. Bytes that are read again make the same line breaks again,
// but for one case: where the last byte before was a CR, and the first that is read again is a CR or LF, that one ends
// a line too. Only two things can be read again after a CR: what follows a name in a tag, and a text whose first token
// a CR ends. Everything else is noted once.
namespace PieceBreaks {

// Bytes that are read once, and after them one that is neither CR nor LF.
void note(InStream& in, const char* from, const char* to);

// A start tag from its name on.
void noteStartTag(InStream& in, const char* name, const char* to);

// A text, which white space from `begin` to `first` belongs to. Its first token, with the byte after a word, ends at
// `tried`; null where that is as plain text has it. A '<' follows at `to`.
void noteText(InStream& in, const char* begin, const char* first, const char* tried, const char* to);

}  // namespace PieceBreaks

}  // namespace Xml
