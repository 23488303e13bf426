// SPDX-License-Identifier: Apache-2.0
#include "check/CheckSource.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"

namespace mav_platform::check {
namespace {

constexpr std::size_t LONGEST = 240;  ///< bytes of a line that are kept
constexpr std::size_t BEFORE = 80;    ///< of them before the place

bool isInside(std::string_view text, std::size_t i) {
    return i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80;
}

/// Code units of UTF-16 that the UTF-8 text takes.
std::size_t units(std::string_view text) {
    std::size_t count = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0U) != 0x80) count += byte >= 0xF0 ? 2 : 1;
    }
    return count;
}

/// Puts the line, or what stands around the column, into the finding.
void quote(std::string_view line, CheckFinding& finding) {
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::size_t column = std::min(finding.column, line.size() + 1);
    if (column > 0) finding.column16 = units(line.substr(0, column - 1)) + 1;
    std::size_t begin = 0;
    if (line.size() > LONGEST && column > BEFORE) begin = column - BEFORE;
    while (isInside(line, begin)) ++begin;
    std::size_t end = std::min(line.size(), begin + LONGEST);
    while (isInside(line, end)) --end;
    finding.source = line.substr(begin, end - begin);
    finding.sourceColumn = column > begin ? column - begin : 0;
}

/// The text of the files that findings are about, one at a time.
class Texts {
  public:
    /// Nothing when it cannot be read.
    const std::string* of(const CheckFinding& finding) {
        if (finding.file != file_) {
            file_ = finding.file;
            text_ = read(finding);
            if (text_ && !HI18N_isAscii(*text_)) text_ = HI18N_convertToUTF8(*text_);
        }
        return text_ ? &*text_ : nullptr;
    }

  private:
    std::optional<std::string> read(const CheckFinding& finding) {
        try {
            if (finding.member.empty()) {
                return HUTFileUtils::readWhole(file_, HUTZip::MAX_METADATA_SIZE);
            }
            const std::string path = file_.substr(0, file_.size() - finding.member.size() - 1);
            if (!archive_ || archive_->path() != path) archive_.emplace(path);
            return archive_->read(finding.member, HUTZip::MAX_METADATA_SIZE);
        } catch (const HEXError&) {
            return std::nullopt;
        }
    }

    std::string file_;
    std::optional<std::string> text_;
    std::optional<mav_host::ZipArchive> archive_;
};

}  // namespace

void fillMembers(HSTVector<CheckFinding>& findings, const std::set<std::string>& archives) {
    for (CheckFinding& finding : findings) {
        for (std::size_t slash = finding.file.find('/'); slash != std::string::npos;
             slash = finding.file.find('/', slash + 1)) {
            if (archives.count(finding.file.substr(0, slash)) == 0) continue;
            finding.member = finding.file.substr(slash + 1);
            break;
        }
    }
}

void fillSources(HSTVector<CheckFinding>& findings) {
    Texts texts;
    const std::string* text = nullptr;
    std::size_t line = 0, begin = 0;
    const CheckFinding* before = nullptr;
    for (CheckFinding& finding : findings) {
        if (finding.line == 0) continue;
        const bool isSame = before != nullptr && before->file == finding.file;
        before = &finding;
        if (!isSame) {
            text = texts.of(finding);
            line = 1;
            begin = 0;
        }
        // Lines of one file stand in order.
        while (text != nullptr && line < finding.line && begin <= text->size()) {
            begin = std::min(text->find('\n', begin), text->size()) + 1;
            ++line;
        }
        if (text == nullptr || begin > text->size()) continue;
        const std::string_view rest = std::string_view(*text).substr(begin);
        quote(rest.substr(0, rest.find('\n')), finding);
    }
}

}  // namespace mav_platform::check
