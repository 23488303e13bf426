// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "mav_host/xml/Binding.h"
#include "xml/Parse.h"

namespace mav_host::xml::detail {

/// Takes a document's events and fills the structs of its format. Every operation throws
/// BindingError for what the format does not allow.
class Binder final : public Events {
  public:
    using Attributes = std::span<const AttributeView>;

    Binder(const Document& document, void* root, Findings* findings, const Locator& locator);

    void start(std::string_view name, Attributes attributes) override;
    void end() override;
    void characters(std::string_view text) override;

  private:
    /// One open element that the format knows.
    struct Frame {
        const ElementList* list = nullptr;  ///< null in an element that is only a value
        const Item* value = nullptr;        ///< takes the element's text; null when that is nothing
        void* object = nullptr;
        std::string name;
        std::string text;
        Position start;                   ///< set when errors at the end need it
        std::uint64_t present = 0;        ///< choice bits of the children so far
        std::vector<unsigned char> seen;  ///< by item: it occurred
    };

    std::string_view compared(std::string_view name) const;
    void startRoot(std::string_view name, Attributes attributes);
    void startChild(std::string_view name, Attributes attributes);
    void open(std::string_view name, const ElementList* list, const Item* value, void* object,
              Attributes attributes);
    void bindAttributes(Frame& frame, Attributes attributes);
    void ignoreAttributes(const Frame& frame, Attributes attributes);
    void checkAttributes(const Frame& frame);
    void checkContent(const Frame& frame);
    /// Keeps the fault when that is asked for, else throws it.
    void refuse(const Position& at, const std::string& text);
    void find(Finding::Kind kind, std::string_view name, const Frame& parent);

    const Document& document_;
    void* root_;
    Findings* findings_;
    const Locator& locator_;
    std::vector<Frame> frames_;  ///< the first `open_` are in use, the rest wait for their next one
    std::size_t open_ = 0;
    std::size_t ignored_ = 0;   ///< depth inside an element that the format does not know
    std::size_t elements_ = 0;  ///< elements opened so far
};

}  // namespace mav_host::xml::detail
