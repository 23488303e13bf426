// SPDX-License-Identifier: Apache-2.0
#include "xml/Parse.h"

#include <expat.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "xml/Binder.h"

namespace mav_host::xml::detail {
namespace {

constexpr int FIRST_PIECE = 64 << 10;
constexpr int LARGEST_PIECE = 64 << 20;

struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserPtr = std::unique_ptr<XML_ParserStruct, FreeParser>;

/// A parser that hands on what it meets. Exceptions wait until the parser, which is C, has
/// returned.
class Parse final : public Locator {
  public:
    explicit Parse(const Limits& limits) : limits_(limits), parser_(XML_ParserCreate(nullptr)) {
        if (parser_ == nullptr) throw std::bad_alloc();
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), onStart, onEnd);
        XML_SetCharacterDataHandler(parser_.get(), onCharacters);
        XML_SetStartDoctypeDeclHandler(parser_.get(), onDoctype);
    }

    void to(std::unique_ptr<Events> events) { events_ = std::move(events); }
    void toMarkup(std::unique_ptr<MarkupEvents> events) {
        markup_ = events.get();
        events_ = std::move(events);
        XML_SetCommentHandler(parser_.get(), onComment);
        XML_SetProcessingInstructionHandler(parser_.get(), onInstruction);
        XML_SetCdataSectionHandler(parser_.get(), onCdataStart, onCdataEnd);
        XML_SetXmlDeclHandler(parser_.get(), onDeclaration);
    }

    void text(std::string_view text);
    void stream(int file);

    Position position() const override {
        return {static_cast<std::size_t>(XML_GetCurrentLineNumber(parser_.get())),
                static_cast<std::size_t>(XML_GetCurrentColumnNumber(parser_.get())) + 1};
    }

  private:
    template <class Action>
    static void guarded(void* self, Action action) noexcept {
        auto& parse = *static_cast<Parse*>(self);
        // A stopped parser still delivers the end of an empty element.
        if (parse.failure_ != nullptr) return;
        try {
            action(parse);
        } catch (...) {
            parse.failure_ = std::current_exception();
            XML_StopParser(parse.parser_.get(), XML_FALSE);
        }
    }
    static void XMLCALL onStart(void* self, const XML_Char* name, const XML_Char** attributes) {
        guarded(self, [&](Parse& parse) { parse.events_->start(name, attributes); });
    }
    static void XMLCALL onEnd(void* self, const XML_Char*) {
        guarded(self, [](Parse& parse) { parse.events_->end(); });
    }
    static void XMLCALL onCharacters(void* self, const XML_Char* text, int length) {
        guarded(self, [&](Parse& parse) {
            parse.events_->characters({text, static_cast<std::size_t>(length)});
        });
    }
    static void XMLCALL onDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                                  int) {
        guarded(self, [](Parse& parse) {
            parse.refuse("a document type declaration (DOCTYPE) is not allowed");
        });
    }

    static void XMLCALL onComment(void* self, const XML_Char* text) {
        guarded(self, [&](Parse& parse) { parse.markup_->comment(text); });
    }
    static void XMLCALL onInstruction(void* self, const XML_Char* target, const XML_Char* text) {
        guarded(self, [&](Parse& parse) { parse.markup_->instruction(target, text); });
    }
    static void XMLCALL onCdataStart(void* self) {
        guarded(self, [](Parse& parse) { parse.markup_->cdata(true); });
    }
    static void XMLCALL onCdataEnd(void* self) {
        guarded(self, [](Parse& parse) { parse.markup_->cdata(false); });
    }
    static void XMLCALL onDeclaration(void* self, const XML_Char* version, const XML_Char*,
                                      int standalone) {
        guarded(self, [&](Parse& parse) {
            parse.markup_->declaration(version == nullptr ? "1.0" : version, standalone);
        });
    }

    [[noreturn]] void refuse(const std::string& text) const {
        const Position at = position();
        throw BindingError(text, at.line, at.column);
    }
    void check(XML_Status status) const {
        if (failure_ != nullptr) std::rethrow_exception(failure_);
        if (status == XML_STATUS_OK) return;
        const XML_Error fault = XML_GetErrorCode(parser_.get());
        if (fault == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
        refuse(std::string("XML syntax error: ") + XML_ErrorString(fault));
    }
    void checkSize(std::size_t size) const {
        if (size > limits_.bytes)
            throw BindingError("the document is larger than " + std::to_string(limits_.bytes) +
                               " bytes");
    }

    const Limits& limits_;
    ParserPtr parser_;
    std::exception_ptr failure_;
    std::unique_ptr<Events> events_;
    MarkupEvents* markup_ = nullptr;  ///< the events, when they take markup too
};

