#pragma once

namespace Xml::internal {

// Not for callers: the bytes in memory that a source has lent to the tokenizer, a part of every InStream.
//
// The tokenizer takes bytes from the cursor on, without asking the source. While bytes are lent the cursor says where
// the source stands; the source itself moves there when it gets them back.
struct Window {
    enum class Loan : unsigned char {
        None,
        TooFew,   // none either, and those lent last were too few to go on
        Never,    // and the source is not asked again
        ForNow,   // once given back, the bytes may change
        ForGood,  // the bytes never change, and end where the data does
    };

    bool isLent() const { return loan >= Loan::ForNow; }

    const char* begin = nullptr;
    const char* cursor = nullptr;  // the next byte
    const char* end = nullptr;
    int base = -1;  // the position of `begin`, -1 until it is asked for
    Loan loan = Loan::None;
};

}  // namespace Xml::internal
