// SPDX-License-Identifier: Apache-2.0
#include "floor.h"

#include <fcntl.h>
#include <libdeflate.h>
#include <simdjson.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace {

namespace od = simdjson::ondemand;

[[noreturn]] void fail() {
    std::abort();
}

/// The file's bytes, mapped.
class Mapping {
  public:
    explicit Mapping(const char* path) {
        const int fd = ::open(path, O_RDONLY);
        struct stat status;
        if (fd < 0 || ::fstat(fd, &status) != 0) fail();
        size_ = static_cast<std::size_t>(status.st_size);
        data_ = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, fd, 0);
        ::close(fd);
        if (data_ == MAP_FAILED) fail();
    }
    ~Mapping() { ::munmap(data_, size_); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;
    const unsigned char* at(std::size_t offset) const {
        return static_cast<const unsigned char*>(data_) + offset;
    }
    std::size_t size() const { return size_; }

  private:
    void* data_ = nullptr;
    std::size_t size_ = 0;
};

std::uint32_t number(const unsigned char* at, int bytes) {
    std::uint32_t value = 0;
    for (int i = bytes; i-- > 0;) value = value << 8 | at[i];
    return value;
}

/// Inflates one member into a padded string.
simdjson::padded_string inflate(const Mapping& file, std::string_view name) {
    std::size_t end = file.size() - 22;
    while (std::memcmp(file.at(end), "PK\5\6", 4) != 0) --end;
    const unsigned char* entry = file.at(number(file.at(end + 16), 4));
    for (std::uint32_t left = number(file.at(end + 10), 2); left > 0; --left) {
        const std::uint32_t nameSize = number(entry + 28, 2);
        const std::string_view found(reinterpret_cast<const char*>(entry + 46), nameSize);
        if (found == name) {
            const unsigned char* local = file.at(number(entry + 42, 4));
            const unsigned char* data = local + 30 + number(local + 26, 2) + number(local + 28, 2);
            simdjson::padded_string text(number(entry + 24, 4));
            libdeflate_decompressor* decompressor = libdeflate_alloc_decompressor();
            const auto result = libdeflate_deflate_decompress(
                decompressor, data, number(entry + 20, 4), text.data(), text.size(), nullptr);
            libdeflate_free_decompressor(decompressor);
            if (result != LIBDEFLATE_SUCCESS) fail();
            return text;
        }
        entry += 46 + nameSize + number(entry + 30, 2) + number(entry + 32, 2);
    }
    fail();
}

/// The document's key for an attribute of the hpfm, without its prefix.
std::string_view keyOf(std::string_view name) {
    static constexpr std::pair<std::string_view, std::string_view> OTHERS[] = {
        {"instanceRef", "instRef"}, {"componentRef", "compRef"},
        {"busTypeRef", "typeRef"},  {"busInterfaceRef", "interfaceRef"},
        {"memport", "memPort"},     {"sptag", "spTag"},
        {"idBits", "numIdBits"},
    };
    for (const auto& [attribute, key] : OTHERS)
        if (name == attribute) return key;
    return name;
}

/// Writes pretty JSON into one buffer that is large enough from the start; untouched pages of it
/// cost nothing.
class Writer {
  public:
    explicit Writer(std::size_t capacity) : data_(new char[capacity]), at_(data_.get()) {}

    void raw(std::string_view text) {
        std::memcpy(at_, text.data(), text.size());
        at_ += text.size();
    }
    void blanks(int depth) {
        std::memset(at_, ' ', static_cast<std::size_t>(depth) * 4);
        at_ += depth * 4;
    }
    void quoted(std::string_view text) {
        *at_++ = '"';
        for (const char c : text) {
            if (c == '/') *at_++ = '\\';
            *at_++ = c;
        }
        *at_++ = '"';
    }
    void value(od::value item, int depth) {
        switch (item.type()) {
            case od::json_type::array:
                list(item.get_array(), depth);
                break;
            case od::json_type::object:
                object(item.get_object(), depth);
                break;
            default:
                quoted(item.get_string().value());
        }
    }
    void list(od::array items, int depth) {
        raw("[\n");
        items_(items, depth, true);
    }
    /// The list of bus interfaces: those of the hpfm first.
    void list(const pugi::xml_document& hpfm, od::array items, int depth) {
        raw("[\n");
        bool first = true;
        for (const pugi::xml_node bus : hpfm.first_child().first_child()) {
            if (!first) raw(",\n");
            first = false;
            blanks(depth + 1);
            element(bus, depth + 1);
        }
        items_(items, depth, first);
    }
    void items_(od::array items, int depth, bool first) {
        for (od::value item : items) {
            if (!first) raw(",\n");
            first = false;
            blanks(depth + 1);
            value(item, depth + 1);
        }
        raw("\n");
        blanks(depth);
        raw("]");
    }
    void element(pugi::xml_node node, int depth) {
        raw("{\n");
        bool first = true;
        for (const pugi::xml_attribute attribute : node.attributes()) {
            if (!first) raw(",\n");
            first = false;
            blanks(depth + 1);
            quoted(keyOf(attribute.name() + 3));
            raw(": ");
            quoted(attribute.value());
        }
        if (node.first_child()) {
            raw(",\n");
            blanks(depth + 1);
            raw("\"addressSegments\": [\n");
            for (const pugi::xml_node child : node) {
                blanks(depth + 2);
                element(child, depth + 2);
                raw(child.next_sibling() ? ",\n" : "\n");
            }
            blanks(depth + 1);
            raw("]");
        }
        raw("\n");
        blanks(depth);
        raw("}");
    }
    void object(od::object members, int depth) {
        raw("{\n");
        bool first = true;
        for (od::field member : members) {
            if (!first) raw(",\n");
            first = false;
            blanks(depth + 1);
            quoted(std::string_view(member.unescaped_key()));
            raw(": ");
            value(member.value(), depth + 1);
        }
        raw("\n");
        blanks(depth);
        raw("}");
    }
    void member(std::string_view key, std::string_view text, int depth) {
        blanks(depth);
        quoted(key);
        raw(": ");
        quoted(text);
        raw(",\n");
    }
    void members(std::initializer_list<std::pair<std::string_view, std::string_view>> all,
                 int depth) {
        for (const auto& [key, text] : all) member(key, text, depth);
    }
    FloorText take() {
        FloorText text;
        text.size = static_cast<std::size_t>(at_ - data_.get());
        text.data = std::move(data_);
        return text;
    }

