// This library reading XML 1.0, as its users call it. What is measured so is this library's too: the names of its
// figures are the same. A document that it refuses is left out under a name of its own.
#pragma once
#include "libraries/OrvXml.h"
#include "libraries/Seen.h"
#include "libraries/Unreadable.h"
#include "xml/standard.h"
#include <cstddef>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

namespace bench {

struct Standard : OrvXml {
    static constexpr char kLeftOutAs[] = "standard";

    static Tree parseAs(const std::string& text, const Xml::ReadOptions& options) {
        Xml::ReadResult result = Xml::readText(text, options);
        if (!result) throw Unreadable(result.problems().front().toString());
        return result.take();
    }
    static Tree parse(const std::string& text) { return parseAs(text, {}); }
    static std::size_t write(const Tree& tree) { return Xml::writeText(*tree).text().size(); }
};

// Nothing is dropped, and every node knows its place.
struct StandardAll : Standard {
    static Tree parse(const std::string& text) {
        Xml::ReadOptions options = Xml::everything();
        options.keepPlaces = true;
        return parseAs(text, options);
    }
};

// Nothing is dropped, and nothing added.
struct StandardRaw : Standard {
    static Tree parse(const std::string& text) { return parseAs(text, Xml::everything()); }
    static std::size_t write(const Tree& tree) { return Xml::writeText(*tree, Xml::asRead(*tree)).text().size(); }
};

// The same into a file that is replaced.
struct StandardSaved : StandardRaw {
    static void save(const Tree& tree, const std::string& path) {
        const Xml::WriteResult result = Xml::saveFile(*tree, path, Xml::asRead(*tree));
        if (!result) throw std::runtime_error(result.message());
    }
};

// The same text written over what is in the file, which is lost when that fails: what a safe save is compared with.
struct StandardInPlace : StandardRaw {
    static constexpr char kName[] = "in-place";

    static void save(const Tree& tree, const std::string& path) {
        const Xml::WriteResult result = Xml::writeText(*tree, Xml::asRead(*tree));
        const std::string& text = result.text();
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        std::size_t written = 0;
        while (file >= 0 && written < text.size()) {
            const ssize_t count = ::write(file, text.data() + written, text.size() - written);
            if (count <= 0) break;
            written += static_cast<std::size_t>(count);
        }
        const bool isSaved = file >= 0 && written == text.size() && ::fsync(file) == 0;
        if (file >= 0) ::close(file);
        if (!isSaved) throw std::runtime_error("cannot write " + path);
    }
};

// Event by event.
struct StandardEvents {
    static constexpr char kName[] = "orvxml";

    static SeenEvents parse(const std::string& text) {
        using Event = Xml::StreamReader::Event;
        SeenEvents seen;
        Xml::StreamReader in{std::string_view(text)};
        for (Event event = in.next(); event != Event::Finished; event = in.next()) {
            if (event == Event::Failed) throw Unreadable(in.problems().front().toString());
            seen.name(in.name());
            seen.text(in.text());
            if (event != Event::Start) continue;
            ++seen.elements;
            for (int i = 0, count = in.attributeCount(); i < count; ++i) seen.attribute(in.attributeValue(i));
        }
        return seen;
    }
};

}  // namespace bench
