#include "support/Messages.h"

#include "xml/text/Message.h"
#include <utility>

namespace Xml::test {

namespace {

std::vector<std::string> collected;

void collect(const char* text, ...) { collected.emplace_back(text); }

}  // namespace

MessageCollector::MessageCollector()
    : handlerBefore(Message::mMessageHandler), outBefore(Message::disableOutput(true)) {
    collected.clear();
    Message::InstallMessageHandler(collect);
}

MessageCollector::~MessageCollector() {
    Message::InstallMessageHandler(handlerBefore);
    Message::disableOutput(outBefore);
}

const std::vector<std::string>& MessageCollector::texts() const { return collected; }

std::vector<std::string> MessageCollector::take() { return std::exchange(collected, {}); }

}  // namespace Xml::test
