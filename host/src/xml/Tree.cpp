// SPDX-License-Identifier: Apache-2.0
#include "mav_host/xml/Tree.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "xml/Parse.h"

namespace mav_host::xml {
namespace {

using Kind = Node::Kind;

/// Builds the tree; the open elements are the last children on the way from the root.
class Builder final : public detail::MarkupEvents {
  public:
    Builder(Tree& tree, const Limits& limits, const detail::Locator& locator)
        : tree_(tree), limits_(limits), locator_(locator) {}

    void start(std::string_view name, std::span<const detail::AttributeView> attributes) override {
        if (open_.size() == limits_.depth)
            refuse("elements are nested deeper than " + std::to_string(limits_.depth));
        count();
        Node node;
        node.name = name;
        for (const auto& [key, value] : attributes) {
            count();
            node.attributes.push_back({std::string(key), std::string(value)});
        }
        if (open_.empty()) {
            tree_.root = std::move(node);
            open_.push_back(&tree_.root);
            rootSeen_ = true;
        } else {
            open_.push_back(&open_.back()->children.emplace_back(std::move(node)));
        }
    }
    void end() override { open_.pop_back(); }
    void characters(std::string_view text) override {
        const Kind kind = cdata_ ? Kind::CData : Kind::Text;
        std::vector<Node>& list = siblings();
        if (list.empty() || list.back().kind != kind) add(kind, {}, {});
        list.back().text += text;
    }
    void comment(std::string_view text) override { add(Kind::Comment, {}, text); }
    void instruction(std::string_view target, std::string_view text) override {
        add(Kind::Instruction, target, text);
    }
    void cdata(bool begins) override {
        cdata_ = begins;
        if (begins) add(Kind::CData, {}, {});
    }
    void declaration(std::string_view version, int standalone) override {
        tree_.version = version;
        if (standalone >= 0) tree_.standalone = standalone == 1 ? "yes" : "no";
    }

  private:
    std::vector<Node>& siblings() {
        if (!open_.empty()) return open_.back()->children;
        return rootSeen_ ? tree_.after : tree_.before;
    }
    void add(Kind kind, std::string_view name, std::string_view text) {
        count();
        Node& node = siblings().emplace_back();
        node.kind = kind;
        node.name = name;
        node.text = text;
    }
    void count() {
        if (++parts_ > 4 * limits_.elements)
            refuse("the document has more than " + std::to_string(4 * limits_.elements) +
                   " parts and attributes");
    }
    [[noreturn]] void refuse(const std::string& text) const {
        const detail::Position at = locator_.position();
        throw BindingError(BindingError::Kind::Limit, text, at.line, at.column);
    }

    Tree& tree_;
    const Limits& limits_;
    const detail::Locator& locator_;
    std::vector<Node*> open_;  // an open element's list of children grows only at its end
    std::size_t parts_ = 0;
    bool rootSeen_ = false;
    bool cdata_ = false;
};

bool isBlank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

bool holdsText(const Node& element) {
    const std::string* space = element.attribute("xml:space");
    if (space != nullptr && *space == "preserve") return true;
    return std::any_of(element.children.begin(), element.children.end(), [](const Node& child) {
        return child.kind == Kind::CData || (child.kind == Kind::Text && !isBlank(child.text));
    });
}

class Writer {
  public:
    explicit Writer(std::string& out) : out_(out) {}

    void line(const Node& node, std::size_t depth) {
        indent(depth);
        if (node.kind == Kind::Element)
            element(node, depth);
        else
            markup(node);
        out_ += '\n';
    }

  private:
    void indent(std::size_t depth) { out_.append(depth, '\t'); }
    void element(const Node& node, std::size_t depth) {
        out_ += '<' + node.name;
        for (const Attribute& attribute : node.attributes) {
            out_ += '\n';
            indent(depth + 1);
            this->attribute(attribute);
        }
        if (holdsText(node)) {
            out_ += '>';
            for (const Node& child : node.children) asItWas(child);
        } else if (std::all_of(node.children.begin(), node.children.end(),
                               [](const Node& child) { return child.kind == Kind::Text; })) {
            out_ += "/>";
            return;
        } else {
            out_ += ">\n";
            for (const Node& child : node.children) {
                if (child.kind != Kind::Text) line(child, depth + 1);
            }
            indent(depth);
        }
        out_ += "</" + node.name + '>';
    }
    /// Inside an element that holds text no white space may be added.
    void asItWas(const Node& node) {
        if (node.kind != Kind::Element) {
            markup(node);
            return;
        }
        out_ += '<' + node.name;
        for (const Attribute& attribute : node.attributes) {
            out_ += ' ';
            this->attribute(attribute);
        }
        if (node.children.empty()) {
            out_ += "/>";
            return;
        }
        out_ += '>';
        for (const Node& child : node.children) asItWas(child);
        out_ += "</" + node.name + '>';
    }
    void markup(const Node& node) {
        switch (node.kind) {
            case Kind::Text:
                escape(node.text, "<>&\r");
                break;
            case Kind::CData:
                out_ += "<![CDATA[" + node.text + "]]>";
                break;
            case Kind::Comment:
                out_ += "<!--" + node.text + "-->";
                break;
            case Kind::Instruction:
                out_ += "<?" + node.name + (node.text.empty() ? "" : " ") + node.text + "?>";
                break;
            case Kind::Element:
                break;
        }
    }
    void attribute(const Attribute& attribute) {
        out_ += attribute.name + "=\"";
        escape(attribute.value, "<&\"\t\r\n");
        out_ += '"';
    }
    void escape(std::string_view text, std::string_view special) {
        while (true) {
            const std::size_t end = text.find_first_of(special);
            out_ += text.substr(0, end);
            if (end == std::string_view::npos) return;
            out_ += reference(text[end]);
            text.remove_prefix(end + 1);
        }
    }
    static std::string_view reference(char character) {
        switch (character) {
            case '<':
                return "&lt;";
            case '>':
                return "&gt;";
            case '&':
                return "&amp;";
            case '"':
                return "&quot;";
            case '\t':
                return "&#9;";
            case '\r':
                return "&#13;";
            default:
                return "&#10;";
        }
    }

    std::string& out_;
};

}  // namespace

const std::string* Node::attribute(std::string_view wanted) const {
    for (const Attribute& attribute : attributes) {
        if (attribute.name == wanted) return &attribute.value;
    }
    return nullptr;
}

void Node::setAttribute(std::string_view wanted, std::string value) {
    for (Attribute& attribute : attributes) {
        if (attribute.name != wanted) continue;
        attribute.value = std::move(value);
        return;
    }
    attributes.push_back({std::string(wanted), std::move(value)});
}

Tree Tree::parse(std::string_view text, const Limits& limits) {
    Tree tree;
    detail::parseMarkup(text, limits, [&](const detail::Locator& locator) {
        return std::make_unique<Builder>(tree, limits, locator);
    });
    return tree;
}

std::string Tree::write() const {
    std::string out = "<?xml version=\"" + version + "\" encoding=\"UTF-8\"";
    if (!standalone.empty()) out += " standalone=\"" + standalone + '"';
    out += "?>\n";
    Writer writer(out);
    for (const Node& node : before) writer.line(node, 0);
    writer.line(root, 0);
    for (const Node& node : after) writer.line(node, 0);
    return out;
}

}  // namespace mav_host::xml
