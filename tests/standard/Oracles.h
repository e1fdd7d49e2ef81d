#pragma once

#include <optional>
#include <string>

// What is asked whether a document is well formed.
namespace Xml::test {

struct Question {
    std::string document;
    std::optional<std::string> external;  // what is read for each external entity; without it none is read
    bool namespaces = true;
};

struct Verdict {
    bool isAccepted = false;
    std::string message;              // of a refusal, for whoever reads the failure of a test
    std::optional<std::string> rule;  // that the refused document falls under, from an oracle that names rules
};

struct Oracle {
    const char* name;
    Verdict (*ask)(const Question& question);
    bool readsExternals;
};

Verdict askExpat(const Question& question);
Verdict askLibXml2(const Question& question);
Verdict askReader(const Question& question);  // of this library; reads no external entities

}  // namespace Xml::test