  private:
    std::unique_ptr<char[]> data_;
    char* at_;
};

void head(Writer& out, const char* path) {
    const std::string_view file = path;
    out.raw("{\n");
    out.members({{"uniqueName", file},
                 {"type", "Undefined"},
                 {"unified", "false"},
                 {"qpfm", "false"},
                 {"hardware", "false"},
                 {"softwareEmulation", "false"},
                 {"hardwareEmulation", "false"},
                 {"hardwareEmuPlatform", "false"},
                 {"hidden", "false"},
                 {"file", file},
                 {"directory", file.substr(0, file.rfind('/'))}},
                1);
    out.raw(
        "    \"targetCategories\": [\n        \"Acceleration\"\n    ],\n"
        "    \"hardwarePlatforms\": {\n        \"hardwarePlatform\": {\n");
}

void beforeLists(Writer& out, std::string_view major, std::string_view minor) {
    out.members({{"versionMajor", major},
                 {"versionMinor", minor},
                 {"hostArchitecture", "unknown"},
                 {"usesPR", "false"},
                 {"acceleratorBinaryFormat", "qclbin2"},
                 {"acceleratorBinaryContent", "bitstream"},
                 {"dcpFunctionStripped", "false"},
                 {"dcpEncrypted", "false"}},
                3);
    out.raw(
        "            \"designIntent\": {\n"
        "                \"dataCenter\": \"false\",\n"
        "                \"embedded\": \"false\",\n"
        "                \"externalHost\": \"false\",\n"
        "                \"serverManaged\": \"false\"\n            },\n");
}

void betweenLists(Writer& out, const char* path, std::string_view vendor, std::string_view board,
                  std::string_view name) {
    out.members({{"vendor", vendor},
                 {"boardId", board},
                 {"name", name},
                 {"uniqueName", path},
                 {"platformFile", path},
                 {"unifiedPlatform", "false"},
                 {"expandablePlatform", "false"},
                 {"hardware", "false"},
                 {"softwareEmulation", "false"},
                 {"hardwareEmulation", "false"},
                 {"hardwareEmuPlatform", "false"},
                 {"usesNIFD", "false"},
                 {"generatedChangeList", "0"}},
                3);
    out.raw(
        "            \"dpeHardware\": {\n                \"arch\": \"NO_DPE\",\n"
        "                \"npiBaseAddress\": \"0\",\n");
    for (const char* rows : {"shimRows", "coreRows", "memRows"}) {
        out.raw("                \"");
        out.raw(rows);
        out.raw(
            "\": {\n                    \"start\": \"4294967295\",\n"
            "                    \"num\": \"0\"\n                },\n");
    }
    out.raw("                \"archMap\": {\n");
    for (const char* arch :
         {"0\": \"NO_DPE\",\n", "1\": \"DPE_A\",\n", "2\": \"DPE_B\",\n", "3\": \"DPE_C\",\n",
          "4\": \"DPE_D\",\n", "5\": \"DPE_E\",\n", "6\": \"DPE_F\"\n"}) {
        out.raw("                    \"");
        out.raw(arch);
    }
    out.raw("                }\n            },\n");
}

}  // namespace

FloorText floorJson(const char* path) {
    const Mapping file(path);
    const simdjson::padded_string text = inflate(file, "pka.json");
    // What 2-blank indentation and bare text become with deeper indentation stays below this.
    simdjson::padded_string hpfmText = inflate(file, "card.hpfm");
    pugi::xml_document hpfm;
    if (!hpfm.load_buffer_inplace(hpfmText.data(), hpfmText.size(), pugi::parse_minimal)) fail();
    Writer out((text.size() + hpfmText.size()) * 3 + (1U << 16U));
    od::parser parser;
    od::document document = parser.iterate(text);
    od::object root = document.get_object();
    const auto next = [&root](const char* key) { return root.find_field(key).value(); };
    const std::string vendor(next("vendor").get_string().value());
    const std::string board(next("boardId").get_string().value());
    const std::string name(next("name").get_string().value());
    const std::string major(next("versionMajor").get_string().value());
    const std::string minor(next("versionMinor").get_string().value());
    const auto list = [&](const char* key, const char* end) {
        out.blanks(3);
        out.quoted(key);
        out.raw(": ");
        out.value(next(key), 3);
        out.raw(end);
    };
    head(out, path);
    beforeLists(out, major, minor);
    list("memories", ",\n");
    list("files", ",\n");
    betweenLists(out, path, vendor, board, name);
    list("systemClocks", ",\n");
    list("ipParameters", ",\n");
    out.blanks(3);
    out.raw("\"busInterfaces\": ");
    out.list(hpfm, next("busInterfaces").get_array(), 3);
    out.raw("\n");
    out.raw("        }\n    }\n}\n");
    return out.take();
}
