#include "xml/standard/StreamWriter.h"

#include "xml/standard/internal/StreamOutput.h"

namespace Xml {

StreamWriter::StreamWriter(std::ostream& out, const WriteOptions& options)
    : output(std::make_unique<StreamOutput>(out, options)) {}

StreamWriter::StreamWriter(StreamWriter&& other) noexcept = default;
StreamWriter& StreamWriter::operator=(StreamWriter&& other) noexcept = default;
StreamWriter::~StreamWriter() = default;

StreamWriter& StreamWriter::prolog(const Prolog& prolog) {
    output->attempt([&] { return output->prolog(prolog); });
    return *this;
}

StreamWriter& StreamWriter::start(std::string_view name) {
    output->attempt([&] { return output->start(name); });
    return *this;
}

StreamWriter& StreamWriter::attribute(std::string_view name, std::string_view value) {
    output->attempt([&] { return output->attribute(name, value); });
    return *this;
}

StreamWriter& StreamWriter::text(std::string_view text) {
    output->attempt([&] { return output->text(text); });
    return *this;
}

StreamWriter& StreamWriter::cdata(std::string_view text) {
    output->attempt([&] { return output->section(text); });
    return *this;
}

StreamWriter& StreamWriter::comment(std::string_view text) {
    output->attempt([&] { return output->comment(text); });
    return *this;
}

StreamWriter& StreamWriter::instruction(std::string_view target, std::string_view content) {
    output->attempt([&] { return output->instruction(target, content); });
    return *this;
}

StreamWriter& StreamWriter::node(const Object& subtree) {
    output->attempt([&] { return output->node(subtree); });
    return *this;
}

StreamWriter& StreamWriter::copy(const StreamReader& at) {
    output->attempt([&] { return output->copy(at); });
    return *this;
}

StreamWriter& StreamWriter::end() {
    output->attempt([&] { return output->end(); });
    return *this;
}

bool StreamWriter::finish() { return output->finish(); }

const std::vector<Problem>& StreamWriter::problems() const { return output->problems(); }

}  // namespace Xml
