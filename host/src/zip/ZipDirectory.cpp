// SPDX-License-Identifier: Apache-2.0
#include "zip/ZipDirectory.h"

#include <algorithm>
#include <cerrno>
#include <optional>

#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"

namespace mav_host {
namespace {

constexpr std::string_view END{"PK\5\6", 4};
constexpr std::string_view END64{"PK\6\6", 4};
constexpr std::string_view LOCATOR64{"PK\6\7", 4};
constexpr std::string_view ENTRY{"PK\1\2", 4};
constexpr std::size_t END_SIZE = 22;
constexpr std::size_t END64_SIZE = 56;
constexpr std::size_t LOCATOR64_SIZE = 20;
constexpr std::size_t ENTRY_SIZE = 46;
constexpr std::size_t LOCAL_SIZE = 30;
/// What may follow the directory: the records of its end and the longest comment.
constexpr std::uint64_t WINDOW = END_SIZE + LOCATOR64_SIZE + 0xffff;

std::uint64_t number(std::string_view bytes, std::size_t at, unsigned size) {
    std::uint64_t value = 0;
    for (unsigned i = 0; i < size; ++i) {
        value |= std::uint64_t{static_cast<unsigned char>(bytes[at + i])} << (8 * i);
    }
    return value;
}

/// A field that is narrow in the record and wide elsewhere when the value does not fit.
constexpr bool isWide(std::uint64_t value, unsigned size) {
    return value == (std::uint64_t{1} << (8 * size)) - 1;
}

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw HEXUserException("The archive '" + path + "' " + reason);
}

/// One record that may be the end of the directory.
struct End {
    std::uint64_t at = 0;
    std::uint64_t count = 0;
    std::uint64_t start = 0;
    std::uint64_t size = 0;
    bool wide = false;
    bool exact = false;    ///< its comment ends with the file
    bool twofold = false;  ///< its narrow and its wide fields name different directories
};

/// Looks for the end of the directory among the last bytes of the file.
class EndSearch {
  public:
    EndSearch(int fd, std::uint64_t size, std::string_view tail)
        : fd_(fd), size_(size), from_(size - tail.size()), tail_(tail) {}

    /// The first record whose comment ends with the file and whose directory is there, else the
    /// first one with a directory. `ambiguous` when there are more.
    std::optional<End> find(bool& ambiguous) {
        std::optional<End> best;
        unsigned ends = 0;
        for (std::size_t at = 0; (at = tail_.find(END, at)) != std::string_view::npos; ++at) {
            if (tail_.size() - at < END_SIZE) break;
            const std::optional<End> end = readEnd(at);
            if (!end) continue;
            const bool good = leadsToDirectory(*end);
            if (end->exact || good) ++ends;
            if (good && (!best || (end->exact && !best->exact))) best = end;
        }
        ambiguous = ends > 1 || (best && best->twofold);
        return best;
    }

  private:
    std::optional<End> readEnd(std::size_t at) const {
        const std::string_view record = tail_.substr(at, END_SIZE);
        End end;
        end.at = from_ + at;
        const std::uint64_t behind = end.at + END_SIZE + number(record, 20, 2);
        if (behind > size_) return std::nullopt;
        end.exact = behind == size_;
        end.count = number(record, 10, 2);
        end.size = number(record, 12, 4);
        end.start = number(record, 16, 4);
        if (at >= LOCATOR64_SIZE && tail_.substr(at - LOCATOR64_SIZE, 4) == LOCATOR64 &&
            !readWide(number(tail_, at - LOCATOR64_SIZE + 8, 8), end)) {
            return std::nullopt;
        }
        return end;
    }

