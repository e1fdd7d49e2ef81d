#pragma once

#include "xml/stream/InStream.h"
#include <algorithm>
#include <cstddef>
#include <string>

namespace Xml::test {

// A source that lends its bytes in pieces of a size, and keeps count.
class LendingSource : public InStream {
public:
    LendingSource(const std::string& bytes, std::size_t pieceSize, Window::Loan itsLoan = Window::Loan::ForNow,
                  bool withPosition = true)
        : text(bytes), piece(pieceSize), loan(itsLoan), hasBase(withPosition) {}

    bool getChar(char& c) override {
        releaseWindow();
        if (position < 0 || at() >= text.size()) return false;
        c = text[at()];
        ++position;
        return true;
    }
    int getPosition() const override {
        releaseWindow();
        return position;
    }
    void setPosition(int place) override {
        releaseWindow();
        position = place;
    }
    bool eof() override {
        releaseWindow();
        return position < 0 || at() >= text.size();
    }

    mutable int position = 0;  // where the source stands, whatever the tokenizer has taken
    int lent = 0;
    mutable int takenBack = 0;
    mutable int askedForPosition = 0;

protected:
    bool lendBytes(Window& given) override {
        if (piece == 0 || position < 0 || at() >= text.size()) return false;
        ++lent;
        // The piece that the position lies in, so that stepping back inside it is seen as well.
        const std::size_t begin = at() / piece * piece;
        const char* const bytes = text.data();
        given = {bytes + begin, bytes + at(), bytes + std::min(begin + piece, text.size()),
                 hasBase ? static_cast<int>(begin) : -1, loan};
        return true;
    }
    void takeBytesBack(const Window& given) const override {
        ++takenBack;
        position = static_cast<int>(given.cursor - text.data());
    }
    int positionOfBytes(const Window& given) const override {
        ++askedForPosition;
        return static_cast<int>(given.begin - text.data());
    }

private:
    std::size_t at() const { return static_cast<std::size_t>(position); }

    std::string text;
    std::size_t piece;
    Window::Loan loan;
    bool hasBase;
};

}  // namespace Xml::test
