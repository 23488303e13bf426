// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/ArchiveAnswers.h"

#include <utility>

#include "mav_host/Printable.h"
#include "mav_platform/TypedMembers.h"

namespace mav_platform {

using mav_host::DigestState;
using mav_host::ZipArchive;

const char* digestWord(DigestState state) {
    switch (state) {
        case DigestState::VALID:
            return "valid";
        case DigestState::MISSING:
            return "missing";
        case DigestState::MISMATCH:
            return "mismatch";
        case DigestState::NO_KEY:
            return "no key";
        case DigestState::UNKEYED:
            return "unkeyed";
    }
    return "";
}

ArchiveListing::ArchiveListing(const ZipArchive& archive)
    : members(archive.members()),
      types(TypedMembers(archive).typesOf(members)),
      digest(HUTZip::verifyDigest(archive.path())) {}

JSONValue ArchiveListing::answer(const std::string& file) const {
    JSONValue list = JSONValue::list();
    for (std::size_t i = 0; i < members.size(); ++i) {
        list.add(JSONValue::object()
                     .addPath("path", members[i].name)
                     .add("types", JSONValue::list(types[i]))
                     .add("size", members[i].size));
    }
    return JSONValue::answer("files")
        .addPath("file", file)
        .add("digest", digestWord(digest))
        .add("members", std::move(list));
}

ArchiveSoundness::ArchiveSoundness(const ZipArchive& archive,
                                   const ArchiveWork::OnMember& onMember) {
    archive.checkInflation();
    faults = ArchiveWork::faults(archive, onMember);
    digest = HUTZip::verifyDigest(archive.path());
}

bool ArchiveSoundness::good() const {
    return faults.empty() && digest == DigestState::VALID;
}

JSONValue ArchiveSoundness::answer(const std::string& file) const {
    JSONValue list = JSONValue::list();
    for (const ArchiveWork::Fault& fault : faults) {
        list.add(JSONValue::object()
                     .add("kind", fault.type.empty() ? "damaged" : "absent")
                     .addPath("path", fault.member)
                     .add("type", JSONValue::orNull(fault.type))
                     .add("text", mav_host::printable(fault.text)));
    }
    return JSONValue::answer("verify")
        .addPath("file", file)
        .add("good", good())
        .add("digest", digestWord(digest))
        .add("faults", std::move(list));
}

}  // namespace mav_platform
