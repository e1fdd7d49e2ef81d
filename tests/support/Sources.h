#pragma once

#include "xml/stream/InStream.h"
#include <functional>
#include <iosfwd>
#include <string>

namespace Xml::test {

// The kinds of source that everything which reads is tested over.
enum class Source { String, FileStream, PlatformFile, Bare };

constexpr Source kAllSources[] = {Source::String, Source::FileStream, Source::PlatformFile, Source::Bare};

// Those whose end of data shows at once. A file stream shows it one read late, as a zero byte for the tokenizer.
constexpr Source kPromptSources[] = {Source::String, Source::PlatformFile, Source::Bare};

std::ostream& operator<<(std::ostream& out, Source source);

// Only the four primitives, as a caller would write them.
class BareInStream : public InStream {
public:
    explicit BareInStream(const std::string& bytes) : text(bytes) {}

    bool getChar(char& c) override {
        if (eof()) return false;
        c = text[static_cast<std::size_t>(position++)];
        return true;
    }
    int getPosition() const override { return position; }
    void setPosition(int p) override { position = p; }
    bool eof() override { return position < 0 || static_cast<std::size_t>(position) >= text.size(); }

private:
    std::string text;
    int position = 0;
};

// Calls `use` with a stream of that kind over `text`. Files are made in the scratch folder and removed again.
void withSource(Source source, const std::string& text, const std::function<void(InStream&)>& use);

// The same for a caller that keeps a file: what is in the file at the path must be the text.
void withSource(Source source, const std::string& text, const std::string& path,
                const std::function<void(InStream&)>& use);

// A path in the scratch folder that no other test process uses; nothing is created.
std::string scratchPath(const std::string& name);

void writeFile(const std::string& path, const std::string& bytes);
std::string readFile(const std::string& path);

// A file in the scratch folder that goes with the object.
class ScratchFile {
public:
    ScratchFile(const std::string& name, const std::string& bytes);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string path;
};

// The seven documents of others that ship with the examples, by file name; and the text of one.
const char* const kDocuments[] = {"mame-nes.xml",       "vk.xml",      "jacob-leisler.svg.xml",
                                  "strawberry.svg.xml", "cldr-cs.xml", "cldr-annot-ka.xml",
                                  "fugue1.mscx.xml"};
std::string documentPath(const std::string& name);
const std::string& documentText(const std::string& name);

}  // namespace Xml::test
