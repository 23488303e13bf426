// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <memory>
#include <utility>

#include "mav_host/HSTVector.h"

/// A list of objects that it owns. They keep their place in memory while the list lives.
template <class T>
class OwnedList {
  public:
    OwnedList() = default;
    ~OwnedList() { clear(); }
    OwnedList(const OwnedList&) = delete;
    OwnedList& operator=(const OwnedList&) = delete;

    /// Appends a new element and answers it.
    template <class... Args>
    T* add(Args&&... args) {
        auto element = std::make_unique<T>(std::forward<Args>(args)...);
        items_.push_back(element.get());
        return element.release();
    }
    /// Deletes one element of the list; the others keep their order.
    void remove(T* element) {
        const auto found = std::find(items_.begin(), items_.end(), element);
        if (found == items_.end()) return;
        items_.erase(found);
        delete element;
    }
    void clear() {
        for (T* item : items_) delete item;
        items_.clear();
    }
    const HSTVector<T*>& items() const { return items_; }

  private:
    HSTVector<T*> items_;
};
