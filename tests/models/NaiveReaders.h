#pragma once

#include "xml/stream/InStream.h"
#include <memory>
#include <string>

namespace Xml {
class ChildrenSpec;
class Document;
class Dtd;
class Element;
class MixedSpec;
}  // namespace Xml

// The readers once more, as plainly as they can be written: one recursive function a construct over the public
// operations of a stream, nodes and declarations built through the public API. No cleverness; slow, and as deep as the
// document is.
namespace Xml::test {

class NaiveReader {
public:
    const std::string& error() const { return message; }

protected:
    // `name` is the class name of the reader that this one stands for.
    explicit NaiveReader(const char* name) : className(name) {}

    void note(InStream& in, const std::string& text);
    bool fail(InStream& in, const std::string& text);
    bool fail(InStream& in);
    bool failAs(const NaiveReader& other);

    std::string message;

private:
    const char* className;
};

class NaiveCommentReader : public NaiveReader {
public:
    NaiveCommentReader();
    bool parse(InStream& in);
};

class NaivePIReader : public NaiveReader {
public:
    NaivePIReader();
    bool parse(InStream& in);
};

class NaiveVersionInfoReader : public NaiveReader {
public:
    NaiveVersionInfoReader();
    bool parse(InStream& in);
};

class NaiveElementReader : public NaiveReader {
public:
    explicit NaiveElementReader(Dtd* declarations);
    ~NaiveElementReader();
    bool parse(InStream& in);

    std::unique_ptr<Element> root;

private:
    Dtd* dtd;
};

class NaiveEntityReader : public NaiveReader {
public:
    explicit NaiveEntityReader(Dtd* declarations);
    bool parse(InStream& in);

private:
    Dtd* dtd;
};

class NaiveMixedSpecReader : public NaiveReader {
public:
    explicit NaiveMixedSpecReader(Dtd* declarations);
    ~NaiveMixedSpecReader();
    bool parse(InStream& in);

    std::unique_ptr<MixedSpec> model;

private:
    Dtd* dtd;
};

class NaiveChildrenSpecReader : public NaiveReader {
public:
    explicit NaiveChildrenSpecReader(Dtd* declarations);
    ~NaiveChildrenSpecReader();
    bool parse(InStream& in);

    std::unique_ptr<ChildrenSpec> model;

private:
    Dtd* dtd;
};

class NaiveElementDeclReader : public NaiveReader {
public:
    explicit NaiveElementDeclReader(Dtd* declarations);
    bool parse(InStream& in);

private:
    Dtd* dtd;
};

class NaiveAttListReader : public NaiveReader {
public:
    explicit NaiveAttListReader(Dtd* declarations);
    bool parse(InStream& in);

private:
    Dtd* dtd;
};

class NaiveDTDReader : public NaiveReader {
public:
    NaiveDTDReader(const std::string& name, bool isInternal);
    ~NaiveDTDReader();
    bool parse(InStream& in);

    std::unique_ptr<Dtd> dtd;

private:
    bool internal;
};

class NaiveDoctypeReader : public NaiveReader {
public:
    NaiveDoctypeReader();
    ~NaiveDoctypeReader();
    bool parse(InStream& in);

    std::unique_ptr<Dtd> dtd;
};

class NaiveDocumentReader : public NaiveReader {
public:
    NaiveDocumentReader();
    ~NaiveDocumentReader();
    bool parse(InStream& in);

    std::unique_ptr<Document> document;

private:
    bool parseProlog(InStream& in);
    bool parseElement(InStream& in);
    bool parseMisc(InStream& in);

    std::unique_ptr<Dtd> dtd;
};

}  // namespace Xml::test
