// pugixml, with its default options where nothing else is said.
#pragma once
#include "libraries/Seen.h"
#include "libraries/Unreadable.h"
#include <memory>
#include <pugixml.hpp>
#include <string>

namespace bench {

struct PugiXml {
    static constexpr char kName[] = "pugixml";
    using Tree = std::unique_ptr<pugi::xml_document>;

    struct Ways {
        static pugi::xml_node child(const pugi::xml_node& node) { return node.first_child(); }
        static pugi::xml_node next(const pugi::xml_node& node) { return node.next_sibling(); }
        static pugi::xml_node parent(const pugi::xml_node& node) { return node.parent(); }
    };
    struct Text : pugi::xml_writer {
        void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
        std::string text;
    };

    static void check(const pugi::xml_parse_result& result) {
        if (!result) throw Unreadable(result.description() + (" at byte " + std::to_string(result.offset)));
    }
    static Tree parse(const std::string& text, unsigned options = pugi::parse_default) {
        auto tree = std::make_unique<pugi::xml_document>();
        check(tree->load_buffer(text.data(), text.size(), options));
        return tree;
    }
    static Tree parseFile(const std::string& path) {
        auto tree = std::make_unique<pugi::xml_document>();
        check(tree->load_file(path.c_str()));
        return tree;
    }
    static Seen read(const Tree& tree) {
        Seen seen;
        walk<Ways>(static_cast<pugi::xml_node>(*tree), [&](const pugi::xml_node& node) {
            if (node.type() != pugi::node_element) return seen.text(node.value());
            seen.element(node.name());
            for (const pugi::xml_attribute attribute : node.attributes()) {
                seen.attribute(attribute.name(), attribute.value());
            }
        });
        return seen;
    }
    static std::size_t write(const Tree& tree) {
        Text out;
        tree->save(out);
        return out.text.size();
    }
    static Tree copy(const Tree& tree) {
        auto copy = std::make_unique<pugi::xml_document>();
        copy->reset(*tree);
        return copy;
    }
    static std::size_t find(const Tree& tree, const std::string& path) {
        return tree->select_nodes(path.c_str()).size();
    }
};

// The same with everything kept.
struct PugiXmlAll : PugiXml {
    static Tree parse(const std::string& text) {
        return PugiXml::parse(text, pugi::parse_full | pugi::parse_ws_pcdata);
    }
};

// The same, and nothing added when it is written.
struct PugiXmlRaw : PugiXmlAll {
    static std::size_t write(const Tree& tree) {
        Text out;
        tree->save(out, "", pugi::format_raw);
        return out.text.size();
    }
};

}  // namespace bench
