// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "mav_host/xml/Binding.h"

namespace mav_host::xml::detail {

/// Where the parser stands.
struct Position {
    std::size_t line = 0;
    std::size_t column = 0;
};

/// Tells where the parser stands, when it is asked.
class Locator {
  public:
    virtual ~Locator() = default;
    virtual Position position() const = 0;
};

/// One attribute of a start tag.
struct AttributeView {
    std::string_view name;
    std::string_view value;
};

/// Takes the parts of a document in its order, as UTF-8. What an operation throws ends the parse.
class Events {
  public:
    virtual ~Events() = default;
    virtual void start(std::string_view name, std::span<const AttributeView> attributes) = 0;
    virtual void end() = 0;
    virtual void characters(std::string_view text) = 0;
};

/// The parts that carry no data; taken by who keeps a document whole.
class MarkupEvents : public Events {
  public:
    virtual void comment(std::string_view text) = 0;
    virtual void instruction(std::string_view target, std::string_view text) = 0;
    virtual void cdata(bool begins) = 0;
    /// `standalone` is 1 for "yes", 0 for "no", -1 when it is not stated.
    virtual void declaration(std::string_view version, int standalone) = 0;
};

/// Hand the document to the events that `make` builds over the parser's place. They throw
/// BindingError for text that is not well-formed, holds a DOCTYPE or is larger than the limits.
using MakeEvents = std::function<std::unique_ptr<Events>(const Locator&)>;
using MakeMarkupEvents = std::function<std::unique_ptr<MarkupEvents>(const Locator&)>;
void parseFile(const std::string& path, const Limits& limits, const MakeEvents& make);
void parseText(std::string_view text, const Limits& limits, const MakeEvents& make);
void parseMarkup(std::string_view text, const Limits& limits, const MakeMarkupEvents& make);
/// The quick way of the others. False, with nothing made, for a document that is not plain.
bool parsePlain(std::string_view text, const MakeEvents& make);

}  // namespace mav_host::xml::detail
