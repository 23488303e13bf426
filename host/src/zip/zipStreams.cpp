// SPDX-License-Identifier: Apache-2.0
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "NewFile.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
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

namespace {

/// Gathers what a stream writes and hands it to a file.
class FileBuffer final : public std::streambuf {
  public:
    explicit FileBuffer(int file) : file_(file), piece_(1U << 16U) { restart(); }

  private:
    int_type overflow(int_type next) override {
        if (sync() != 0) return traits_type::eof();
        if (traits_type::eq_int_type(next, traits_type::eof())) return traits_type::not_eof(next);
        return sputc(traits_type::to_char_type(next));
    }
    int sync() override {
        const std::string_view gathered(pbase(), static_cast<std::size_t>(pptr() - pbase()));
        restart();
        return mav_host::writeAll(file_, gathered) ? 0 : -1;
    }
    void restart() { setp(piece_.data(), piece_.data() + piece_.size()); }

    int file_;
    std::vector<char> piece_;
};

}  // namespace

struct zip_ostream::Impl {
    Impl(std::string toArchive, std::string asMember)
        : archive(std::move(toArchive)), member(std::move(asMember)) {}

    std::string archive;
    std::string member;
    std::string dir = HUTEnv::getHDITmpDir() + "/";
    mav_host::Place place{dir};
    mav_host::NewFile file{place.dir.get(), "member-", 0600};
    FileBuffer buffer{file.get()};
    bool open = file.isOpen() && HUTZip::isMemberName(member);
};

zip_ostream::zip_ostream(const std::string& archive, const std::string& member, int)
    : std::ostream(nullptr), impl_(std::make_unique<Impl>(archive, member)) {
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
    bool done = !fail() && impl_->buffer.pubsync() == 0 && impl_->file.flush();
    try {
        const std::string file = impl_->dir + impl_->file.name();
        if (done) HUTZip::add(impl_->archive, {{impl_->member, file, ""}});
    } catch (const std::exception&) {
        done = false;
    }
    impl_->file = mav_host::NewFile();
    if (!done) setstate(std::ios_base::failbit);
}
