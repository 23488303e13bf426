// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/none_t.hpp>
#include <boost/optional/optional_fwd.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <iosfwd>
#include <sstream>
#include <string>

#include "mav_host/Export.h"

/// Typed values of a property tree by key path ("." separates the parts) and JSON text in and out.
/// Every getter has a second form for an optional tree; an empty one answers as a missing key does.
class MAV_API HMAVJSONUtils {
  public:
    using ptree = boost::property_tree::ptree;

    /// True when a child exists at the path.
    static bool findKey(const ptree& tree, const std::string& key);
    static bool hasKey(const ptree& tree, const std::string& key);
    /// The child's data; the empty text when there is none.
    static std::string getValue(const ptree& tree, const std::string& key);
    static std::string getStringValue(const ptree& tree, const std::string& key);
    /// `strtol` in base 10 of a non-empty value (no digits: 0; a leading number is taken), else the
    /// default.
    static int getIntValue(const ptree& tree, const std::string& key, int dflt = 0);
    static long getLongValue(const ptree& tree, const std::string& key, long dflt = 0);
    /// As getLongValue, by the signed conversion on purpose: larger values saturate at the largest
    /// signed long.
    static unsigned long getUnsignedLongValue(const ptree& tree, const std::string& key,
                                              unsigned long dflt = 0);
    /// The low 32 bits of the standard string-to-unsigned-long conversion in base 10 (a minus sign
    /// wraps). A value without digits or beyond 64 bits is reported through "@74-268@%s" and
    /// answers the default, as an empty one does.
    static unsigned getUnsignedIntValue(const ptree& tree, const std::string& key,
                                        unsigned dflt = 0);
    /// True only for "true" in any letter case.
    static bool getBoolValue(const ptree& tree, const std::string& key);

    /// Whatever a tree hands out as optional, a tree or a reference to one; boost::none is empty.
    class OptionalTree {
      public:
        OptionalTree(boost::none_t) {}
        template <class Tree>
        OptionalTree(const boost::optional<Tree>& tree) : tree_(tree ? &*tree : &noTree()) {}

        const ptree& get() const { return *tree_; }

      private:
        const ptree* tree_ = &noTree();
    };
    static bool findKey(const OptionalTree& tree, const std::string& key) {
        return findKey(tree.get(), key);
    }
    static bool hasKey(const OptionalTree& tree, const std::string& key) {
        return hasKey(tree.get(), key);
    }
    static std::string getValue(const OptionalTree& tree, const std::string& key) {
        return getValue(tree.get(), key);
    }
    static std::string getStringValue(const OptionalTree& tree, const std::string& key) {
        return getStringValue(tree.get(), key);
    }
    static int getIntValue(const OptionalTree& tree, const std::string& key, int dflt = 0) {
        return getIntValue(tree.get(), key, dflt);
    }
    static long getLongValue(const OptionalTree& tree, const std::string& key, long dflt = 0) {
        return getLongValue(tree.get(), key, dflt);
    }
    static unsigned long getUnsignedLongValue(const OptionalTree& tree, const std::string& key,
                                              unsigned long dflt = 0) {
        return getUnsignedLongValue(tree.get(), key, dflt);
    }
    static unsigned getUnsignedIntValue(const OptionalTree& tree, const std::string& key,
                                        unsigned dflt = 0) {
        return getUnsignedIntValue(tree.get(), key, dflt);
    }
    static bool getBoolValue(const OptionalTree& tree, const std::string& key) {
        return getBoolValue(tree.get(), key);
    }

    /// Pretty JSON text. The file form replaces the file as a whole and writes to a character
    /// device or a named pipe as it is, waiting for the pipe's reader. Both throw Boost's
    /// json_parser_error for a tree that JSON cannot express or a stream that fails.
    static void writeJson(const std::string& fileName, const ptree& tree);
    static void writeJson(std::ostream& out, const ptree& tree);

    /// Text to tree. Empty text gives an empty tree; text that is not pure ASCII goes through the
    /// host's UTF-8 conversion first. Throws Boost's json_parser_error with the line of the fault.
    static ptree readJsonNoThrow(const std::string& text);
    /// Text to tree. Throws HEXAlgException: "HMAVJSONUtils::readJson() - Empty json string" for
    /// the empty text, "Failed to read platform: " and the parser's message for malformed text.
    static ptree readJson(const std::string& text);
    static ptree readJson(const std::stringstream& text);
    /// File to tree; errors as in the text forms, a file that cannot be opened included.
    static ptree readJsonFileNoThrow(const std::string& path);
    static ptree readJsonFile(const std::string& path);
    /// As readJsonFile; a file in the host's protected container format is deciphered first;
    /// one that does not decipher is an error of the same form.
    static ptree readJsonFileDecrypt(const std::string& path);

  private:
    static const ptree& noTree();
};
