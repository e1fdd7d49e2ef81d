#pragma once

#include <ostream>
#include <string>

namespace Xml::test {

// A sink that takes a byte at a time, with the rule of indentation in plain words. It shares nothing with the library.
class NaiveSink {
public:
    virtual ~NaiveSink() = default;

    virtual void putChar(char c) = 0;
    virtual int getPosition() const = 0;
    virtual void setPosition(int position) = 0;

    void put(char c) {
        if (c == '\n') {
            atLineStart = true;
        } else if (atLineStart) {
            atLineStart = false;
            for (int i = 0; i < level; ++i) putChar('\t');
        }
        putChar(c);
    }
    void put(const std::string& text) {
        for (char c : text) put(c);
    }
    void putRaw(const std::string& text) {
        for (char c : text) putChar(c);
    }
    void incTab() { ++level; }
    void decTab() {
        if (level > 0) --level;
    }

private:
    int level = 0;
    bool atLineStart = true;
};

// Over a standard stream.
class NaiveStreamSink : public NaiveSink {
public:
    explicit NaiveStreamSink(std::ostream& target) : stream(target) {}

    void putChar(char c) override { stream.put(c); }
    int getPosition() const override { return stream.fail() ? -1 : static_cast<int>(stream.tellp()); }
    void setPosition(int position) override {
        if (stream.good()) stream.seekp(position);
    }

private:
    std::ostream& stream;
};

// Over bytes in memory that behave as a file: written over, or extended with zeros up to the place.
class NaiveFileSink : public NaiveSink {
public:
    std::string bytes;

    void putChar(char c) override {
        if (place >= bytes.size()) bytes.resize(place + 1, '\0');
        bytes[place++] = c;
    }
    int getPosition() const override { return static_cast<int>(place); }
    void setPosition(int position) override {
        if (position >= 0) place = static_cast<std::size_t>(position);
    }

private:
    std::size_t place = 0;
};

}  // namespace Xml::test
