#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

namespace Xml::internal {

// Not for callers: where the lines of a source end, a part of every InStream.
//
// A line break is the second byte of CR LF or CR CR, among the bytes in the order in which they are consumed. Going
// back in the source does not go back here: a CR that was consumed last makes a pair with whatever is consumed next.
// The position after each break is kept once, in the order met.
//
// Recording a new break takes O(1) amortised, recording one again and looking up O(log n).
class LineBreaks {
public:
    LineBreaks();
    ~LineBreaks();
    LineBreaks(const LineBreaks&) = delete;
    LineBreaks& operator=(const LineBreaks&) = delete;

    // Bytes were consumed, none of them CR or LF.
    void noteOthers() { afterReturn = false; }

    // CR or LF was consumed. `positionAfter()` is the position after it, asked for only where it makes a break.
    template <class Position>
    void noteBreakByte(char c, const Position& positionAfter) {
        if (afterReturn) record(positionAfter());
        afterReturn = c == '\r';
    }

    // The bytes [from, to) were consumed in this order. `positionOf(byte)` is the position of one of them or of `to`.
    template <class PositionOf>
    void noteRun(const char* from, const char* to, const PositionOf& positionOf) {
        if (afterReturn) from = noteAfterReturn(from, to, positionOf);
        while (from != to) {
            from = static_cast<const char*>(std::memchr(from, '\r', static_cast<std::size_t>(to - from)));
            if (from == nullptr) return;
            from = noteAfterReturn(from + 1, to, positionOf);
        }
    }

    // A CR was consumed, and then bytes of [from, to), up to the first that is none. Returns the end of what was noted.
    template <class PositionOf>
    const char* noteAfterReturn(const char* from, const char* to, const PositionOf& positionOf) {
        afterReturn = true;
        while (afterReturn && from != to) {
            const char c = *from++;
            if (c == '\r' || c == '\n') record(positionOf(from));
            afterReturn = c == '\r';
        }
        return from;
    }

    // Whether the byte consumed last is a CR.
    bool isAfterReturn() const { return afterReturn; }
    void setAfterReturn(bool after) { afterReturn = after; }

    // Keeps the position after a break, unless it is kept already.
    void record(int position) {
        if (outOfOrder == nullptr && (positions.empty() || positions.back() < position)) {
            positions.push_back(position);
        } else {
            recordBetween(position);
        }
    }

    bool empty() const { return positions.empty(); }

    // For a position that is kept its number, counted from 1; for another one how many are kept, at least 1.
    int lineAt(int position) const;

    // The distance from what was kept before the first that is not less than the position, from 0 where there is none.
    int columnAt(int position) const;

private:
    struct OutOfOrder;

    void recordBetween(int position);
    int greatest() const;
    std::size_t firstNotBefore(int position) const;
    void leaveOrder();

    std::vector<int> positions;              // in the order met
    std::unique_ptr<OutOfOrder> outOfOrder;  // once they do not rise any more
    bool afterReturn = false;
};

}  // namespace Xml::internal
