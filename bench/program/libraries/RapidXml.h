// RapidXML with its defaults. It parses in place, so that it gets a copy of the text; the copy is part of its tree.
#pragma once
#include "libraries/Seen.h"
#include "libraries/Unreadable.h"
#include <memory>
#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_utils.hpp>
#include <string>
#include <vector>

namespace bench {

struct RapidXml {
    static constexpr char kName[] = "rapidxml";
    struct Parsed {
        std::vector<char> text;
        rapidxml::xml_document<> document;
    };
    using Tree = std::unique_ptr<Parsed>;
    using Node = rapidxml::xml_node<>;

    struct Ways {
        static Node* child(Node* node) { return node->first_node(); }
        static Node* next(Node* node) { return node->parent() ? node->next_sibling() : nullptr; }
        static Node* parent(Node* node) { return node->parent(); }
    };

    static Tree parsed(Tree tree) {
        try {
            tree->document.parse<rapidxml::parse_default>(tree->text.data());
        } catch (const rapidxml::parse_error& error) {
            throw Unreadable(error.what() + (" at byte " + std::to_string(error.where<char>() - tree->text.data())));
        }
        return tree;
    }
    static Tree parse(const std::string& text) {
        auto tree = std::make_unique<Parsed>();
        tree->text.assign(text.c_str(), text.c_str() + text.size() + 1);
        return parsed(std::move(tree));
    }
    static Tree parseFile(const std::string& path) {
        auto tree = std::make_unique<Parsed>();
        const rapidxml::file<> file(path.c_str());
        tree->text.assign(file.data(), file.data() + file.size() + 1);
        return parsed(std::move(tree));
    }
    static Seen read(const Tree& tree) {
        Seen seen;
        walk<Ways>(static_cast<Node*>(&tree->document), [&](Node* node) {
            if (node->type() == rapidxml::node_element) {
                seen.element({node->name(), node->name_size()});
                for (auto attribute = node->first_attribute(); attribute; attribute = attribute->next_attribute()) {
                    seen.attribute({attribute->name(), attribute->name_size()},
                                   {attribute->value(), attribute->value_size()});
                }
            } else if (node->type() == rapidxml::node_data || node->type() == rapidxml::node_cdata) {
                seen.text({node->value(), node->value_size()});
            }
        });
        return seen;
    }
    // The copy's names and values are those of the tree that it was made from.
    static Tree copy(const Tree& tree) {
        auto copy = std::make_unique<Parsed>();
        copy->document.clone_node(&tree->document, &copy->document);
        return copy;
    }
};

}  // namespace bench
