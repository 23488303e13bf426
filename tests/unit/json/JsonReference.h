// SPDX-License-Identifier: Apache-2.0
#pragma once

#define BOOST_BIND_GLOBAL_PLACEHOLDERS  // read_json uses them; Boost would print a note
#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

using boost::property_tree::ptree;
using boost::property_tree::json_parser::json_parser_error;

/// What Boost's own writer prints.
inline std::string boostText(const ptree& tree) {
    std::ostringstream out;
    boost::property_tree::write_json(out, tree);
    return out.str();
}

/// What Boost's own reader answers: the tree, or the error's text.
struct BoostRead {
    ptree tree;
    std::string error;

    explicit BoostRead(const std::string& text) {
        std::istringstream in(text);
        try {
            boost::property_tree::read_json(in, tree);
        } catch (const json_parser_error& failure) {
            error = failure.what();
        }
    }
};

/// The same numbers in every run and on every machine.
class Dice {
  public:
    explicit Dice(std::uint64_t seed) : state_(seed * 2862933555777941757ULL + 3037000493ULL) {}
    /// A number below `sides`.
    std::size_t roll(std::size_t sides) {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<std::size_t>(state_ >> 33U) % sides;
    }
    template <class Table>
    auto pick(const Table& table) {
        return table[roll(std::size(table))];
    }

  private:
    std::uint64_t state_;
};
