// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

#include "mav_host/HSTVector.h"

/// Forward iterator over a list of values, usually pointers. A `create…Iter` operation returns a
/// new one that the caller deletes; the list it walks stays owned by the object that made it and
/// must outlive it unchanged.
template <class T>
class HSTFwdIter {
  public:
    virtual ~HSTFwdIter() = default;
    /// True while `next` has an element to give.
    virtual bool hasNext() const = 0;
    /// The next element in list order; a default value when there is none left.
    virtual T next() = 0;
    /// Starts over from the first element.
    virtual void reset() = 0;
};

/// Iterates over a vector that somebody else owns.
template <class T>
class HSTVectorIter final : public HSTFwdIter<T> {
  public:
    explicit HSTVectorIter(const HSTVector<T>& list) : list_(list) {}
    bool hasNext() const override { return at_ < list_.size(); }
    T next() override { return hasNext() ? list_[at_++] : T(); }
    void reset() override { at_ = 0; }

  private:
    const HSTVector<T>& list_;
    std::size_t at_ = 0;
};
