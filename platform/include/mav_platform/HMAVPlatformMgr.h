// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "mav_host/Export.h"
#include "mav_host/HBOBoardCDataManager.h"
#include "mav_host/HSTFwdIter.h"
#include "mav_host/HSTVector.h"

class HMAVHardwarePlatform;
class HMAVPlatform;
class HMAVReconfigurablePartition;
class HPLPlatform;

/// The repository of platforms: finds them in search directories, holds them, answers look-ups, and
/// gathers what was wrong as texts.
///
/// Every platform handed out stays owned by the manager and lives until it is removed. Directories
/// are made canonical before use. A failure is reported through messages and leaves its text in
/// `getParsingErrorMsgs`; the search goes on. Not safe for several threads.
class MAV_API HMAVPlatformMgr {
  public:
    /// Which of the two lists is the active one: platforms with a description, or those of bare
    /// archives. Any other value stands for the first.
    enum class MAVProjectType : unsigned { MAV = 0, PLATFORM = 1 };

    /// A repository of one's own, empty; tools mostly use the one of the process.
    HMAVPlatformMgr();
    ~HMAVPlatformMgr();
    HMAVPlatformMgr(const HMAVPlatformMgr&) = delete;
    HMAVPlatformMgr& operator=(const HMAVPlatformMgr&) = delete;

    /// The repository of the process, made on first use; the first then also searches the default
    /// directories. Deleting it is allowed; the next call makes a new one.
    static HMAVPlatformMgr* getGlobal();
    static HMAVPlatformMgr* getGlobalNoInit();

    /// Appends the directories of the applications and of the system that exist: of each
    /// application root "platforms" and "base_platforms", then "/opt/tarvek/platforms". As built.
    static void getDefaultMavPlatformDirs(HSTVector<std::string>& out);

    /// Searches the directories in order: first all of them for descriptions, three levels deep,
    /// following links, then all of them for bare archives. True when the manager holds a platform
    /// afterwards, whether or not this call found it. A path that is held already is passed over.
    /// Each new description goes to the front of its list, each bare archive to the end.
    bool addPlatformsFromDirs(const HSTVector<std::string>& dirs);
    /// With a name, only descriptions whose stem it is (ignoring case) are loaded, and the search
    /// for descriptions ends with the first one that is loaded or held.
    bool addPlatformsFromDirs(const std::string& name, const HSTVector<std::string>& dirs);
    /// Searches for bare archives and merges them into `out`, as HMAVHardwarePlatformParser does.
    /// Their platforms are not in the lists; the manager owns them as hand-offs.
    void getHardwarePlatformsFromDirs(const HSTVector<std::string>& dirs,
                                      HSTVector<HMAVHardwarePlatform*>& out, bool filterByVbnv);

    /// Deletes the platforms of both lists whose file lies in one of the directories itself; those
    /// in directories below stay.
    void removePlatformsFromDirs(const HSTVector<std::string>& dirs);
    /// The same, and deletes hand-offs at any depth below the directories, taking their hardware
    /// platforms out of `hardware`. Hand-offs whose path below the directory begins with a dot
    /// stay.
    void removeHardwareHandoffFromDirs(const HSTVector<std::string>& dirs,
                                       HSTVector<HMAVHardwarePlatform*>& hardware);
    /// Deletes every platform and every hand-off. The gathered texts stay.
    void clearAllPlatforms();

    /// The first platform of the active list whose unique name is `name`, whose base name is it
    /// ignoring case, or whose file's canonical path is that of `name` ignoring case. Each platform
    /// is asked all three before the next one. Null when there is none.
    HMAVPlatform* getPlatform(const std::string& name) const;
    /// Over the active list; the caller deletes the iterator.
    HSTFwdIter<HMAVPlatform*>* createPlatformIter() const;
    /// Append the active list, or those in it that are unified; the last two are the same.
    void getPlatforms(HSTVector<HMAVPlatform*>& out) const;
    void getUnifiedPlatforms(HSTVector<HMAVPlatform*>& out) const;
    void getMAVPlatforms(HSTVector<HMAVPlatform*>& out) const;
    /// Appends both lists, platforms with a description first, whichever is active.
    void getAllPlatforms(HSTVector<HMAVPlatform*>& out) const;
    /// Replaces the contents of `out` with the platforms of bare archives.
    void getDSAPlatforms(HSTVector<HMAVPlatform*>& out) const;
    /// Size of the active list.
    std::size_t getNumPlatforms() const;
    std::size_t getNumOrphanedHandoffs() const { return handoffs_.size(); }

