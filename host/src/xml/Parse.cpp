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
#include <optional>
#include <random>
#include <system_error>
#include <utility>
#include <vector>

#include "xml/Binder.h"
#include "xml/plain/PlainDocument.h"

namespace mav_host::xml::detail {
namespace {

constexpr int FIRST_PIECE = 64 << 10;
constexpr int LARGEST_PIECE = 64 << 20;
#ifdef MAV_PLAIN_XML
constexpr bool PLAIN_FIRST = true;
#else
constexpr bool PLAIN_FIRST = false;
#endif

void checkSize(std::size_t size, const Limits& limits) {
    if (size <= limits.bytes) return;
    throw BindingError(BindingError::Kind::Limit,
                       "the document is larger than " + std::to_string(limits.bytes) + " bytes");
}

struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserPtr = std::unique_ptr<XML_ParserStruct, FreeParser>;

/// Asked of the system once; the parser would ask for every document.
unsigned long hashSalt() {
    static const unsigned long SALT = [] {
        std::random_device source;
        return (static_cast<unsigned long>(source()) << 32U) | source() | 1U;
    }();
    return SALT;
}

/// The thread's spare parser. One that has read a small document serves the next without asking for
/// its memory again; one that has read a large document would hold on to too much.
thread_local ParserPtr spareParser;

ParserPtr takeParser() {
    ParserPtr parser = std::move(spareParser);
    if (!parser || XML_ParserReset(parser.get(), nullptr) == XML_FALSE) {
        parser.reset(XML_ParserCreate(nullptr));
    }
    if (!parser) throw std::bad_alloc();
    XML_SetHashSalt(parser.get(), hashSalt());
    return parser;
}

/// A parser that hands on what it meets. Exceptions wait until the parser, which is C, has
/// returned.
class Parse final : public Locator {
  public:
    explicit Parse(const Limits& limits) : limits_(limits), parser_(takeParser()) {
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), onStart, onEnd);
        XML_SetCharacterDataHandler(parser_.get(), onCharacters);
        XML_SetStartDoctypeDeclHandler(parser_.get(), onDoctype);
    }

    ~Parse() override {
        if (size_ <= std::size_t{FIRST_PIECE}) spareParser = std::move(parser_);
    }
    Parse(const Parse&) = delete;
    Parse& operator=(const Parse&) = delete;

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
    void stream(int file, std::size_t claimedSize);

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
        guarded(self, [&](Parse& parse) {
            parse.attributes_.clear();
            for (; *attributes != nullptr; attributes += 2)
                parse.attributes_.push_back({attributes[0], attributes[1]});
            parse.events_->start(name, parse.attributes_);
        });
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
        throw BindingError(BindingError::Kind::Syntax, text, at.line, at.column);
    }
    void check(XML_Status status) const {
        if (failure_ != nullptr) std::rethrow_exception(failure_);
        if (status == XML_STATUS_OK) return;
        const XML_Error fault = XML_GetErrorCode(parser_.get());
        if (fault == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
        refuse(std::string("XML syntax error: ") + XML_ErrorString(fault));
    }
    void addSize(std::size_t size) {
        size_ += size;
        checkSize(size_, limits_);
    }

    const Limits& limits_;
    ParserPtr parser_;
    std::size_t size_ = 0;  ///< bytes of the document so far
    std::exception_ptr failure_;
    std::unique_ptr<Events> events_;
    MarkupEvents* markup_ = nullptr;  ///< the events, when they take markup too
    std::vector<AttributeView> attributes_;
};

void Parse::text(std::string_view text) {
    addSize(text.size());
    while (text.size() > static_cast<std::size_t>(LARGEST_PIECE)) {
        check(XML_Parse(parser_.get(), text.data(), LARGEST_PIECE, XML_FALSE));
        text.remove_prefix(static_cast<std::size_t>(LARGEST_PIECE));
    }
    check(XML_Parse(parser_.get(), text.empty() ? "" : text.data(), static_cast<int>(text.size()),
                    XML_TRUE));
}

