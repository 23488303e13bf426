// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVObjectService.h"

namespace mav::platform {

/// Object paths are member names joined by ".", with 0-based element indices in brackets:
/// "hardwarePlatforms.hardwarePlatform.systemClocks[0].name". "[]" and "[*]" are removed before a
/// path is read; an empty part ("..") is the first unnamed element. The empty path is the document.
///
/// The file forms load the platform at every call, the loader forms only when the loader has not
/// loaded yet. Both throw HEXAlgException "Failed to read platform: " and the reason when there is
/// no document to ask, and what the loader throws. A path that leads nowhere is no error.
class MAV_API NativeObjectService : public ObjectService {
  public:
    /// A piece of a path, up to and including one index.
    struct PathFragment {
        std::string path;
        bool hasIndex = false;
        std::uint32_t index = 0;
    };

    ~NativeObjectService() override;

    /// The platform's document as a tree.
    ptree getAsPropertyTree(const std::string& platformFile) const override;
    ptree getAsPropertyTree(PlatformLoader* loader) const override;
    /// Text to tree. Throws HEXAlgException: "NativeObjectService::readJson() - Empty json string",
    /// or "Failed to read platform: " and the parser's message.
    ptree readJson(const std::string& text) const override;
    /// The document as pretty JSON text.
    std::string getAsJsonStr(const std::string& platformFile) const override;
    std::string getAsJsonStr(PlatformLoader* loader) const override;

    /// Whether the path resolves, after getPathWithActualHwPlatformRoot.
    bool hasNodeAtPath(const std::string& platformFile, const std::string& path) const override;
    bool hasNodeAtPath(const ptree& tree, const std::string& path) const override;
    /// A copy of the node at the path, after getPathWithActualHwPlatformRoot. `found` is set either
    /// way; the tree is empty when it is false.
    ptree getNodeByPath(const std::string& platformFile, const std::string& path,
                        bool& found) const override;
    /// The node at the path. For a path with "..", or with "[]" or "[*]" that leads nowhere without
    /// them: a list of what is found when each of these stands for every element (of a node that is
    /// no list, for the node itself). `found` tells whether there is anything.
    ptree getObjectsByPath(const std::string& platformFile, const std::string& path,
                           bool& found) const override;
    ptree getObjectsByPath(PlatformLoader* loader, const std::string& path,
                           bool& found) const override;

    /// The child at a "."-path, inside `tree`; an empty tree that lives for ever when there is
    /// none.
    const ptree& getChild(const ptree& tree, const std::string& key) const override;
    /// The node at an object path, brackets included, inside `tree`.
    boost::optional<const ptree&> getChildOptional(const ptree& tree,
                                                   const std::string& key) const override;
    /// As HMAVJSONUtils. The default is the answer for a missing or empty value only.
    std::string getStringValue(const ptree& tree, const std::string& key) const override;
    bool getBoolValue(const ptree& tree, const std::string& key) const override;
    bool getBoolValue(const ptree& tree, const std::string& key, bool dflt) const override;

    /// "hardwarePlatforms.hardwarePlatform"
    std::string getDefaultHwPlatformRootPath() const;
    /// "hardwarePlatforms.reconfigurablePartitions[0].hardwarePlatform"
    std::string getDefaultRPHwPlatformRootPath() const;
    /// "hardwarePlatforms.reconfigurablePartitions..hardwarePlatform"
    std::string getDefaultRPHwPlatformRootPathAlt() const;
    /// "hardwarePlatform", the top-level name in older documents.
    std::string getLegacyHwPlatformRootPath() const;

    /// The path is the legacy root or lies below it.
    bool isLegacyHwPlatformPath(const std::string& path) const;
    /// The first of the four roots, in the order above, that the document holds; the default root
    /// when it holds none.
    std::string getHwPlatformRootPath(const ptree& tree) const;
    /// A legacy path with its root replaced; any other path as it is.
    std::string replaceLegacyHwPlatformPath(const std::string& path, const std::string& root) const;
    /// replaceLegacyHwPlatformPath with the document's actual root.
    std::string getPathWithActualHwPlatformRoot(const ptree& tree, const std::string& path) const;
    /// ".." occurs in the path.
    bool pathHasBoostArray(const std::string& path) const;

    /// Appends the path's fragments: "a.b[2].c" gives (a.b, index 2) and (c, no index). Brackets
    /// without a 32-bit decimal between them stay part of the names around them.
    static void scanJsonPath(const std::string& path, HSTVector<PathFragment>& out);
    /// The node at the path, inside `tree`; null when there is none. Does not rewrite the path.
    static const ptree* findNode(const ptree& tree, const std::string& path);

    /// Any node as pretty JSON text with a line end: an object, an array (also at the top) or a
    /// text in quotes. Throws Boost's json_parser_error for a tree that JSON cannot express.
    static std::string getNodeAsJsonStr(const ptree& node);
};

}  // namespace mav::platform
