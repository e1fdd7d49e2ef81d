// Xerces-C as a reader of trees: no validation, no namespaces, no comments, nothing fetched.
#pragma once
#include "libraries/Seen.h"
#include "libraries/Unreadable.h"
#include <memory>
#include <string>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

namespace bench {

struct XercesC {
    static constexpr char kName[] = "xerces-c";
    struct Free {
        void operator()(xercesc::DOMDocument* document) const { document->release(); }
        void operator()(xercesc::DOMLSSerializer* serializer) const { serializer->release(); }
        void operator()(xercesc::DOMLSOutput* output) const { output->release(); }
        void operator()(char* text) const { xercesc::XMLString::release(&text); }
        void operator()(XMLCh* text) const { xercesc::XMLString::release(&text); }
    };
    using Tree = std::unique_ptr<xercesc::DOMDocument, Free>;
    using Node = const xercesc::DOMNode*;

    struct Ways {
        static Node child(Node node) { return node->getFirstChild(); }
        static Node next(Node node) { return node->getNextSibling(); }
        static Node parent(Node node) { return node->getParentNode(); }
    };

    // The first use of the library sets it up, which belongs to the first parse of a process.
    static void setUp() {
        static const bool isSetUp = (xercesc::XMLPlatformUtils::Initialize(), true);
        static_cast<void>(isSetUp);
    }
    static Tree parseFrom(const xercesc::InputSource& source) {
        xercesc::XercesDOMParser parser;
        xercesc::HandlerBase errors;
        parser.setValidationScheme(xercesc::XercesDOMParser::Val_Never);
        parser.setDoNamespaces(false);
        parser.setLoadExternalDTD(false);
        parser.setCreateCommentNodes(false);
        parser.setErrorHandler(&errors);
        try {
            parser.parse(source);
        } catch (const xercesc::SAXParseException& error) {
            const std::unique_ptr<char, Free> text(xercesc::XMLString::transcode(error.getMessage()));
            throw Unreadable("line " + std::to_string(error.getLineNumber()) + ": " + text.get());
        } catch (const xercesc::XMLException& error) {
            const std::unique_ptr<char, Free> text(xercesc::XMLString::transcode(error.getMessage()));
            throw Unreadable(text.get());
        }
        return Tree(parser.adoptDocument());
    }
    static Tree parse(const std::string& text) {
        setUp();
        const auto bytes = reinterpret_cast<const XMLByte*>(text.data());
        return parseFrom(xercesc::MemBufInputSource(bytes, text.size(), "memory"));
    }
    static Tree parseFile(const std::string& path) {
        setUp();
        const std::unique_ptr<XMLCh, Free> name(xercesc::XMLString::transcode(path.c_str()));
        return parseFrom(xercesc::LocalFileInputSource(name.get()));
    }
    // Texts are of 16-bit units: the length and the first byte of that form.
    static std::string_view view(const XMLCh* text) {
        return {reinterpret_cast<const char*>(text), xercesc::XMLString::stringLen(text) * sizeof(XMLCh)};
    }
    static Seen read(const Tree& tree) {
        Seen seen;
        walk<Ways>(static_cast<Node>(tree.get()), [&](Node node) {
            const auto type = node->getNodeType();
            if (type == xercesc::DOMNode::ELEMENT_NODE) {
                seen.element(view(node->getNodeName()));
                const xercesc::DOMNamedNodeMap* attributes = node->getAttributes();
                for (XMLSize_t i = 0, count = attributes->getLength(); i < count; ++i) {
                    seen.attribute(view(attributes->item(i)->getNodeName()), view(attributes->item(i)->getNodeValue()));
                }
            } else if (type == xercesc::DOMNode::TEXT_NODE || type == xercesc::DOMNode::CDATA_SECTION_NODE) {
                seen.text(view(node->getNodeValue()));
            }
        });
        return seen;
    }
    static std::size_t write(const Tree& tree) {
        const std::unique_ptr<XMLCh, Free> features(xercesc::XMLString::transcode("LS"));
        auto* const implementation = xercesc::DOMImplementationRegistry::getDOMImplementation(features.get());
        const std::unique_ptr<xercesc::DOMLSSerializer, Free> serializer(implementation->createLSSerializer());
        serializer->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
        const std::unique_ptr<xercesc::DOMLSOutput, Free> output(implementation->createLSOutput());
        xercesc::MemBufFormatTarget target;
        output->setByteStream(&target);
        serializer->write(tree.get(), output.get());
        return target.getLen();
    }
    static Tree copy(const Tree& tree) { return Tree(static_cast<xercesc::DOMDocument*>(tree->cloneNode(true))); }
};

}  // namespace bench
