// SPDX-License-Identifier: BSD-3-Clause
// Tests of the list of functions that copies own together.
#include "fw_opt/shared_functions.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/failing_allocation.h"

namespace {

using Log = std::vector<std::string>;

struct Function {
  Log& log;
  std::string name;
  Function(Log& to_fill, std::string own_name) : log(to_fill), name(std::move(own_name)) {}
  Function(const Function&) = delete;
  Function& operator=(const Function&) = delete;
  ~Function() { log.push_back(name); }
};

using List = fw::Shared_functions<Function>;
using Pointers = std::vector<Function*>;

TEST(SharedFunctions, DeletesItsEntriesInOrderAtItsEnd) {
  Log log;
  {
    List list;
    list.set({new Function(log, "a"), nullptr, new Function(log, "b")});
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"a", "b"}));
}

TEST(SharedFunctions, GivesTheListBackAsItWasSet) {
  Log log;
  auto* a = new Function(log, "a");
  auto* b = new Function(log, "b");
  List list;
  EXPECT_EQ(list.get(), Pointers{});
  list.set({b, nullptr, a, b});
  EXPECT_EQ(list.get(), (Pointers{b, nullptr, a, b}));
}

TEST(SharedFunctions, DeletesAFunctionThatIsListedTwiceOnce) {
  Log log;
  {
    List list;
    auto* a = new Function(log, "a");
    list.set({a, new Function(log, "b"), a});
  }
  EXPECT_EQ(log, (Log{"a", "b"}));
}

TEST(SharedFunctions, LeavesTheDeletionToTheLastCopy) {
  Log log;
  std::optional<List> source(std::in_place);
  source->set({new Function(log, "a"), new Function(log, "b")});
  std::optional<List> copy(*source);
  std::optional<List> assigned(std::in_place);
  *assigned = *copy;
  EXPECT_EQ(assigned->get(), source->get());
  source.reset();
  copy.reset();
  EXPECT_TRUE(log.empty());
  assigned.reset();
  EXPECT_EQ(log, (Log{"a", "b"}));
}

TEST(SharedFunctions, DeletesNothingWhenItIsSetAnew) {
  Log log;
  auto a = std::make_unique<Function>(log, "a");
  {
    List list;
    list.set({a.get()});
    list.set({new Function(log, "b")});
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"b"}));  // a belongs to the caller again
}

TEST(SharedFunctions, MayBeSetToItsOwnListAgain) {
  Log log;
  {
    List list;
    list.set({new Function(log, "a"), new Function(log, "b")});
    list.set(list.get());
    EXPECT_EQ(list.get().size(), 2U);
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"a", "b"}));
}

TEST(SharedFunctions, MayBeSetToAListThatOverlapsItsOwn) {
  Log log;
  auto a = std::make_unique<Function>(log, "a");
  auto* b = new Function(log, "b");
  {
    List list;
    list.set({a.get(), b});
    list.set({b, new Function(log, "c")});
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"b", "c"}));
}

TEST(SharedFunctions, KeepsAFunctionThatACopyStillOwns) {
  Log log;
  std::optional<List> copy;
  {
    List list;
    list.set({new Function(log, "a")});
    copy = list;
    list.set({});
  }
  EXPECT_TRUE(log.empty());
  copy.reset();
  EXPECT_EQ(log, (Log{"a"}));
}

TEST(SharedFunctions, GoesOnSharingWithACopyWhenItIsSetToTheSameFunctionsAgain) {
  Log log;
  {
    List list;
    list.set({new Function(log, "a")});
    const List copy(list);
    list.set(copy.get());
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"a"}));
}

TEST(SharedFunctions, MayBeAssignedToItself) {
  Log log;
  {
    List list;
    list.set({new Function(log, "a")});
    const List& itself = list;
    list = itself;
    EXPECT_EQ(list.get().size(), 1U);
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"a"}));
}

TEST(SharedFunctions, DeletesOnceWhenToldToBeforeItsEnd) {
  Log log;
  {
    List list;
    list.set({new Function(log, "a"), new Function(log, "b")});
    list.delete_all();
    EXPECT_EQ(log, (Log{"a", "b"}));
    EXPECT_TRUE(list.get().empty());
  }
  EXPECT_EQ(log, (Log{"a", "b"}));
}

/// Sets {a, c, d} over {a, b} with the allocation of this number failing; false when it takes fewer allocations.
bool survives_failure_of_allocation(int number) {
  Log log;
  log.reserve(4);  // so that logging takes no allocation
  auto b = std::make_unique<Function>(log, "b");
  auto c = std::make_unique<Function>(log, "c");
  auto d = std::make_unique<Function>(log, "d");
  bool failed = false;
  {
    List list;
    const Pointers before{new Function(log, "a"), b.get()};
    list.set(before);
    const Pointers after{before[0], c.get(), d.get()};
    try {
      const support::Failing_allocation failing(number);
      list.set(after);
    } catch (const std::bad_alloc&) {
      failed = true;
    }
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(list.get(), failed ? before : after);
    // What the list owns now is its own to delete; the rest is left to the pointers out here.
    if (failed) {
      static_cast<void>(b.release());
    } else {
      static_cast<void>(c.release());
      static_cast<void>(d.release());
    }
  }
  EXPECT_EQ(log, failed ? (Log{"a", "b"}) : (Log{"a", "c", "d"}));
  return failed;
}

TEST(SharedFunctions, AreUnchangedWhenMemoryRunsOutWhileTheyAreSet) {
  int number = 0;
  while (survives_failure_of_allocation(number)) {
    SCOPED_TRACE(testing::Message() << "allocation " << number);
    ++number;
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GE(number, 4);  // the list, the owners, the owner of each new function
}

}  // namespace
