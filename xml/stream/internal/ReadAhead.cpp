#include "xml/stream/internal/ReadAhead.h"

#include "xml/stream/internal/Cursor.h"
#include <algorithm>
#include <utility>

namespace Xml {

bool ReadAhead::enabled = true;

bool ReadAhead::setEnabled(bool on) { return std::exchange(enabled, on); }

bool ReadAhead::isShort(std::string_view text, std::string_view error) {
    constexpr std::size_t kLongest = 64;
    return text.size() <= kLongest && error.size() <= kLongest;
}

const ReadAhead::Markup* ReadAhead::recall(int position) const {
    const auto found = markups.find(position);
    return found != markups.end() ? &found->second : nullptr;
}

const ReadAhead::Reference* ReadAhead::referenceFrom(int position) {
    if (!isPlace(reference.begin) || position < reference.begin) return nullptr;
    if (isPlace(reference.end)) {
        if (position >= reference.end) return nullptr;
        reference.begin = position;
    }
    return &reference;
}

bool ReadAhead::continueMessage(std::string& message) {
    if (reference.text == nullptr) return false;
    const std::size_t size = reference.text->size();
    const auto length = static_cast<std::size_t>(std::max(reference.end - reference.begin, 0));
    const std::size_t from = size - std::min(size, length);
    message.reserve(message.size() + size - from);
    continuation = reference.text;
    continuationFrom = from;
    return true;
}

void ReadAhead::completeMessage(std::string& message) noexcept {
    if (continuation == nullptr) return;
    message.append(*continuation, continuationFrom);
    continuation.reset();
}

}  // namespace Xml
