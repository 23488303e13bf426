// SPDX-License-Identifier: Apache-2.0
#include <fstream>
#include <functional>
#include <memory>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "zip/zipInternal.h"

namespace {

std::unique_ptr<std::streambuf> openStream(const std::function<mav_host::ZipArchive()>& archive,
                                           const std::string& member) {
    try {
        return std::make_unique<mav_host::MemberBuffer>(archive(), member);
    } catch (const HEXError&) {
        return nullptr;
    }
}

}  // namespace

zip_istream::zip_istream(const std::string& archive, const std::string& member, int)
    : std::istream(nullptr),
      buffer_(openStream([&] { return mav_host::ZipArchive(archive); }, member)) {
    rdbuf(buffer_.get());
    if (!buffer_) setstate(std::ios_base::failbit);
}

zip_istream::zip_istream(const mav_host::ZipArchive& archive, const std::string& member)
    : std::istream(nullptr), buffer_(openStream([&] { return archive; }, member)) {
    rdbuf(buffer_.get());
    if (!buffer_) setstate(std::ios_base::failbit);
}

zip_istream::~zip_istream() = default;

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
    impl_->open = HUTZip::isMemberName(member) &&
                  impl_->buffer.open(impl_->file, std::ios::binary | std::ios::out) != nullptr;
    rdbuf(&impl_->buffer);
    if (!impl_->open) setstate(std::ios_base::failbit);
}

zip_ostream::~zip_ostream() {
    exceptions(std::ios_base::goodbit);  // nobody is left to catch what `close` reports
    close();
}

void zip_ostream::close() {
    if (!impl_->open) return;
    impl_->open = false;
    bool done = !fail() && impl_->buffer.close() != nullptr;
    try {
        if (done) HUTZip::add(impl_->archive, {{impl_->member, impl_->file, ""}});
    } catch (const std::exception&) {
        done = false;
    }
    impl_->buffer.close();
    HUTFile::rm(impl_->file);
    if (!done) setstate(std::ios_base::failbit);
}
