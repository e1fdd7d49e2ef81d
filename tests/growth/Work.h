#pragma once

#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/stream/InStream.h"
#include "xml/stream/OutStream.h"
#include <array>
#include <functional>
#include <string>
#include <vector>

// Counts what the library does where a caller can see it: the calls that it makes to a source, to a sink and to nodes
// of a caller's own classes, and what it takes from the heap. The operators new of this program count.
//
// Work is counted at n, 2n, 4n and 8n, and a power of n is fitted to the four counts. The exponent must be at most
// kMostExponent for every kind of work. `growth_tests --gtest_output=xml` gives the exponent of each case as a property
// of its test, and the largest of all as the attribute `largest_exponent` of <testsuites>.
namespace Xml::test {

enum Kind { SourceCalls, SinkCalls, NodeCalls, Allocations, AllocatedBytes, kKinds };
constexpr const char* kKindNames[kKinds] = {"calls of the source", "calls of the sink", "calls of nodes", "allocations",
                                            "bytes allocated"};

using Work = std::array<long long, kKinds>;

// All that was counted since the program began.
extern Work totals;

// What `job` took.
Work workOf(const std::function<void()>& job);

// Makes the job for a size; making it is not counted.
using Jobs = std::function<std::function<void()>(int)>;

// The work of such jobs at n, 2n, 4n and 8n.
using Growth = std::array<Work, 4>;
Growth growthOf(const Jobs& jobs, int n);

constexpr double kMostExponent = 1.1;

// Of the kind that a job is about: below it the counter does not see what grows.
constexpr double kLeastExponent = 0.9;

// The exponent of n with which the work of a kind grows: the slope of the line of least squares through the logarithms.
// 0 is the same at all sizes, 1 is linear, 2 is quadratic. Too little work to tell, such as the first blocks of a list
// that doubles, is 0.
double exponentOf(const Growth& growth, Kind kind);

// The kinds of work that grow faster than kMostExponent allows.
std::vector<Kind> tooFast(const Growth& growth);

// No kind of work may grow too fast, and the one that the job is about must grow. Cases have different names within a
// test: failures and the properties of the test tell them apart by these.
void expectLinear(const std::string& name, const Jobs& jobs, Kind kind, int n = 1'000);

// No kind of work may grow too fast. Returns the exponent of the one that the job is about.
double expectAtMostLinear(const std::string& name, const Jobs& jobs, Kind kind, int n);

// That kind of work must be met and must not grow, but for a tenth from n to 8n. The others may grow linearly.
void expectSame(const std::string& name, const Jobs& jobs, Kind kind, int n);

// A source with only the four primitives.
class CountingSource : public InStream {
public:
    explicit CountingSource(const std::string& bytes) : text(bytes) {}

    bool getChar(char& c) override {
        ++totals[SourceCalls];
        if (atEnd()) return false;
        c = text[static_cast<std::size_t>(position++)];
        return true;
    }
    int getPosition() const override {
        ++totals[SourceCalls];
        return position;
    }
    void setPosition(int p) override {
        ++totals[SourceCalls];
        position = p;
    }
    bool eof() override {
        ++totals[SourceCalls];
        return atEnd();
    }

private:
    bool atEnd() const { return position < 0 || static_cast<std::size_t>(position) >= text.size(); }

    const std::string& text;
    int position = 0;
};

// A sink with only the listed operations, which keeps nothing.
class CountingSink : public OutStream {
public:
    bool isValid() const override {
        ++totals[SinkCalls];
        return true;
    }
    void putChar(char) override {
        ++totals[SinkCalls];
        ++position;
    }
    int getPosition() const override {
        ++totals[SinkCalls];
        return position;
    }
    void setPosition(int p) override {
        ++totals[SinkCalls];
        position = p;
    }

private:
    int position = 0;
};

// Nodes of a caller's own, which the library must ask where it knows the answer of its own ones.
class CountingElement : public Element {
public:
    using Element::Element;
    ~CountingElement() override { ++totals[NodeCalls]; }

    void setDtd(const Dtd* link) override {
        ++totals[NodeCalls];
        Element::setDtd(link);
    }
    Object* clone() const override {
        ++totals[NodeCalls];
        return new CountingElement(*this);
    }
    const std::string& toString() const override {
        ++totals[NodeCalls];
        return Element::toString();
    }
    bool isElement() const override {
        ++totals[NodeCalls];
        return true;
    }
    bool isCharData() const override {
        ++totals[NodeCalls];
        return false;
    }
    void write(OutStream& out) const override {
        ++totals[NodeCalls];
        Element::write(out);
    }
};

class CountingCharData : public CharData {
public:
    using CharData::CharData;
    ~CountingCharData() override { ++totals[NodeCalls]; }

    void setDtd(const Dtd* link) override {
        ++totals[NodeCalls];
        CharData::setDtd(link);
    }
    Object* clone() const override {
        ++totals[NodeCalls];
        return new CountingCharData(*this);
    }
    const std::string& toString() const override {
        ++totals[NodeCalls];
        return CharData::toString();
    }
    bool isElement() const override {
        ++totals[NodeCalls];
        return false;
    }
    bool isCharData() const override {
        ++totals[NodeCalls];
        return true;
    }
    void write(OutStream& out) const override {
        ++totals[NodeCalls];
        CharData::write(out);
    }
};

}  // namespace Xml::test
