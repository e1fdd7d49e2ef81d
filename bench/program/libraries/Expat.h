// Expat makes no tree: what it is measured at is reading alone, with a handler of elements and one of text that count,
// or with handlers of everything that look at it.
#pragma once
#include "libraries/Seen.h"
#include "libraries/Unreadable.h"
#include <cstdio>
#include <expat.h>
#include <memory>
#include <string>

namespace bench {

struct Expat {
    static constexpr char kName[] = "expat";
    using Tree = Seen;
    using Parser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

    static Parser parser(Seen& seen) {
        Parser parser(XML_ParserCreate(nullptr), XML_ParserFree);
        XML_SetUserData(parser.get(), &seen);
        XML_SetStartElementHandler(parser.get(), [](void* user, const char*, const char** attributes) {
            ++static_cast<Seen*>(user)->elements;
            for (; *attributes; attributes += 2) ++static_cast<Seen*>(user)->attributes;
        });
        XML_SetCharacterDataHandler(parser.get(),
                                    [](void* user, const char*, int) { ++static_cast<Seen*>(user)->texts; });
        return parser;
    }
    static void check(const Parser& parser, XML_Status status) {
        if (status == XML_STATUS_OK) return;
        throw Unreadable("line " + std::to_string(XML_GetCurrentLineNumber(parser.get())) + ": " +
                         XML_ErrorString(XML_GetErrorCode(parser.get())));
    }
    static Tree parse(const std::string& text) {
        Seen seen;
        const Parser in = parser(seen);
        check(in, XML_Parse(in.get(), text.data(), static_cast<int>(text.size()), true));
        return seen;
    }
    static Tree parseFile(const std::string& path) {
        constexpr int kBlock = 1 << 16;
        Seen seen;
        const Parser in = parser(seen);
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
        if (!file) throw Unreadable("cannot be opened");
        for (bool atEnd = false; !atEnd;) {
            const std::size_t size = std::fread(XML_GetBuffer(in.get(), kBlock), 1, kBlock, file.get());
            atEnd = size < kBlock;
            check(in, XML_ParseBuffer(in.get(), static_cast<int>(size), atEnd));
        }
        return seen;
    }
};

// Handlers that look at what a reader of events is asked for.
struct ExpatEvents {
    static constexpr char kName[] = "expat";

    static SeenEvents& seenBy(void* user) { return *static_cast<SeenEvents*>(user); }

    static SeenEvents parse(const std::string& text) {
        SeenEvents seen;
        const Expat::Parser in(XML_ParserCreate(nullptr), XML_ParserFree);
        XML_SetUserData(in.get(), &seen);
        XML_SetElementHandler(
            in.get(),
            [](void* user, const char* name, const char** attributes) {
                ++seenBy(user).elements;
                seenBy(user).name(name);
                for (; *attributes; attributes += 2) seenBy(user).attribute(attributes[1]);
            },
            [](void* user, const char* name) { seenBy(user).name(name); });
        XML_SetCharacterDataHandler(in.get(), [](void* user, const char* data, int size) {
            seenBy(user).text({data, static_cast<std::size_t>(size)});
        });
        XML_SetCommentHandler(in.get(), [](void* user, const char* data) { seenBy(user).text(data); });
        XML_SetProcessingInstructionHandler(in.get(), [](void* user, const char* target, const char* data) {
            seenBy(user).name(target);
            seenBy(user).text(data);
        });
        XML_SetStartDoctypeDeclHandler(
            in.get(), [](void* user, const char* name, const char*, const char*, int) { seenBy(user).name(name); });
        Expat::check(in, XML_Parse(in.get(), text.data(), static_cast<int>(text.size()), true));
        return seen;
    }
};

}  // namespace bench