    bool readWide(std::uint64_t at, End& end) const {
        std::string record;
        if (at > end.at || end.at - at < END64_SIZE + LOCATOR64_SIZE) return false;
        if (!readAt(fd_, at, END64_SIZE, record) || record.size() != END64_SIZE) return false;
        if (!record.starts_with(END64)) return false;
        const End narrow = end;
        end.count = number(record, 32, 8);
        end.size = number(record, 40, 8);
        end.start = number(record, 48, 8);
        end.wide = true;
        end.twofold = (!isWide(narrow.count, 2) && narrow.count != end.count) ||
                      (!isWide(narrow.size, 4) && narrow.size != end.size) ||
                      (!isWide(narrow.start, 4) && narrow.start != end.start);
        return true;
    }

    bool leadsToDirectory(const End& end) const {
        if (end.start > end.at || end.size > end.at - end.start) return false;
        if (end.count == 0) return end.exact && end.size == 0;
        if (end.size / ENTRY_SIZE < (end.wide ? end.count : 1)) return false;
        std::string first;
        return readAt(fd_, end.start, ENTRY.size(), first) && first == ENTRY;
    }

    int fd_;
    std::uint64_t size_;
    std::uint64_t from_;
    std::string_view tail_;
};

/// Where a member stands in the file, by its entry in the directory.
struct Extent {
    std::uint64_t start;
    std::uint64_t end;
    std::string_view name;
};

/// The entries of a directory, from the first on.
class Entries {
  public:
    Entries(std::string_view bytes, const End& end, const std::string& path)
        : left_(bytes), end_(end), path_(path) {}

    /// False when an entry cannot be read.
    bool check() {
        std::uint64_t count = end_.count;
        // Some writers count only up to 65,536 and go on without saying so.
        const bool goesOn = !end_.wide;
        for (std::uint64_t i = 0; i < count || (goesOn && left_.starts_with(ENTRY)); ++i) {
            if (i == ZipDirectory::MAX_ENTRIES) refuseCount(path_);
            if (!readEntry()) return false;
        }
        checkPlaces();
        const std::string fault = names_.fault();
        if (!fault.empty()) {
            refuse(path_, "is not read: " + fault + "; pack it again with other names");
        }
        return true;
    }

    [[noreturn]] static void refuseCount(const std::string& path) {
        refuse(path, "has more than " + std::to_string(ZipDirectory::MAX_ENTRIES) +
                         " members, too many to be read");
    }

  private:
    bool readEntry() {
        if (left_.size() < ENTRY_SIZE || !left_.starts_with(ENTRY)) return false;
        const std::size_t name = number(left_, 28, 2);
        const std::size_t extra = number(left_, 30, 2);
        const std::size_t whole = ENTRY_SIZE + name + extra + number(left_, 32, 2);
        if (left_.size() < whole) return false;
        Extent extent{number(left_, 42, 4), number(left_, 20, 4), left_.substr(ENTRY_SIZE, name)};
        readWide(left_.substr(ENTRY_SIZE + name, extra), extent);
        // What lies beyond the file lies beyond the directory, so no sum overflows.
        extent.start = std::min(extent.start, end_.at);
        extent.end = extent.start + LOCAL_SIZE + name + std::min(extent.end, end_.at);
        extents_.push_back(extent);
        names_.add(extent.name);
        left_.remove_prefix(whole);
        return true;
    }

    /// Takes place and packed size from the field for large ones, where the entry has none.
    void readWide(std::string_view extra, Extent& extent) const {
        const bool start = isWide(extent.start, 4);
        const bool packed = isWide(extent.end, 4);
        if (!start && !packed) return;
        while (extra.size() >= 4) {
            const std::size_t size = number(extra, 2, 2);
            std::string_view field = extra.substr(4, size);
            if (number(extra, 0, 2) == 1) {
                if (isWide(number(left_, 24, 4), 4))
                    field = field.substr(std::min<std::size_t>(8, field.size()));
                if (packed) extent.end = take(field, extent.end);
                if (start) extent.start = take(field, extent.start);
                return;
            }
            extra = extra.substr(std::min(4 + size, extra.size()));
        }
    }
    static std::uint64_t take(std::string_view& field, std::uint64_t otherwise) {
        if (field.size() < 8) return otherwise;
        const std::uint64_t value = number(field, 0, 8);
        field.remove_prefix(8);
        return value;
    }

