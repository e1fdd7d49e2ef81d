// This library, as its users call it.
#pragma once
#include "libraries/Seen.h"
#include "libraries/Unreadable.h"
#include "xml/xml.h"
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace bench {

struct OrvXml {
    static constexpr char kName[] = "orvxml";
    using Tree = std::unique_ptr<Xml::Document>;

    static Tree parseFrom(Xml::InStream& in) {
        Xml::DocumentReader reader;
        if (!reader.parse(in)) throw Unreadable(reader.getErrorMessage());
        return Tree(reader.extractDocument());
    }
    static Tree parse(const std::string& text) {
        Xml::StringInStream in(text);
        return parseFrom(in);
    }
    // A standard file stream.
    static Tree parseFile(const std::string& path) {
        std::ifstream file;
        Xml::FileInStream in(path, &file);
        return parseFrom(in);
    }
    static Seen read(const Tree& tree) {
        Seen seen;
        Xml::DataHolder text;
        struct Level {
            const Xml::Element* element;
            int next;
        };
        std::vector<Level> open;
        const auto enter = [&](const Xml::Element* element) {
            seen.element(element->getName());
            for (int i = 0, count = element->getAttributeCount(); i < count; ++i) {
                const Xml::Attribute* attribute = element->getAttribute(i);
                seen.attribute(attribute->getName(), attribute->getValue());
            }
            open.push_back({element, 0});
        };
        enter(tree->getRoot());
        while (!open.empty()) {
            Level& level = open.back();
            if (level.next == level.element->getChildCount()) {
                open.pop_back();
                continue;
            }
            const Xml::Object* child = level.element->getChild(level.next++);
            if (child->isElement()) {
                enter(child->toElement());
            } else if (child->isCharData()) {
                child->toCharData()->getData(&text);
                seen.text(text);
            }
        }
        return seen;
    }
    static std::size_t write(const Tree& tree) {
        std::ostringstream text;
        Xml::FileOutStream out(&text);
        tree->toStream(out);
        return static_cast<std::size_t>(text.tellp());
    }
    static Tree copy(const Tree& tree) { return Tree(tree->clone()->toDocument()); }
    // How many nodes a path finds; taking the path apart is part of it, here and in the other libraries.
    static std::size_t find(const Tree& tree, const std::string& path) {
        return Xml::XPath(tree.get()).GetValues(OrvSys::UTF8ToUni16Char(path));
    }
};

// The same from a file of the platform layer.
struct OrvXmlPlatformFile : OrvXml {
    static Tree parseFile(const std::string& path) {
        Xml::FileSpecInStream in{OrvSys::FileSpec(path)};
        return parseFrom(in);
    }
};

}  // namespace bench
