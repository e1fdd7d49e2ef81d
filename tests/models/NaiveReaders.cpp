#include "models/NaiveReaders.h"

#include "support/NodeTestAccess.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/reader/AttListReader.h"
#include "xml/reader/ChildrenSpecReader.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DoctypeReader.h"
#include "xml/reader/DocumentReader.h"
#include "xml/reader/ElementDeclReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/reader/EntityReader.h"
#include "xml/reader/MixedSpecReader.h"
#include "xml/reader/PIReader.h"
#include "xml/reader/VersionInfoReader.h"
#include "xml/stream/FileInStream.h"
#include "xml/text/Entities.h"
#include "xml/text/Message.h"
#include "xml/text/Names.h"
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <typeinfo>

namespace Xml::test {

namespace {

std::string withoutQuotes(const std::string& literal) { return literal.substr(1, literal.size() - 2); }

bool isQuoted(const std::string& token) { return !token.empty() && (token[0] == '"' || token[0] == '\''); }

// What a refused declaration offered stays ours. That it was taken shows by the mark of change.
template <class Offer, class Add>
void offer(Dtd& dtd, std::unique_ptr<Offer> what, const Add& add) {
    NodeTestAccess::setDirty(dtd, false);
    add(what.get());
    if (NodeTestAccess::dirty(dtd)) static_cast<void>(what.release());
    NodeTestAccess::setDirty(dtd, true);
}

}  // namespace

// --- The base ---

void NaiveReader::note(InStream& in, const std::string& text) {
    char buffer[256];
    std::snprintf(buffer, sizeof buffer, "(line = %d, column = %d) %s <%s>", in.getLine(), in.getColumn(), text.c_str(),
                  className);
    message = buffer;
}

bool NaiveReader::fail(InStream& in, const std::string& text) {
    note(in, text);
    return false;
}

bool NaiveReader::fail(InStream& in) { return fail(in, in.getErrorMessage()); }

bool NaiveReader::failAs(const NaiveReader& other) {
    message = other.message;
    return false;
}

// --- Comments, processing instructions, the XML declaration ---

NaiveCommentReader::NaiveCommentReader() : NaiveReader(typeid(CommentReader).name()) {}

bool NaiveCommentReader::parse(InStream& in) {
    if (!in.checkToken("<!--")) return fail(in);
    if (!in.skip("-->")) return fail(in);
    return true;
}

NaivePIReader::NaivePIReader() : NaiveReader(typeid(PIReader).name()) {}

bool NaivePIReader::parse(InStream& in) {
    if (!in.checkToken("<?")) return fail(in);
    if (!in.skip("?>")) return fail(in);
    return true;
}

NaiveVersionInfoReader::NaiveVersionInfoReader() : NaiveReader(typeid(VersionInfoReader).name()) {}

bool NaiveVersionInfoReader::parse(InStream& in) {
    const std::string headerTokens[] = {"<?xml", "version", "=", "\"1.0\"", "?", ">"};
    for (int i = 0; i < 20; ++i) {
        std::string token;
        if (!in.getToken(token)) return fail(in);
        if (i >= 5) {
            if (token == ">") return true;
            continue;
        }
        if (token == headerTokens[i]) continue;
        if (i == 3 && token == "'1.0'") continue;
        if (i < 4 || token != "encoding") return false;
        if (!in.checkToken("=")) return fail(in);
        std::string value;
        if (!in.getToken(value)) return fail(in);
        if (value != "\"UTF-8\"" && value != "'UTF-8'") note(in, "Unsupported encoding: " + value);
        if (!in.getToken(token)) return fail(in);
    }
    return false;
}

// --- Elements ---

NaiveElementReader::NaiveElementReader(Dtd* declarations)
    : NaiveReader(typeid(ElementReader).name()), dtd(declarations) {}
NaiveElementReader::~NaiveElementReader() = default;

bool NaiveElementReader::parse(InStream& in) {
    if (!in.checkToken("<")) return fail(in);
    std::string name;
    if (!in.getName(name)) return fail(in);
    root = std::make_unique<Element>(name);
    std::string token;
    if (!in.getToken(token)) return fail(in);
    while (isName(token)) {
        if (!in.checkToken("=")) return fail(in);
        std::string literal;
        if (!in.getString(literal)) return fail(in);
        DataHolder value(withoutQuotes(literal));
        replaceEntities(value, dtd);
        root->setAttribute(token, value);
        if (!in.getToken(token)) return fail(in);
    }
    if (token == "/>") return true;
    if (token != ">") return false;

    int position = in.getPosition();
    if (!in.getToken(token)) return fail(in);
    while (token != "</") {
        const bool otherMarkup = token[0] == '<' && token != "<" && token != "<!--";
        if (otherMarkup) return fail(in, "unexpected markup \"" + token + "\"");
        in.setPosition(position);
        if (token == "<") {
            NaiveElementReader child(dtd);
            if (!child.parse(in)) return failAs(child);
            root->addChild(child.root.release());
        } else if (token == "<!--") {
            if (!in.skip("-->")) return false;
        } else {
            auto text = std::make_unique<CharData>();
            if (!in.getCharData(text->data())) return fail(in);
            root->addChild(text.release());
        }
        position = in.getPosition();
        if (!in.getToken(token)) return fail(in);
    }
    if (!in.checkToken(name)) return fail(in);
    if (!in.checkToken(">")) return fail(in);
    return true;
}

// --- Declarations ---

NaiveEntityReader::NaiveEntityReader(Dtd* declarations) : NaiveReader(typeid(EntityReader).name()), dtd(declarations) {}

bool NaiveEntityReader::parse(InStream& in) {
    std::string name;
    std::string literal;
    if (!in.checkToken("<!ENTITY")) return fail(in);
    if (!in.getName(name)) return fail(in);
    if (!in.getString(literal)) return fail(in);
    if (!in.checkToken(">")) return fail(in);
    DataHolder value(withoutQuotes(literal));
    replaceEntities(value, dtd);
    dtd->setEntity(name, value);
    return true;
}

NaiveMixedSpecReader::NaiveMixedSpecReader(Dtd* declarations)
    : NaiveReader(typeid(MixedSpecReader).name()), dtd(declarations) {}
NaiveMixedSpecReader::~NaiveMixedSpecReader() = default;

bool NaiveMixedSpecReader::parse(InStream& in) {
    if (!in.checkToken("(")) return fail(in);
    if (!in.checkToken("#PCDATA")) return fail(in);
    model = std::make_unique<MixedSpec>(dtd);
    std::string token;
    if (!in.getToken(token)) return fail(in);
    if (token == ")") {
        const int position = in.getPosition();
        if (!in.getToken(token)) {
            note(in, in.getErrorMessage());
            return true;
        }
        if (token == "*") return true;
        if (token == "+" || token == "?") return fail(in, "unexpected repetition type");
        in.setPosition(position);
        return true;
    }
    do {
        if (token != "|") return fail(in, "\"|\" expected");
        std::string name;
        if (!in.getName(name)) return fail(in);
        model->addName(name);
        if (!in.getToken(token)) return fail(in);
    } while (token != ")");
    if (!in.checkToken("*")) return fail(in);
    return true;
}

NaiveChildrenSpecReader::NaiveChildrenSpecReader(Dtd* declarations)
    : NaiveReader(typeid(ChildrenSpecReader).name()), dtd(declarations) {}
NaiveChildrenSpecReader::~NaiveChildrenSpecReader() = default;

bool NaiveChildrenSpecReader::parse(InStream& in) {
    std::unique_ptr<CpSpec> current;  // owns the open list, once there is one
    std::unique_ptr<ChildrenSpec> pending;
    SeqSpec* sequence = nullptr;
    ChoiceSpec* choice = nullptr;

    const auto repetition = [this, &in] {
        const int position = in.getPosition();
        std::string mark;
        if (!in.getToken(mark)) {
            note(in, in.getErrorMessage());
            return REP_ONCE;
        }
        if (mark == "*") return REP_ZERO_OR_MORE;
        if (mark == "+") return REP_ONE_OR_MORE;
        if (mark == "?") return REP_OPTIONAL;
        in.setPosition(position);
        return REP_ONCE;
    };

    if (!in.checkToken("(")) return fail(in);
    int position = in.getPosition();
    std::string token;
    if (!in.getToken(token)) return fail(in);
    while (true) {
        if (token == "(") {
            in.setPosition(position);
            NaiveChildrenSpecReader group(dtd);
            if (!group.parse(in)) return failAs(group);
            if (sequence != nullptr) {
                sequence->add(group.model.release());
            } else if (choice != nullptr) {
                choice->addChoice(group.model.release());
            } else {
                pending = std::move(group.model);
            }
        } else if (isName(token)) {
            const RepType rep = repetition();
            if (sequence != nullptr) {
                sequence->add(token, rep);
            } else if (choice != nullptr) {
                choice->addChoice(token, rep);
            } else if (rep != REP_ONCE) {
                pending = std::make_unique<ChildrenSpec>(dtd, token, rep);
            } else {
                current = std::make_unique<NameSpec>(dtd, token);
            }
        } else if (token == "#PCDATA" && choice != nullptr) {
            choice->addCharDataAsChoice(true);
        } else {
            return fail(in, "unexpected \"" + token + "\"");
        }

        position = in.getPosition();
        if (!in.getToken(token)) return fail(in);
        if (token == ")") {
            if (pending != nullptr) {
                if (current != nullptr) Message(std::string("<ChildrenSpecReader::parse> cur not 0"));
                auto wrap = std::make_unique<SeqSpec>(dtd);
                wrap->add(pending.release());
                current = std::move(wrap);
            }
            const RepType rep = repetition();
            model = std::make_unique<ChildrenSpec>(dtd, current.release(), rep);
            return true;
        }
        if (token != "," && token != "|") continue;  // a missing separator: the next item already
        if (token == "," ? choice != nullptr : sequence != nullptr) return fail(in, "unexpected \"" + token + "\"");
        if (sequence == nullptr && choice == nullptr) {
            if (token == ",") {
                auto list = std::make_unique<SeqSpec>(dtd);
                if (current != nullptr) list->add(current.release(), REP_ONCE);
                if (pending != nullptr) list->add(pending.release());
                sequence = list.get();
                current = std::move(list);
            } else {
                auto list = std::make_unique<ChoiceSpec>(dtd);
                if (current != nullptr) list->addChoice(current.release(), REP_ONCE);
                if (pending != nullptr) list->addChoice(pending.release());
                choice = list.get();
                current = std::move(list);
            }
        }
        position = in.getPosition();
        if (!in.getToken(token)) return fail(in);
    }
}

NaiveElementDeclReader::NaiveElementDeclReader(Dtd* declarations)
    : NaiveReader(typeid(ElementDeclReader).name()), dtd(declarations) {}

bool NaiveElementDeclReader::parse(InStream& in) {
    std::string name;
    if (!in.checkToken("<!ELEMENT")) return fail(in);
    if (!in.getName(name)) return fail(in);
    const int position = in.getPosition();
    std::string token;
    if (!in.getToken(token)) return fail(in);
    std::unique_ptr<ContentSpec> model;
    if (token == "EMPTY") {
        model = std::make_unique<EmptySpec>(dtd);
    } else if (token == "ANY") {
        model = std::make_unique<AnySpec>(dtd);
    } else if (token == "(") {
        if (!in.getToken(token)) return fail(in);
        in.setPosition(position);
        if (token == "#PCDATA") {
            NaiveMixedSpecReader reader(dtd);
            if (!reader.parse(in)) return failAs(reader);
            model = std::move(reader.model);
        } else {
            NaiveChildrenSpecReader reader(dtd);
            if (!reader.parse(in)) return failAs(reader);
            model = std::move(reader.model);
        }
    } else {
        Message("<ElementDeclReader::parse> don't know what to do " + token);
        return false;
    }
    offer(*dtd, std::move(model), [&](ContentSpec* taken) { dtd->addElementDecl(name, taken); });
    if (!in.checkToken(">")) return fail(in);
    return true;
}

NaiveAttListReader::NaiveAttListReader(Dtd* declarations)
    : NaiveReader(typeid(AttListReader).name()), dtd(declarations) {}

bool NaiveAttListReader::parse(InStream& in) {
    std::string element;
    if (!in.checkToken("<!ATTLIST")) return fail(in);
    if (!in.getName(element)) return fail(in);
    std::string token;
    if (!in.getToken(token)) return fail(in);
    while (token != ">") {
        if (!isName(token)) return false;
        const std::string attribute = token;
        if (!in.checkToken("CDATA")) return fail(in);
        if (!in.getToken(token)) return fail(in);
        AttType rule = DEFAULT;
        if (token == "#REQUIRED") rule = REQUIRED;
        if (token == "#IMPLIED") rule = IMPLIED;
        if (token == "#FIXED") {
            rule = FIXED;
            if (!in.getToken(token)) return fail(in);
        }
        DataHolder value;
        if (rule == DEFAULT || rule == FIXED) {
            if (!isQuoted(token)) {
                Message("<AttListReader::parse> string   " + token);
                return false;
            }
            value = withoutQuotes(token);
        }
        offer(*dtd, std::make_unique<AttStringType>(rule, value),
              [&](AttDef* taken) { dtd->addAttDecl(element, attribute, taken); });
        if (!in.getToken(token)) return fail(in);
    }
    return true;
}

// --- Document types ---

NaiveDTDReader::NaiveDTDReader(const std::string& name, bool isInternal)
    : NaiveReader(typeid(DTDReader).name()), dtd(std::make_unique<Dtd>(name)), internal(isInternal) {}
NaiveDTDReader::~NaiveDTDReader() = default;

bool NaiveDTDReader::parse(InStream& in) {
    int position = in.getPosition();
    std::string token;
    if (!in.getToken(token)) return fail(in);
    while (true) {
        in.setPosition(position);
        if (token == "<!--") {
            NaiveCommentReader reader;
            if (!reader.parse(in)) return failAs(reader);
        } else if (token == "<!ELEMENT") {
            NaiveElementDeclReader reader(dtd.get());
            if (!reader.parse(in)) return failAs(reader);
        } else if (token == "<!ATTLIST") {
            NaiveAttListReader reader(dtd.get());
            if (!reader.parse(in)) return failAs(reader);
        } else if (token == "<!ENTITY") {
            NaiveEntityReader reader(dtd.get());
            if (!reader.parse(in)) return failAs(reader);
        } else {
            return fail(in, "unexpected token \"" + token + "\"");
        }
        in.eatWhite();
        if (in.eof()) return internal ? fail(in) : true;
        position = in.getPosition();
        if (!in.getToken(token)) return fail(in);
        if (internal && token == "]") return true;
        if (in.eof()) return internal ? fail(in) : true;
    }
}

NaiveDoctypeReader::NaiveDoctypeReader() : NaiveReader(typeid(DoctypeReader).name()) {}
NaiveDoctypeReader::~NaiveDoctypeReader() = default;

bool NaiveDoctypeReader::parse(InStream& in) {
    std::string name;
    std::string token;
    if (!in.checkToken("<!DOCTYPE")) return fail(in);
    if (!in.getName(name)) return fail(in);
    if (!in.getToken(token)) return fail(in);
    NaiveDTDReader reader(name, token == "[");
    if (token == "SYSTEM") {
        std::string literal;
        if (!in.getString(literal)) return fail(in);
        const std::string path = withoutQuotes(literal);
        std::error_code ignored;
        const bool isName = path.find('\0') == std::string::npos;  // the system would see a part of it
        if (!isName || !std::filesystem::is_regular_file(path, ignored))
            return fail(in, "Could not open file: " + path);
        std::ifstream file;
        FileInStream external(path, &file);
        if (!reader.parse(external)) return failAs(reader);
    } else if (token == "[") {
        if (!reader.parse(in)) return failAs(reader);
    } else {
        return fail(in, "Unexpected token \"" + token + "\"");
    }
    dtd = std::move(reader.dtd);
    if (!in.checkToken(">")) return fail(in);
    return true;
}

// --- Documents ---

NaiveDocumentReader::NaiveDocumentReader() : NaiveReader(typeid(DocumentReader).name()) {}
NaiveDocumentReader::~NaiveDocumentReader() = default;

bool NaiveDocumentReader::parse(InStream& in) { return parseProlog(in) && parseElement(in) && parseMisc(in); }

bool NaiveDocumentReader::parseMisc(InStream& in) {
    in.eatWhite();
    if (in.eof()) return true;
    while (true) {
        const int position = in.getPosition();
        std::string token;
        if (!in.getToken(token)) {
            note(in, in.getErrorMessage());
            return in.eof();
        }
        in.setPosition(position);
        if (token == "<!--") {
            NaiveCommentReader reader;
            if (!reader.parse(in)) return failAs(reader);
        } else if (token == "<?") {
            NaivePIReader reader;
            if (!reader.parse(in)) return failAs(reader);
        } else {
            return true;
        }
    }
}

bool NaiveDocumentReader::parseProlog(InStream& in) {
    int position = in.getPosition();
    std::string token;
    if (!in.getToken(token)) return fail(in);
    in.setPosition(position);
    if (token == "<?xml") {
        NaiveVersionInfoReader reader;
        if (!reader.parse(in)) return failAs(reader);
        if (!reader.error().empty()) message = reader.error();
    }
    if (!parseMisc(in)) return false;

    position = in.getPosition();
    if (!in.getToken(token)) return fail(in);
    in.setPosition(position);
    if (token != "<!DOCTYPE") return true;
    for (int i = 0; i < 3; ++i) {
        if (!in.getToken(token)) return fail(in);
    }
    if (token == "PUBLIC") {
        do {
            if (!in.getToken(token)) return fail(in);
        } while (token != ">");
        return true;
    }
    in.setPosition(position);
    NaiveDoctypeReader reader;
    if (!reader.parse(in)) return failAs(reader);
    dtd = std::move(reader.dtd);
    return parseMisc(in);
}

bool NaiveDocumentReader::parseElement(InStream& in) {
    NaiveElementReader reader(dtd.get());
    if (!reader.parse(in)) return failAs(reader);
    document = std::make_unique<Document>(reader.root.release(), dtd.release());
    if (!document->validate()) return fail(in, "Doc could not be validated");
    return true;
}

}  // namespace Xml::test
