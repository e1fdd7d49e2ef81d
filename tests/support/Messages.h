#pragma once

#include <string>
#include <vector>

namespace Xml::test {

// Collects the diagnostics issued while it lives, in place of the handler that was installed; puts handler and output
// switch back at its end. One at a time.
class MessageCollector {
public:
    MessageCollector();
    ~MessageCollector();
    MessageCollector(const MessageCollector&) = delete;
    MessageCollector& operator=(const MessageCollector&) = delete;

    const std::vector<std::string>& texts() const;

    // What was collected since the last call.
    std::vector<std::string> take();

private:
    void (*handlerBefore)(const char*, ...);
    bool outBefore;
};

}  // namespace Xml::test
