#include "server/xml/XmlWriter.h"

#include "server/util/Text.h"

namespace morvane::server {

namespace {

void AppendEscaped(std::string& out, std::string_view text) {
    if (!IsXmlSafe(text)) throw XmlBuildError("value is not valid XML text");
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            // A raw CR would be folded into LF by the reader.
            case '\r':
                out += "&#13;";
                break;
            default:
                out += c;
        }
    }
}

}  // namespace

XmlWriter::XmlWriter(std::string_view root) {
    out_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    Open(root);
}

void XmlWriter::Indent() { out_.append(open_.size() * 2, ' '); }

XmlWriter& XmlWriter::Open(std::string_view name) {
    Indent();
    out_ += '<';
    out_ += name;
    out_ += ">\n";
    open_.emplace_back(name);
    return *this;
}

XmlWriter& XmlWriter::Close() {
    if (open_.empty()) return *this;
    std::string name = std::move(open_.back());
    open_.pop_back();
    Indent();
    out_ += "</" + name + ">\n";
    return *this;
}

XmlWriter& XmlWriter::Leaf(std::string_view name, std::string_view text) {
    Indent();
    out_ += '<';
    out_ += name;
    out_ += '>';
    AppendEscaped(out_, text);
    out_ += "</";
    out_ += name;
    out_ += ">\n";
    return *this;
}

std::string XmlWriter::Finish() {
    while (!open_.empty()) Close();
    return std::move(out_);
}

}  // namespace morvane::server
