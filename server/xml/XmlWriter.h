// Builds the UTF-8 XML text of a reply: nested elements with escaped text values.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::server {

// Raised when a value cannot be written into an XML document.
class XmlBuildError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class XmlWriter {
public:
    explicit XmlWriter(std::string_view root);

    XmlWriter& Open(std::string_view name);
    XmlWriter& Close();
    XmlWriter& Leaf(std::string_view name, std::string_view text);
    // Closes every open element and returns the document.
    std::string Finish();

private:
    void Indent();
    std::string out_;
    std::vector<std::string> open_;
};

}  // namespace morvane::server
