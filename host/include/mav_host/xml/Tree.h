// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "mav_host/Export.h"
#include "mav_host/xml/Binding.h"

namespace mav_host::xml {

struct MAV_API Attribute {
    std::string name;
    std::string value;
};

/// One part of a document that is kept whole.
struct MAV_API Node {
    enum class Kind { Element, Text, CData, Comment, Instruction };

    Kind kind = Kind::Element;
    std::string name;  ///< of an element, with its prefix; target of an instruction
    std::string text;  ///< of all but an element
    std::vector<Attribute> attributes;
    std::vector<Node> children;

    /// Value of the attribute of that name; null when there is none.
    const std::string* attribute(std::string_view wanted) const;
    /// Changes the attribute's value, or appends the attribute.
    void setAttribute(std::string_view wanted, std::string value);
};

/// A document with all that stands in it: comments, instructions, unknown items, prefixes and the
/// order of attributes. Only white space between elements and the spelling of references are lost.
struct MAV_API Tree {
    std::string version = "1.0";
    std::string standalone;    ///< "yes", "no" or empty
    std::vector<Node> before;  ///< comments and instructions in front of the root
    Node root;
    std::vector<Node> after;

    /// Throws BindingError as a format does; four parts or attributes count as an element.
    static Tree parse(std::string_view text, const Limits& limits = Limits());
    /// The document as UTF-8. Each element, comment and instruction begins a line, each attribute
    /// too, indented by tabs; an element that holds text is written as it was, in one piece.
    /// Parsing and writing again gives the same text.
    std::string write() const;
};

}  // namespace mav_host::xml
