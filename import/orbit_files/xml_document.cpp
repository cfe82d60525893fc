#include "import/orbit_files/xml_document.h"

#include <algorithm>

#include "import/orbit_files/time_scales.h"

XML_ELEMENT XML_ELEMENT::Child(const std::string& path) const {
    XML_ELEMENT element = *this;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string name = path.substr(begin, end - begin);
        element.node_ = element.node_.child(name.c_str());
        element.path_ += "/" + name;
        if (element.node_.empty()) throw COMPANION_ERROR(file_ + ": element " + element.path_ + " is missing");
        begin = end + 1;
    }
    return element;
}

std::vector<XML_ELEMENT> XML_ELEMENT::Children(const std::string& name) const {
    constexpr std::size_t kMost = 200'000;
    std::vector<XML_ELEMENT> children;
    for (const pugi::xml_node& node : node_.children(name.c_str())) {
        if (children.size() == kMost)
            throw COMPANION_ERROR(file_ + ": element " + path_ + ": holds more than " + std::to_string(kMost) + " " +
                                  name);
        const std::string number = std::to_string(children.size() + 1);
        children.emplace_back(file_, path_ + "/" + name + "[" + number + "]", node);
    }
    return children;
}

std::string XML_ELEMENT::Text() const {
    return Trimmed(node_.text().get());
}

double XML_ELEMENT::PositiveReal() const {
    constexpr double kLeast = 1e-30;  // its inverse is a number, too
    const double value = Real();
    if (!(value >= kLeast)) Refuse("a number above 0");
    return value;
}

UNIVERSAL_TIME XML_ELEMENT::Utc() const {
    constexpr const char* kScalePrefix = "UTC=";
    std::string text = Text();
    if (text.rfind(kScalePrefix, 0) == 0) text = text.substr(4);
    return UtcOf(Place(), text);
}

XML_DOCUMENT::XML_DOCUMENT(const std::string& file, const std::string& content) : file_(file) {
    const pugi::xml_parse_result result =
        document_.load_buffer(content.data(), content.size(), pugi::parse_default | pugi::parse_doctype);
    if (result.status != pugi::status_ok) {
        const auto offset = static_cast<std::ptrdiff_t>(
            std::clamp<long long>(result.offset, 0, static_cast<long long>(content.size())));
        const auto line = 1 + std::count(content.begin(), content.begin() + offset, '\n');
        throw COMPANION_ERROR(file_ + ": line " + std::to_string(line) + ": is no XML: " + result.description());
    }
    for (const pugi::xml_node& node : document_.children()) {
        if (node.type() == pugi::node_doctype)
            throw COMPANION_ERROR(file_ + ": holds a document type (DOCTYPE), which files of this kind do not have");
    }
}

XML_ELEMENT XML_DOCUMENT::Root(const std::string& name) const {
    const pugi::xml_node root = document_.document_element();
    if (name != root.name())
        throw COMPANION_ERROR(file_ + ": the outermost element is " + Quoted(root.name()) + ": expected " +
                              Quoted(name));
    return {file_, name, root};
}
