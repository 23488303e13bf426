// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "mav_host/xml/BindingError.h"
#include "xml/Parse.h"

/// The quick way through an XML document held against the parser.
namespace plain_xml {

using namespace mav_host::xml::detail;

/// Writes down what it is handed, texts in one piece, with the places of the tags.
class Recorder final : public MarkupEvents {
  public:
    Recorder(std::string& out, const Locator& locator) : out_(out), locator_(locator) {}
    void start(std::string_view name, std::span<const AttributeView> attributes) override {
        place('<');
        out_.append(name);
        for (const AttributeView& attribute : attributes) {
            out_ += '\1';
            out_.append(attribute.name) += '\2';
            out_.append(attribute.value);
        }
    }
    void end() override { place('>'); }
    void characters(std::string_view text) override {
        if (!inText_) out_ += '\3';
        inText_ = true;
        out_.append(text);
    }
    void comment(std::string_view) override {}
    void instruction(std::string_view, std::string_view) override {}
    void cdata(bool) override {}
    void declaration(std::string_view, int) override {}

  private:
    void place(char kind) {
        const Position at = locator_.position();
        out_ += kind;
        const std::size_t numbers[] = {at.line, at.column};
        for (std::size_t number : numbers) {
            do out_ += static_cast<char>('0' + number % 64);
            while ((number /= 64) != 0);
            out_ += ' ';
        }
        inText_ = false;
    }
    std::string& out_;
    const Locator& locator_;
    bool inText_ = false;
};

/// What the parser makes of a document, "!" and its reason when it refuses it.
inline std::string parsed(std::string_view text) {
    std::string events;
    try {
        parseMarkup(text, mav_host::xml::Limits(), [&](const Locator& locator) {
            return std::make_unique<Recorder>(events, locator);
        });
    } catch (const mav_host::xml::BindingError& error) {
        return std::string("!") + error.what();
    }
    return events;
}

enum class Way { LEFT_TO_THE_PARSER, SAME, DIFFERENT };

inline Way compare(std::string_view text) {
    std::string events;
    const bool plain = parsePlain(
        text, [&](const Locator& locator) { return std::make_unique<Recorder>(events, locator); });
    if (!plain) return Way::LEFT_TO_THE_PARSER;
    return events == parsed(text) ? Way::SAME : Way::DIFFERENT;
}

}  // namespace plain_xml
