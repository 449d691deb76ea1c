// SPDX-License-Identifier: BSD-3-Clause
// Found by id, in a table and sorted.
#include "model_files/id_index.h"

namespace {

using kelvane::Id_index;

Id_index index_of(const std::vector<std::uint64_t>& ids) {
  return Id_index(ids.size(), [&](std::size_t i) { return ids[i]; });
}

TEST(IdIndex, FindsDenseAndSparseIds) {
  for (const std::uint64_t step : {1ULL, 3ULL, 1000ULL, 1ULL << 40U}) {
    std::vector<std::uint64_t> ids;
    for (std::uint64_t i = 0; i < 100; ++i) ids.push_back((i * 37 % 100) * step);
    const Id_index index = index_of(ids);
    EXPECT_EQ(index.first_repeated(), Id_index::none);
    for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(index[ids[i]], i) << step;
    EXPECT_EQ(index[100 * step], Id_index::none);
    EXPECT_EQ(index[static_cast<std::uint64_t>(-1)], Id_index::none);
  }
}

TEST(IdIndex, TellsTheFirstThatIsThereAgain) {
  EXPECT_EQ(index_of({4, 5, 6, 5, 4}).first_repeated(), 3U);
  EXPECT_EQ(index_of({4000000000, 5, 6, 5, 4000000000}).first_repeated(), 3U);
  EXPECT_EQ(index_of({7000, 8000, 7000, 7000}).first_repeated(), 2U);
}

TEST(IdIndex, MayBeEmpty) {
  EXPECT_EQ(Id_index()[0], Id_index::none);
  EXPECT_EQ(index_of({})[0], Id_index::none);
  EXPECT_EQ(index_of({}).first_repeated(), Id_index::none);
}

}  // namespace