void Parse::text(std::string_view text) {
    checkSize(text.size());
    while (text.size() > static_cast<std::size_t>(LARGEST_PIECE)) {
        check(XML_Parse(parser_.get(), text.data(), LARGEST_PIECE, XML_FALSE));
        text.remove_prefix(static_cast<std::size_t>(LARGEST_PIECE));
    }
    check(XML_Parse(parser_.get(), text.empty() ? "" : text.data(), static_cast<int>(text.size()),
                    XML_TRUE));
}

void Parse::stream(int file) {
    std::size_t size = 0;
    int piece = FIRST_PIECE;
    XML_Index reached = -1;
    while (true) {
        void* buffer = XML_GetBuffer(parser_.get(), piece);
        if (buffer == nullptr) throw std::bad_alloc();
        const ssize_t count = read(file, buffer, static_cast<std::size_t>(piece));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            throw BindingError("the file cannot be read: " +
                               std::generic_category().message(errno));
        size += static_cast<std::size_t>(count);
        checkSize(size);
        check(XML_ParseBuffer(parser_.get(), static_cast<int>(count), count == 0));
        if (count == 0) return;
        // The parser begins an unfinished token anew with each piece; larger ones keep that linear.
        const XML_Index now = XML_GetCurrentByteIndex(parser_.get());
        piece = now > reached ? FIRST_PIECE : std::min(piece * 2, LARGEST_PIECE);
        reached = now;
    }
}

/// Closes the file at the end of the scope.
class OpenFile {
  public:
    explicit OpenFile(const std::string& path) : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (file_ < 0)
            throw BindingError("the file cannot be opened: " +
                               std::generic_category().message(errno));
    }
    ~OpenFile() { close(file_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int get() const { return file_; }
    bool isDirectory() const {
        struct stat status {};
        return fstat(file_, &status) == 0 && S_ISDIR(status.st_mode);
    }

  private:
    int file_;
};

}  // namespace

void parseFile(const std::string& path, const Limits& limits, const MakeEvents& make) {
    const OpenFile file(path);
    if (file.isDirectory()) throw BindingError("the path is a directory, not a file");
    Parse parse(limits);
    parse.to(make(parse));
    parse.stream(file.get());
}

void parseText(std::string_view text, const Limits& limits, const MakeEvents& make) {
    Parse parse(limits);
    parse.to(make(parse));
    parse.text(text);
}

void parseMarkup(std::string_view text, const Limits& limits, const MakeMarkupEvents& make) {
    Parse parse(limits);
    parse.toMarkup(make(parse));
    parse.text(text);
}

void bindFile(const Document& document, const std::string& path, void* root, Findings* findings) {
    parseFile(path, document.limits, [&](const Locator& locator) {
        return std::make_unique<Binder>(document, root, findings, locator);
    });
}

void bindText(const Document& document, std::string_view text, void* root, Findings* findings) {
    parseText(text, document.limits, [&](const Locator& locator) {
        return std::make_unique<Binder>(document, root, findings, locator);
    });
}

}  // namespace mav_host::xml::detail
