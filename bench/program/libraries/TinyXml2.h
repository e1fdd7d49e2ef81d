// tinyxml2 with its defaults.
#pragma once
#include "libraries/Seen.h"
#include "libraries/Unreadable.h"
#include <memory>
#include <string>
#include <tinyxml2.h>

namespace bench {

struct TinyXml2 {
    static constexpr char kName[] = "tinyxml2";
    using Tree = std::unique_ptr<tinyxml2::XMLDocument>;

    struct Ways {
        static const tinyxml2::XMLNode* child(const tinyxml2::XMLNode* node) { return node->FirstChild(); }
        static const tinyxml2::XMLNode* next(const tinyxml2::XMLNode* node) { return node->NextSibling(); }
        static const tinyxml2::XMLNode* parent(const tinyxml2::XMLNode* node) { return node->Parent(); }
    };

    static Tree parse(const std::string& text) {
        auto tree = std::make_unique<tinyxml2::XMLDocument>();
        if (tree->Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS) throw Unreadable(tree->ErrorStr());
        return tree;
    }
    static Tree parseFile(const std::string& path) {
        auto tree = std::make_unique<tinyxml2::XMLDocument>();
        if (tree->LoadFile(path.c_str()) != tinyxml2::XML_SUCCESS) throw Unreadable(tree->ErrorStr());
        return tree;
    }
    static Seen read(const Tree& tree) {
        Seen seen;
        walk<Ways>(static_cast<const tinyxml2::XMLNode*>(tree.get()), [&](const tinyxml2::XMLNode* node) {
            if (const tinyxml2::XMLElement* element = node->ToElement()) {
                seen.element(element->Name());
                for (auto attribute = element->FirstAttribute(); attribute; attribute = attribute->Next()) {
                    seen.attribute(attribute->Name(), attribute->Value());
                }
            } else if (node->ToText()) {
                seen.text(node->Value());
            }
        });
        return seen;
    }
    static std::size_t write(const Tree& tree) {
        tinyxml2::XMLPrinter out;
        tree->Print(&out);
        return static_cast<std::size_t>(out.CStrSize());
    }
    static Tree copy(const Tree& tree) {
        auto copy = std::make_unique<tinyxml2::XMLDocument>();
        tree->DeepCopy(copy.get());
        return copy;
    }
};

}  // namespace bench
