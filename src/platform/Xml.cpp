#include "platform/Xml.h"

#include <pugixml.hpp>

#include "util/Text.h"

namespace morvane::platform {

struct XmlDocument::Impl {
    pugi::xml_document doc;
};

namespace {
void AppendTextOf(const pugi::xml_node& node, std::string& out) {
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
            out += child.value();
        else if (child.type() == pugi::node_element)
            AppendTextOf(child, out);
    }
}
}  // namespace

std::string XmlNode::Name() const { return node_ ? pugi::xml_node(node_).name() : ""; }

std::string_view XmlNode::NameView() const {
    return node_ ? std::string_view(pugi::xml_node(node_).name()) : std::string_view();
}

std::string XmlNode::Text() const {
    std::string out;
    if (node_) AppendTextOf(pugi::xml_node(node_), out);
    return out;
}

void XmlNode::AppendText(std::string& out) const {
    if (node_) AppendTextOf(pugi::xml_node(node_), out);
}

std::string_view XmlNode::TextView(std::string& scratch) const {
    if (!node_) return {};
    const pugi::xml_node node(node_);
    const pugi::xml_node first = node.first_child();
    if (!first) return {};
    if (!first.next_sibling() &&
        (first.type() == pugi::node_pcdata || first.type() == pugi::node_cdata))
        return first.value();
    scratch.clear();
    AppendTextOf(node, scratch);
    return scratch;
}

namespace {
pugi::xml_node_struct* ElementFrom(pugi::xml_node node) {
    while (node && node.type() != pugi::node_element) node = node.next_sibling();
    return node.internal_object();
}
}  // namespace

XmlNode XmlNode::FirstChildElement() const {
    return node_ ? XmlNode(ElementFrom(pugi::xml_node(node_).first_child())) : XmlNode();
}

XmlNode XmlNode::NextSiblingElement() const {
    return node_ ? XmlNode(ElementFrom(pugi::xml_node(node_).next_sibling())) : XmlNode();
}

std::vector<XmlNode> XmlNode::Children() const {
    std::vector<XmlNode> out;
    if (!node_) return out;
    for (pugi::xml_node c = pugi::xml_node(node_).first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element) out.push_back(XmlNode(c.internal_object()));
    return out;
}

std::vector<XmlNode> XmlNode::SelectNodes(std::string_view name) const {
    std::vector<XmlNode> out;
    if (!node_) return out;
    for (pugi::xml_node c = pugi::xml_node(node_).first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element && name == c.name())
            out.push_back(XmlNode(c.internal_object()));
    return out;
}

std::vector<XmlNode> XmlNode::SelectNodesNoCase(std::string_view name) const {
    std::vector<XmlNode> out;
    if (!node_) return out;
    for (pugi::xml_node c = pugi::xml_node(node_).first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element && EqualsNoCase(name, c.name()))
            out.push_back(XmlNode(c.internal_object()));
    return out;
}

XmlDocument::XmlDocument(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
XmlDocument::~XmlDocument() = default;

std::unique_ptr<XmlDocument> XmlDocument::Load(std::string_view text) {
    if (text.empty()) return nullptr;
    auto impl = std::make_unique<Impl>();
    // pugixml resolves no external entity and reads no DTD: nothing leaves the process.
    const pugi::xml_parse_result result =
        impl->doc.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_auto);
    if (!result || !impl->doc.document_element()) return nullptr;
    return std::unique_ptr<XmlDocument>(new XmlDocument(std::move(impl)));
}

XmlNode XmlDocument::DocumentElement() const {
    return XmlNode(impl_->doc.document_element().internal_object());
}

}  // namespace morvane::platform
