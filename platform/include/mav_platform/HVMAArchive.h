// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HVMAFiles.h"
#include "mav_platform/JSONSerializable.h"

/// An archive with the index member "vma.json", which lists members by type. Reads the index,
/// extracts members by type and adds members. The format is in docs/formats/vma.md.
class MAV_API HVMAArchive : public mav_platform::JSONSerializable {
  public:
    HVMAArchive() = default;
    /// `file` is the path of the archive; nothing is read yet.
    explicit HVMAArchive(std::string file) : file_(std::move(file)) {}

    const std::string& getFile() const { return file_; }
    void setFile(std::string value) {
        file_ = std::move(value);
        seen_.clear();
        read_ = false;
    }
    const std::string& getInstPath() const { return instPath_; }
    void setInstPath(std::string value) { instPath_ = std::move(value); }
    const std::string& getDrBdInstName() const { return drBdInstName_; }
    void setDrBdInstName(std::string value) { drBdInstName_ = std::move(value); }
    const std::string& getPfmName() const { return pfmName_; }
    void setPfmName(std::string value) { pfmName_ = std::move(value); }
    const std::string& getHierName() const { return hierName_; }
    void setHierName(std::string value) { hierName_ = std::move(value); }
    HVMAFiles& getFiles() { return files_; }
    const HVMAFiles& getFiles() const { return files_; }
    /// Name of the index member: "vma.json".
    virtual std::string getJsonFileName() const;
    /// What a typed member of an index stands for: the folder "bd" for type "DR_BD", whatever its
    /// name, else the name.
    static std::string placeOf(const std::string& type, const std::string& name);
    /// Lists a member without touching the archive.
    void registerFile(const std::string& type, const std::string& name) { files_.add(type, name); }

    /// Fills the object from the index; keys that are absent read as empty. False, with the object
    /// as it was, after a report: "@74-89@%s" when the archive is no file, "@74-67@%s%s" (index,
    /// archive) when the index is missing or damaged, "@74-64@%s%s%s" (archive, index, text) when
    /// it is not JSON or of another shape.
    bool parse();
    /// The same over an archive that is open already; `getFile()` stays.
    bool parse(const mav_host::ZipArchive& archive);

    /// Extracts the member of that type below `destination`, which is made, and answers
    /// `destination`, "/" and the member's name joined; empty when no member of that type is
    /// listed. "BOARD_REPO_PATH" and "IP_REPO_PATH" name a directory; "DR_BD" stands for the
    /// directory "bd", whatever name is listed. Throws HEXUserException "HVMAArchive::extract() -
    /// destDir argument must not be empty", "HVMAArchive::_extractDir() - dir was not extracted to
    /// the expected location: " + path, "HVMAArchive::_extractFile() - file was not extracted to
    /// the expected location: " + path; and as HUTZip::extractFile does.
    std::string extract(const std::string& type, const std::string& destination) const;

    /// Adds the file `source` as member `name`, lists it under `type`, rewrites the index and puts
    /// a digest over the archive, all in one step: a failure leaves archive and object as they
    /// were. What others listed in the index since this object read or wrote it is kept, except
    /// under the types that this object lists otherwise itself; an object that did neither takes
    /// over the index's texts too where it has none of its own.
    /// Throws HEXAlgException "HVMAArchive::archive() - vmaFile is not set", "... - jsonFile is not
    /// set", "... - vmaFile does not exist"; HEXUserException as archiveFile does and
    /// "HVMAArchive::writeJSON() - Could not open file for streaming: " + archive for an index name
    /// that is refused, "HVMAArchive::archive() - 'NAME' is the name of the index itself; ...", and
    /// "The index 'vma.json' of the archive 'ARCHIVE' has a fault: ..." for one that is there and
    /// is not JSON or of another shape; mav_host::DigestRefusal as HUTZip::updateWithDigest does.
    void archive(const std::string& type, const std::string& name, const std::string& source,
                 mav_host::Resign resign = mav_host::Resign::NO);

    /// Adds the file `source` as member `name` without listing it; the archive's digest goes.
    /// Throws HEXUserException "HVMAArchive::archiveFile() - Could not open file for reading: " +
    /// source, "HVMAArchive::archiveFile() - Could not open file for streaming: " + archive for a
    /// member name that is refused and for an archive that cannot take a member, with the reason
    /// nested (std::rethrow_if_nested); and as HUTZip::add does when writing fails later.
    void archiveFile(const std::string& name, const std::string& source);

    /// The index: "version", the four texts, "files".
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    /// Takes over what the index holds that this object has not seen.
    void takeOver_(const mav_host::ZipArchive& archive);
    void checkSource_(const std::string& name, const std::string& source) const;
    std::string extractFile_(const std::string& name, const std::string& destination) const;
    std::string extractDir_(const std::string& name, const std::string& destination) const;

    std::string file_;
    HVMAFiles files_;
    HVMAFiles seen_;     ///< the list as it was last read from the archive or written to it
    bool read_ = false;  ///< the index was read from this archive or written to it
    std::string instPath_;
    std::string drBdInstName_;
    std::string pfmName_;
    std::string hierName_;
};
