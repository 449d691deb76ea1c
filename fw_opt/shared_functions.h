// SPDX-License-Identifier: BSD-3-Clause
// A list of functions that the copies of a solver own together.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace fw {

/// A list of function pointers and the ownership of what they point to. Copies of the list share the ownership, so each
/// function is deleted once: by the last list that owns it. Entries may be null.
template <typename Function>
class Shared_functions {
 public:
  /// Empty.
  Shared_functions() = default;
  /// Shares the ownership.
  Shared_functions(const Shared_functions&) = default;
  /// Deletes what this list alone owned. When an allocation fails, nothing has changed.
  Shared_functions& operator=(const Shared_functions& source) {
    Shared_functions copy(source);
    list.swap(copy.list);
    owners.swap(copy.owners);
    return *this;
  }
  /// Deletes what no other list owns.
  ~Shared_functions() { delete_all(); }

  /// Replaces the list and deletes nothing: a function that drops out and has no other owner is the caller's again.
  /// A function that dropped out while a copy of this list still owns it is not to be given again: it would have two
  /// owners that know nothing of each other. When an allocation fails, nothing has changed and the new functions are
  /// still the caller's.
  void set(const std::vector<Function*>& functions);

  /// Gives up the ownership, entry by entry in order.
  void delete_all();

  /// The pointers as they were set.
  const std::vector<Function*>& get() const { return list; }

 private:
  struct Owner {
    Function* function;
    explicit Owner(Function* to_own) : function(to_own) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() { delete function; }
  };
  using Owners = std::vector<std::shared_ptr<Owner>>;

  static std::shared_ptr<Owner> find(const Owners& candidates, const Function* function) {
    const auto found = std::find_if(candidates.begin(), candidates.end(),
                                    [function](const auto& owner) { return owner->function == function; });
    return found == candidates.end() ? nullptr : *found;
  }

  std::vector<Function*> list;
  Owners owners;  // one for each different function of the list
};

template <typename Function>
void Shared_functions<Function>::set(const std::vector<Function*>& functions) {
  std::vector<Function*> new_list = functions;
  Owners new_owners;
  new_owners.reserve(functions.size());
  try {
    for (Function* function : functions) {
      if (function == nullptr || find(new_owners, function) != nullptr) continue;
      std::shared_ptr<Owner> owner = find(owners, function);
      if (owner == nullptr) owner = std::make_shared<Owner>(function);
      new_owners.push_back(std::move(owner));
    }
  } catch (...) {
    for (auto& owner : new_owners) {
      if (owner.use_count() == 1) owner->function = nullptr;
    }
    throw;
  }
  list.swap(new_list);
  owners.swap(new_owners);
  for (auto& dropped : new_owners) {
    if (dropped.use_count() == 1) dropped->function = nullptr;
  }
}

template <typename Function>
void Shared_functions<Function>::delete_all() {
  list.clear();
  for (auto& owner : owners) owner.reset();
  owners.clear();
}

}  // namespace fw
