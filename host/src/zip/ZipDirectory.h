// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "FileDescriptor.h"

namespace mav_host {

/// Reads from the file at `offset` without moving its position. False with errno set when that
/// fails; the text is shorter than `size` where the file ends before.
bool readAt(int fd, std::uint64_t offset, std::size_t size, std::string& bytes);

/// The directory at the end of an archive, as it is checked before libzip sees it.
struct ZipDirectory {
    static constexpr std::uint64_t MAX_ENTRIES = 1'000'000;
    /// In bytes (256 MiB).
    static constexpr std::uint64_t MAX_SIZE = std::uint64_t{1} << 28;

    std::uint64_t start = 0;  ///< place of the first entry
    std::uint64_t end = 0;    ///< behind the end record, where the comment begins
    std::uint64_t from = 0;   ///< place in the file of the first of `bytes`
    std::string bytes;    ///< the file up to `end`, its comment taken off; at least the directory
    std::string comment;  ///< of the archive
    bool ambiguous = false;  ///< another directory can be read in the same file

    /// Finds and checks the directory of the archive of `size` bytes; small ones are read whole.
    /// False when there is none that can be read. Throws HEXUserException naming `path` when it
    /// holds too much or when members share bytes.
    bool read(const FileDescriptor& file, std::uint64_t size, const std::string& path);
};

/// Counts member names as libzip's name table does, which anybody can make names for that fall
/// together and take quadratic time.
class NameTable {
  public:
    static constexpr unsigned MAX_EQUAL = 256;
    /// libzip converts names of other encodings before it counts them.
    static constexpr std::ptrdiff_t MAX_UNENCODED = 8192;

    /// The name must outlive the table.
    void add(std::string_view name) { names_.push_back(name); }
    /// Why the names are refused; empty when they are good.
    std::string fault() const;

  private:
    std::vector<std::string_view> names_;
};

}  // namespace mav_host
