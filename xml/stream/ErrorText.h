#pragma once

#include <string>
#include <string_view>

namespace Xml::internal {

// The message of a stream. Attempts leave one too, and most of them, such as that of the end of the data, are never
// looked at: a text that stays is copied when somebody asks for the string.
//
// Not for callers.
class ErrorText {
public:
    void set(std::string_view text) {
        string_ = text;
        waiting = {};
    }

    // A text that outlives the stream. Once the string has been shown it has each text at once: whoever has the
    // reference sees it.
    void setLasting(std::string_view text) {
        if (isShown) {
            set(text);
        } else {
            waiting = text;
        }
    }

    std::string_view view() const { return waiting.data() != nullptr ? waiting : std::string_view(string_); }

    // To be added to. Where memory runs out nothing has changed.
    std::string& string() {
        if (waiting.data() != nullptr) {
            string_ = waiting;
            waiting = {};
        }
        return string_;
    }

    // For callers.
    const std::string& show() {
        const std::string& shown = string();
        isShown = true;
        return shown;
    }

private:
    std::string string_;
    std::string_view waiting;  // in place of the string
    bool isShown = false;
};

}  // namespace Xml::internal
