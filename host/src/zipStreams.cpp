// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <fstream>
#include <limits>
#include <streambuf>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "zipInternal.h"

namespace {

using mav_host::ZipArchive;

/// Reads one member piece by piece. Keeps the archive open as long as it lives.
class MemberBuffer final : public std::streambuf {
  public:
    MemberBuffer(mav_host::ZipHandle zip, mav_host::ZipFileHandle file)
        : zip_(std::move(zip)), file_(std::move(file)) {}

  protected:
    int_type underflow() override {
        const zip_int64_t count = zip_fread(file_.get(), piece_.data(), piece_.size());
        // A stream reports damage as the end of the data with the bad state, through an exception.
        if (count < 0) throw std::ios_base::failure("the archive member is damaged");
        if (count == 0) return traits_type::eof();
        setg(piece_.data(), piece_.data(), piece_.data() + count);
        return traits_type::to_int_type(piece_.front());
    }

  private:
    mav_host::ZipHandle zip_;
    mav_host::ZipFileHandle file_;
    std::array<char, 1U << 16U> piece_;
};

std::unique_ptr<std::streambuf> openMember(const std::string& archive, const std::string& member) {
    try {
        mav_host::ZipHandle zip = mav_host::openZip(archive);
        mav_host::ZipFileHandle file(zip_fopen(zip.get(), member.c_str(), 0));
        if (!file) return nullptr;
        return std::make_unique<MemberBuffer>(std::move(zip), std::move(file));
    } catch (const HEXError&) {
        return nullptr;
    }
}

}  // namespace

zip_istream::zip_istream(const std::string& archive, const std::string& member, int)
    : std::istream(nullptr), buffer_(openMember(archive, member)) {
    rdbuf(buffer_.get());
    if (!buffer_) setstate(std::ios_base::failbit);
}

zip_istream::zip_istream(const ZipArchive& archive, const std::string& member)
    : zip_istream(archive.path(), member) {}

zip_istream::~zip_istream() {
    rdbuf(nullptr);
}

struct zip_ostream::Impl {
    std::string archive;
    std::string member;
    std::string file;
    std::filebuf buffer;
    bool open = false;
};

zip_ostream::zip_ostream(const std::string& archive, const std::string& member, int)
    : std::ostream(nullptr), impl_(std::make_unique<Impl>()) {
    impl_->archive = archive;
    impl_->member = member;
    impl_->file = HUTFileUtils::makeUniqueName(HUTEnv::getHDITmpDir(), "member");
    impl_->open = mav_host::isSafeMemberName(member) &&
                  impl_->buffer.open(impl_->file, std::ios::binary | std::ios::out) != nullptr;
    rdbuf(&impl_->buffer);
    if (!impl_->open) setstate(std::ios_base::failbit);
}

zip_ostream::~zip_ostream() {
    close();
    rdbuf(nullptr);
}

void zip_ostream::close() {
    if (!impl_->open) return;
    impl_->open = false;
    const bool written = good() && impl_->buffer.close() != nullptr;
    try {
        if (!written) throw HEXUserException("the member's content could not be written");
        HUTZip::add(impl_->archive, {{impl_->member, impl_->file, ""}});
    } catch (const std::exception&) {
        setstate(std::ios_base::failbit);
    }
    HUTFile::rm(impl_->file);
}
