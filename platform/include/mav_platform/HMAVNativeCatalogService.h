// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVCatalogService.h"
#include "mav_platform/JSONValue.h"
#include "mav_platform/Verdict.h"

namespace mav::platform {

/// What is asked of the policy: whether a platform is supported, the same for one that is not
/// synthesized yet, or whether a device support archive can be opened.
enum class SupportQuestion { CARD, PRE_SYNTH, ARCHIVE };

/// The support policy and the summary of a platform. The forms that take a path make a loader for
/// it, whose exceptions pass; those that take a loader load only what it has not loaded yet.
///
/// Every decision answers true for "supported" and replaces `reason` by the explanation, which is
/// empty when there is nothing to explain. "Error: failed to load platform" on the console stands
/// for a platform that does not load.
class MAV_API NativeCatalogService : public CatalogService {
  public:
    ~NativeCatalogService() override;

    /// The support policy. A product name that is not empty becomes the host's product name first.
    /// Reports "@74-78@%s" with the tool version, "@74-79@%s" for an unusable extended warranty,
    /// "@74-49@%s" and "@74-50@%s" for a support list that cannot be used or is malformed.
    bool isUnderWarranty(PlatformLoader* loader, std::string& reason,
                         std::string productName = "") const override;
    bool isUnderWarranty(const std::string& path, std::string& reason,
                         std::string productName = "") const override;
    /// Appends the reason, when there is one, to `reasons`. Throws nothing: of an exception of the
    /// loader or of the HEXError family the text becomes the reason, any other is told on the
    /// console, and the answer is false.
    bool isUnderWarranty(const std::string& path, HSTVector<std::string>& reasons,
                         std::string productName = "") const override;

    /// What the policy answers to the question, with all that led there. Reports as the operations
    /// above do. A platform whose array-engine project cannot be read is unsupported by the rule
    /// "array-project"; `judgeByPolicy` does not look at that.
    Verdict judge(PlatformLoader& loader, SupportQuestion question = SupportQuestion::CARD) const;
    Verdict judgeByPolicy(PlatformLoader& loader,
                          SupportQuestion question = SupportQuestion::CARD) const;
    /// The verdict of `judge` for each tool release from the platform's own to two years on, in
    /// their order, without reports; none for a platform without a release.
    HSTVector<Verdict> matrix(PlatformLoader& loader,
                              SupportQuestion question = SupportQuestion::CARD) const;

    /// The state of the loaded hardware platform is "pre_synth". Tells on the console which step
    /// failed: "Error: failed to acquire a platform loader.", "Error: failed to load platform." or
    /// "Error: failed to load the hardware platform.".
    bool isPreSynthPlatform(PlatformLoader* loader) const override;
    /// The policy for platforms in the pre-synthesis state.
    bool isPreSynthPlatformSupported(PlatformLoader* loader, std::string& reason) const override;
    bool isPreSynthPlatformSupported(const std::string& path, std::string& reason) const override;
    /// The policy for device support archives: unified, and not newer than the tool.
    bool canDsaBeOpened(PlatformLoader* loader, std::string& reason) const override;
    bool canDsaBeOpened(const std::string& path, std::string& reason) const override;

    /// Fills the summary, a flat tree whose members always stand in the same order. `warranty`
    /// asks for the members "warranty" and "warrantyReason" (without them no policy is run),
    /// `partitions` for "reconfigurablePartitions", a list of objects with "id" and the members
    /// that speak of hardware. Leaves `info` empty for a platform that does not load.
    void getPlatformInfo_(PlatformLoader* loader, ptree& info, bool warranty,
                          bool partitions) const;
    /// The summary with numbers and booleans as such, the partitions and the verdict.
    mav_platform::JSONValue getTypedInfo(PlatformLoader& loader, const Verdict& verdict) const;
    /// The summary as pretty JSON text.
    std::string getAsJsonStr(PlatformLoader* loader, bool warranty, bool partitions) const override;
    std::string getAsJsonStr(const std::string& path, bool warranty,
                             bool partitions) const override;
    /// The summaries of every description file below the directories (joined by ":"), in the order
    /// of NativePlatformRepoService::getQpfmFiles and each once, as an array under "platforms".
    /// Platforms that do not load are left out, which the messages explain.
    std::string getAllAsJsonStr(const std::string& directories, bool warranty,
                                bool partitions) const override;
    /// One value of the summary by its key. A key that does not exist gives the text "error: key
    /// path 'KEY' doens't exist".
    std::string getValue(PlatformLoader* loader, const std::string& keyPath) const override;
    std::string getValue(const std::string& path, const std::string& keyPath) const override;

    /// Judges for this tool release instead of the host's; an empty text is a versionless tool.
    void setTestCompilerVersion_(const std::string& version) { testCompilerVersion_ = version; }
    /// Judges for this product instead of the host's, which stays what it is.
    void setProduct_(const std::string& product) { product_ = product; }
    /// The tool release such as "2026.1"; empty for a versionless tool.
    std::string getCompilerVersion_() const;

  private:
    std::optional<std::string> testCompilerVersion_;
    std::optional<std::string> product_;
};

}  // namespace mav::platform
