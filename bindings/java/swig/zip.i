// SPDX-License-Identifier: Apache-2.0
// Zip archives, whatever is in them.
MAV_COPIES(mav_host::ZipMember, ZipMember)
MAV_CLOSEABLE(mav_host::ZipArchive)
%typemap(jni) std::string mav_host::ZipArchive::read "jbyteArray"
%typemap(jtype) std::string mav_host::ZipArchive::read "byte[]"
%typemap(jstype) std::string mav_host::ZipArchive::read "byte[]"
%typemap(out) std::string mav_host::ZipArchive::read %{ $result = mav_java::bytes(jenv, $1); %}
%ignore mav_host::ZipArchive::read(const std::string &, std::uint64_t, const std::function< void (const char *, std::size_t) > &) const;
%ignore mav_host::DigestRefusal;
%ignore mav_host::ZipProgress;
%ignore HUTZip::setProgress;
%ignore HUTZip::Source;
%ignore HUTZip::add;
%ignore HUTZip::addWithDigest;
%ignore HUTZip::update;
%ignore HUTZip::updateWithDigest;
%ignore HUTZip::create;
%ignore zip_istream;
%ignore zip_ostream;
%nodefaultctor HUTZip;
%nodefaultctor mav_host::ZipMember;
%extend mav_host::ZipArchive {
    /// The member's bytes; throws as the other form does, at HUTZip::MAX_METADATA_SIZE.
    std::string read(const std::string& member) const {
        return $self->read(member, HUTZip::MAX_METADATA_SIZE);
    }
}
%include "mav_host/HUTZip.h"
