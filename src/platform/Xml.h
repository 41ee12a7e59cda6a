// XML documents as the readers walk them: a parsed tree of elements with names and texts.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pugi {
struct xml_node_struct;
}

namespace morvane::platform {

class XmlNode {
public:
    XmlNode() = default;

    explicit operator bool() const { return node_ != nullptr; }
    std::string Name() const;
    // The name as it lies in the tree, valid as long as the document.
    std::string_view NameView() const;
    // The concatenated text of every text node below this one.
    std::string Text() const;
    // The same, appended to out.
    void AppendText(std::string& out) const;
    // The same as Text(), but a view into the tree when the text is one node, so that a
    // large reply's values are not copied; otherwise built in scratch.
    std::string_view TextView(std::string& scratch) const;
    // Element children one by one, for walks that keep no list.
    XmlNode FirstChildElement() const;
    XmlNode NextSiblingElement() const;
    // Element children, in document order.
    std::vector<XmlNode> Children() const;
    // Element children of exactly this name.
    std::vector<XmlNode> SelectNodes(std::string_view name) const;
    // Element children whose name matches without regard to ASCII case.
    std::vector<XmlNode> SelectNodesNoCase(std::string_view name) const;

private:
    friend class XmlDocument;
    explicit XmlNode(pugi::xml_node_struct* node) : node_(node) {}
    pugi::xml_node_struct* node_ = nullptr;
};

class XmlDocument {
public:
    ~XmlDocument();
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    // Parses without resolving anything external; nullptr for an empty or malformed text.
    static std::unique_ptr<XmlDocument> Load(std::string_view text);
    XmlNode DocumentElement() const;

private:
    struct Impl;
    explicit XmlDocument(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

}  // namespace morvane::platform