    /// What a search left out, with the texts that tell why, a line each: a description that was
    /// not kept, a platform with an archive whose metadata could not be read, which is kept and
    /// bad, or a directory that was not searched to its end.
    struct Refusal {
        std::string file;
        std::string reason;
        /// The other files at fault, archives and software platforms; paths as reported.
        HSTVector<std::string> faulty;
        bool isDir = false;
    };

    /// Appends the texts of all failures so far, in order.
    void getParsingErrorMsgs(HSTVector<std::string>& out) const;
    /// What the searches left out, in order, each file with its latest reason. One that a later
    /// search loads goes, and so does a directory that one searches to its end. Valid until the
    /// next search.
    const HSTVector<Refusal>& getRefusals() const { return refusals_; }
    /// Empties both.
    void clearParsingErrorMsgs();

    void setProjectType(MAVProjectType type);
    MAVProjectType getProjectTypeAsEnumVal() const { return projectType_; }
    /// "mav", "platform", or empty for any other value.
    std::string getProjectTypeAsStr() const;

    /// Keeps the paths and hands them to the board data. The getter replaces the contents of `out`.
    void setBoardRepoPaths(const HSTVector<std::string>& paths);
    void getBoardRepoPaths(HSTVector<std::string>& out) const { out = boardRepoPaths_; }
    /// The host's board data; owned by the manager.
    HBOBoardCDataManager* getBoardDataMgr() const { return boardDataMgr_.get(); }

  private:
    using Platforms = HSTVector<HMAVPlatform*>;
    using Files = std::unordered_set<std::string>;

    void init_();
    bool addPlatformsFromDirs_(const std::string& name, const HSTVector<std::string>& dirs);
    std::unique_ptr<HMAVPlatform> loadDescription_(const std::string& path);
    bool addHardwarePlatformsFromDirs_(const HSTVector<std::string>& dirs);
    void searchBareArchives_(const HSTVector<std::string>& dirs,
                             HSTVector<HMAVHardwarePlatform*>& out,
                             std::unordered_map<std::string, HMAVPlatform*>& containers,
                             bool filterByVbnv);
    Files heldFiles_() const;
    void refuse_(Refusal refusal);
    void refuseDir_(const std::string& dir, const std::string& reason);
    void judge_(const HMAVPlatform& platform);
    void settle_(const std::string& file);
    void dropSettled_();
    Refusal refusalOf_(const std::string& path);
    void fail_(const std::string& text) { fail_(text, text); }
    void fail_(const std::string& text, const std::string& reason);
    bool parseDescription_(const std::string& path, HMAVPlatform* platform);
    bool attachHardwarePlatforms_(HMAVPlatform* platform);
    bool attachSingleHardwarePlatform_(HMAVPlatform* platform);
    bool attachReconfigurablePartition_(HMAVReconfigurablePartition* partition,
                                        HMAVPlatform* platform);
    HMAVHardwarePlatform* parseHardwarePlatform_(const std::string& hardwareFile,
                                                 HMAVPlatform* platform);
    bool attachSoftwarePlatforms_(HMAVPlatform* platform);
    void handleInvalidPath_(const std::string& hardwareFile, const std::string& platformFile);
    void handleInvalidExtension_(const std::string& hardwareFile, const std::string& platformFile);

    Platforms platforms_;
    Platforms dsaPlatforms_;
    Platforms* activePlatforms_ = &platforms_;
    std::unordered_map<std::string, HMAVPlatform*> handoffs_;
    HSTVector<std::string> parsingErrorMsgs_;
    HSTVector<Refusal> refusals_;
    std::unordered_map<std::string, std::size_t> refusalOfFile_;  ///< its place in the list
    HSTVector<std::string> faulty_;   ///< of the description that is being loaded
    HSTVector<std::string> reasons_;  ///< of that description, lines for its refusal
    /// By canonical path, what the search at hand has read for descriptions; empty between
    /// searches.
    std::unordered_map<std::string, std::shared_ptr<HPLPlatform>> parsed_;
    MAVProjectType projectType_ = MAVProjectType::MAV;
    HSTVector<std::string> boardRepoPaths_;
    std::unique_ptr<HBOBoardCDataManager> boardDataMgr_;

    static HMAVPlatformMgr* mp_theGlobal;
};
