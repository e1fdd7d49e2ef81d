#pragma once

#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/stream/InStream.h"
#include "xml/stream/OutStream.h"
#include <array>
#include <functional>
#include <string>

// Counts what the library does where a caller can see it: the calls that it makes to a source, to a sink and to nodes of a
// caller's own classes, and what it takes from the heap. The operators new of this program count.
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

// At 8n every kind of work may be eight times that at n and a tenth, for what doubles as it grows; beside that, `fixed`
// is for what does not depend on the size. `kind` is what the job is about: it must have been counted.
void expectLinear(const Jobs& jobs, Kind kind, int n = 1'000, long long fixed = 64);

// The same of one kind of work alone. It must be at least `least`, at 8n.
void expectLinearIn(const Jobs& jobs, Kind kind, int n, long long least);

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