    void checkPlaces() {
        const auto before = [](const Extent& a, const Extent& b) { return a.start < b.start; };
        if (!std::is_sorted(extents_.begin(), extents_.end(), before)) {
            std::sort(extents_.begin(), extents_.end(), before);
        }
        for (std::size_t i = 0; i < extents_.size(); ++i) {
            const std::uint64_t next = i + 1 < extents_.size() ? extents_[i + 1].start : end_.start;
            if (extents_[i].end <= next) continue;
            refuse(path_,
                   "is damaged or forged: its member '" + std::string(extents_[i].name) +
                       "' shares bytes with another one or with the directory; get it afresh");
        }
    }

    std::string_view left_;
    const End& end_;
    const std::string& path_;
    std::vector<Extent> extents_;
    NameTable names_;
};

/// The value that libzip's name table has for a name, which ends at a null byte there.
std::uint32_t hashOf(std::string_view name) {
    std::uint32_t hash = 5381;
    for (const char c : name.substr(0, name.find('\0'))) {
        hash = hash * 33 + static_cast<unsigned char>(c);
    }
    return hash;
}

/// libzip may take the name for one of another encoding.
bool isConverted(std::string_view name) {
    const auto isControl = [](char c) { return c >= 0 && c < ' '; };
    return std::any_of(name.begin(), name.end(), isControl) || !HI18N_isUTF8(name);
}

}  // namespace

bool readAt(int fd, std::uint64_t offset, std::size_t size, std::string& bytes) {
    bytes.resize(size);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count =
            ::pread(fd, bytes.data() + done, size - done, static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    bytes.resize(done);
    return true;
}

bool ZipDirectory::read(const FileDescriptor& file, std::uint64_t size, const std::string& path) {
    const std::uint64_t window = std::min(size, WINDOW);
    if (!readAt(file.get(), size - window, window, bytes) || bytes.size() != window) return false;
    const std::optional<End> found = EndSearch(file.get(), size, bytes).find(ambiguous);
    if (!found) return false;
    if (found->count > MAX_ENTRIES) Entries::refuseCount(path);
    if (found->at - found->start > MAX_SIZE) {
        refuse(path, "has a directory of more than " + std::to_string(MAX_SIZE) +
                         " bytes, too large to be read");
    }
    start = found->start;
    end = found->at + END_SIZE;
    from = size - window;
    comment = bytes.substr(end - from);
    if (start < from) {
        from = start;
        if (!readAt(file.get(), from, end - from, bytes) || bytes.size() != end - from)
            return false;
    }
    bytes.resize(end - from);
    bytes[bytes.size() - 2] = bytes[bytes.size() - 1] = '\0';
    return Entries(std::string_view(bytes).substr(start - from, found->size), *found, path).check();
}

std::string NameTable::fault() const {
    // The table begins with 256 places and doubles when it is filled to three quarters.
    constexpr std::size_t FIRST = 256;
    if (names_.size() <= FIRST * 3 / 4) return "";
    if (std::count_if(names_.begin(), names_.end(), isConverted) > MAX_UNENCODED) {
        return "more than " + std::to_string(MAX_UNENCODED) + " of its member names are not UTF-8";
    }
    std::vector<std::uint32_t> hashes(names_.size());
    std::transform(names_.begin(), names_.end(), hashes.begin(), hashOf);
    for (std::size_t size = 2 * FIRST; size * 3 / 8 < hashes.size(); size *= 2) {
        std::vector<std::uint32_t> places(size);
        const std::size_t there = std::min(hashes.size(), size * 3 / 4);
        for (std::size_t i = 0; i < there; ++i) {
            if (++places[hashes[i] % size] > MAX_EQUAL) {
                return "more than " + std::to_string(MAX_EQUAL) +
                       " of its member names are equal or made to fall together";
            }
        }
    }
    return "";
}

}  // namespace mav_host