/// Reads up to `room` bytes; 0 at the end of the file.
std::size_t readPiece(int file, void* to, std::size_t room) {
    for (;;) {
        const ssize_t count = read(file, to, room);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR)
            throw BindingError(
                BindingError::Kind::Unreadable,
                "the file cannot be read: " + std::generic_category().message(errno));
    }
}

void Parse::stream(int file, std::size_t claimedSize) {
    // One byte more than a small file claims shows that it ends there.
    int piece = static_cast<int>(std::min<std::size_t>(claimedSize + 1, FIRST_PIECE));
    XML_Index reached = -1;
    while (true) {
        void* buffer = XML_GetBuffer(parser_.get(), piece);
        if (buffer == nullptr) throw std::bad_alloc();
        const std::size_t count = readPiece(file, buffer, static_cast<std::size_t>(piece));
        addSize(count);
        const bool ends =
            count == 0 || (size_ == claimedSize && count < static_cast<std::size_t>(piece));
        check(XML_ParseBuffer(parser_.get(), static_cast<int>(count), ends));
        if (ends) return;
        // The parser begins an unfinished token anew with each piece; larger ones keep that linear.
        const XML_Index now = XML_GetCurrentByteIndex(parser_.get());
        piece = now > reached ? FIRST_PIECE : std::min(piece * 2, LARGEST_PIECE);
        reached = now;
    }
}

/// Of what is no regular file.
const char* kindOf(mode_t mode) {
    if (S_ISDIR(mode)) return "directory";
    return S_ISFIFO(mode) ? "pipe" : "device";
}

/// Closes the file at the end of the scope.
class OpenFile {
  public:
    /// Without waiting: a named pipe that nobody writes to is refused like any other that is no
    /// file.
    explicit OpenFile(const std::string& path)
        : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (file_ < 0)
            throw BindingError(
                BindingError::Kind::Unreadable,
                "the file cannot be opened: " + std::generic_category().message(errno));
    }
    ~OpenFile() { close(file_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int get() const { return file_; }
    /// The size that the system tells, which a file that is being written may exceed.
    std::size_t size() const {
        struct stat status {};
        if (fstat(file_, &status) != 0 || !S_ISREG(status.st_mode))
            throw BindingError(BindingError::Kind::Unreadable,
                               std::string("the path is a ") + kindOf(status.st_mode) +
                                   ", not a regular file; give the path of one");
        return static_cast<std::size_t>(status.st_size);
    }

  private:
    int file_;
};

/// The text of a small file that ends where it claims to.
std::optional<std::string> smallText(int file, std::size_t claimedSize) {
    if (claimedSize >= std::size_t{FIRST_PIECE}) return std::nullopt;
    std::string text(claimedSize + 1, '\0');
    text.resize(readPiece(file, text.data(), text.size()));
    if (text.size() == claimedSize) return text;
    if (lseek(file, 0, SEEK_SET) != 0)
        throw BindingError(BindingError::Kind::Unreadable,
                           "the file cannot be read: " + std::generic_category().message(errno));
    return std::nullopt;
}

}  // namespace

bool parsePlain(std::string_view text, const MakeEvents& make) {
    PlainDocument document(text);
    if (!document.check()) return false;
    document.replay(*make(document));
    return true;
}

void parseFile(const std::string& path, const Limits& limits, const MakeEvents& make) {
    const OpenFile file(path);
    const std::size_t size = file.size();
    if (const auto text = smallText(file.get(), size)) {
        parseText(*text, limits, make);
        return;
    }
    Parse parse(limits);
    parse.to(make(parse));
    parse.stream(file.get(), size);
}

void parseText(std::string_view text, const Limits& limits, const MakeEvents& make) {
    checkSize(text.size(), limits);
    if (PLAIN_FIRST && parsePlain(text, make)) return;
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
