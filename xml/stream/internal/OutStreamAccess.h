#pragma once

#include "xml/stream/OutStream.h"
#include <cstddef>
#include <exception>
#include <limits>
#include <string_view>

namespace Xml {

// What nodes use of a sink beside its public operations.
struct OutStreamAccess {
    // A position that no stream ever stands at: the record of a node past 2^31 - 1 bytes, which must not be taken for
    // another one there.
    static constexpr int kUnrecordable = std::numeric_limits<int>::min();

    // Lets the stream count its position from here on, if it can, instead of being asked for it at every node. The
    // outermost one counts.
    class Counting {
    public:
        explicit Counting(OutStream& stream) : out(stream), outermost(!stream.counting) {
            if (outermost) resume(out);
        }
        ~Counting() {
            if (outermost) out.counting = false;
        }
        Counting(const Counting&) = delete;
        Counting& operator=(const Counting&) = delete;

    private:
        OutStream& out;
        bool outermost;
    };

    // A write under way: one that is left by an exception leaves the level of tabs as it was.
    class Writing {
    public:
        explicit Writing(OutStream& stream)
            : out(stream), tabLevel(stream.tabLevel), exceptions(std::uncaught_exceptions()) {}
        ~Writing() {
            if (std::uncaught_exceptions() == exceptions) return;
            out.tabLevel = tabLevel;
            out.cutShort = true;
        }
        Writing(const Writing&) = delete;
        Writing& operator=(const Writing&) = delete;

    private:
        OutStream& out;
        std::int32_t tabLevel;
        int exceptions;
    };

    // Takes the count anew from the stream, after code that may have moved it unseen.
    static void resume(OutStream& out) {
        out.counted = out.countFrom();
        out.counting = out.counted >= 0;
    }

    // The position after so many more bytes, which a stream that counts has still to be given.
    static int position(const OutStream& out, std::size_t pending = 0) {
        if (!out.counting) return out.getPosition();
        const std::int64_t position = out.counted + static_cast<std::int64_t>(pending);
        return position <= std::numeric_limits<int>::max() ? static_cast<int>(position) : kUnrecordable;
    }

    // Whether a node that has not changed and was last written from `writeStart` to `writeEnd` is there already.
    static bool standsAt(const OutStream& out, int position, int writeStart, int writeEnd) {
        return !out.cutShort && writeStart == position && position != kUnrecordable && writeEnd != kUnrecordable;
    }

    // Calls put for runs of tabs, as many in all as the level says, until it returns false: whether it never did.
    template <class Put>
    static bool eachRunOfTabs(const OutStream& out, Put put) {
        constexpr std::string_view kTabs = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
        for (auto left = static_cast<std::size_t>(out.tabLevel); left > 0;) {
            const std::string_view tabs = kTabs.substr(0, left);
            if (!put(tabs)) return false;
            left -= tabs.size();
        }
        return true;
    }

    // As the operations of the stream.
    static void incTab(OutStream& out) {
        if (out.tabLevel < std::numeric_limits<std::int32_t>::max()) ++out.tabLevel;
    }
    static void decTab(OutStream& out) {
        if (out.tabLevel > 0) --out.tabLevel;
    }

    // As OutStream::writeDataHolder.
    static void putAsIs(OutStream& out, std::string_view text) {
        if (text.empty() || out.putChars(text.data(), text.size())) return;
        for (const char c : text) out.putChar(c);
    }

    static void put(OutStream& out, std::string_view text) { out.putIndented(text.data(), text.size()); }
};

}  // namespace Xml
