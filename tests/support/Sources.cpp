#include "support/Sources.h"

#include "orvsys/Files.h"
#include "support/Places.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/StringInStream.h"
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <unistd.h>

namespace Xml::test {

std::ostream& operator<<(std::ostream& out, Source source) {
    const char* const kNames[] = {"string", "file stream", "platform file", "bare source"};
    return out << kNames[static_cast<std::size_t>(source)];
}

void withSource(Source source, const std::string& text, const std::function<void(InStream&)>& use) {
    const bool needsFile = source == Source::FileStream || source == Source::PlatformFile;
    const std::string path = scratchPath("source");
    if (needsFile) writeFile(path, text);
    withSource(source, text, path, use);
    if (needsFile) std::remove(path.c_str());
}

void withSource(Source source, const std::string& text, const std::string& path,
                const std::function<void(InStream&)>& use) {
    if (source == Source::String) {
        StringInStream in(text);
        use(in);
    } else if (source == Source::Bare) {
        BareInStream in(text);
        use(in);
    } else if (source == Source::FileStream) {
        std::ifstream file;
        FileInStream in(path, &file);
        use(in);
    } else {
        FileSpecInStream in{OrvSys::FileSpec(path)};
        use(in);
    }
}

std::string scratchPath(const std::string& name) {
    return scratchFolder() + "/" + std::to_string(getpid()) + "-" + name;
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file) throw std::runtime_error("cannot write " + path);
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

ScratchFile::ScratchFile(const std::string& name, const std::string& bytes) : path(scratchPath(name)) {
    std::remove(path.c_str());  // to empty a file that is there waits for the disk
    writeFile(path, bytes);
}

ScratchFile::~ScratchFile() { std::remove(path.c_str()); }

std::string documentPath(const std::string& name) { return dataFolder() + "/" + name; }

const std::string& documentText(const std::string& name) {
    static std::map<std::string, std::string> texts;
    std::string& text = texts[name];
    if (text.empty()) text = readFile(documentPath(name));
    return text;
}

}  // namespace Xml::test
