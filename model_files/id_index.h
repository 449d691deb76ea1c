// SPDX-License-Identifier: BSD-3-Clause
// Which record has an id.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace kelvane {

/// Sorted, so that no choice of ids makes it slow; where ids lie close together, as they mostly do, in a table.
class Id_index {
 public:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  Id_index() = default;
  /// ids(i) of records 0 to n - 1.
  template <typename Ids>
  Id_index(std::size_t n, const Ids& ids) {
    std::uint64_t largest = 0;
    for (std::size_t i = 0; i < n; ++i) largest = std::max<std::uint64_t>(largest, ids(i));
    if (largest < 4 * static_cast<std::uint64_t>(n) + 64) {
      fill_table(n, static_cast<std::size_t>(largest), ids);
    } else {
      sort(n, ids);
    }
  }

  /// The first record that has the id of one before it, or none.
  std::size_t first_repeated() const { return repeated_; }

  /// The record with an id, or none.
  std::size_t operator[](std::uint64_t id) const {
    if (!table_.empty()) return id < table_.size() ? table_[static_cast<std::size_t>(id)] : none;
    const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), std::make_pair(id, std::size_t{0}));
    return found != sorted_.end() && found->first == id ? found->second : none;
  }

 private:
  template <typename Ids>
  void fill_table(std::size_t n, std::size_t largest, const Ids& ids) {
    table_.assign(largest + 1, none);
    for (std::size_t i = 0; i < n; ++i) {
      std::size_t& place = table_[static_cast<std::size_t>(ids(i))];
      if (place != none && repeated_ == none) repeated_ = i;
      place = i;
    }
  }

  template <typename Ids>
  void sort(std::size_t n, const Ids& ids) {
    sorted_.resize(n);
    for (std::size_t i = 0; i < n; ++i) sorted_[i] = {ids(i), i};
    std::sort(sorted_.begin(), sorted_.end());
    for (std::size_t i = 1; i < n; ++i) {
      if (sorted_[i].first == sorted_[i - 1].first) repeated_ = std::min(repeated_, sorted_[i].second);
    }
  }

  std::vector<std::size_t> table_;
  std::vector<std::pair<std::uint64_t, std::size_t>> sorted_;
  std::size_t repeated_ = none;
};

}  // namespace kelvane
