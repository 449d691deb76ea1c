// SPDX-License-Identifier: BSD-3-Clause
// Buffers that begin on a cache line: alignment, room, and when memory is taken.
#include "least_squares/aligned_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "support/failing_allocation.h"

namespace {

using Small = kelvane::Aligned_buffer<8>;
using Tiny = kelvane::Aligned_buffer<1>;

bool is_aligned(const double* data) { return reinterpret_cast<std::uintptr_t>(data) % kelvane::cache_line == 0; }

/// Writes and reads every entry; a sanitizer sees where that leaves the memory.
template <typename Buffer>
bool holds(Buffer& buffer, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) buffer[i] = static_cast<double>(i);
  const Buffer& same = buffer;
  for (std::size_t i = 0; i < size; ++i) {
    if (same[i] != static_cast<double>(i) || same.data() + i != &buffer[i]) return false;
  }
  return true;
}

TEST(AlignedBuffer, BeginsOnACacheLineAndHoldsItsSize) {
  std::vector<std::unique_ptr<char[]>> between;  // so that the allocations begin at different places
  std::vector<std::unique_ptr<Tiny>> buffers;
  for (std::size_t size = 1; size <= 200; ++size) {
    between.push_back(std::make_unique<char[]>(1 + 16 * (size % 5)));
    buffers.push_back(std::make_unique<Tiny>());
    buffers.back()->resize(size);
    EXPECT_TRUE(is_aligned(buffers.back()->data())) << size;
    EXPECT_TRUE(holds(*buffers.back(), size)) << size;
  }
}

TEST(AlignedBuffer, KeepsItsMemoryWhenItShrinksAndGrowsBack) {
  Tiny buffer;
  buffer.resize(100);
  const double* const data = buffer.data();
  for (const std::size_t size : {10U, 0U, 100U, 99U}) {
    buffer.resize(size);
    EXPECT_EQ(buffer.data(), data);
  }
  buffer.resize(1000);
  EXPECT_TRUE(is_aligned(buffer.data()));
  EXPECT_TRUE(holds(buffer, 1000));
}

TEST(AlignedBuffer, KeepsItsRoomAfterAFailedAllocation) {
  Small buffer;
  {
    const support::Failing_allocation failing(0);
    EXPECT_THROW(buffer.resize(1000), std::bad_alloc);
  }
  buffer.resize(8);
  EXPECT_TRUE(is_aligned(buffer.data()));
  EXPECT_TRUE(holds(buffer, 8));
  buffer.resize(1000);
  EXPECT_TRUE(holds(buffer, 1000));
}

TEST(AlignedBuffer, TakesNoMemoryForTheUsualSizes) {
  const support::Failing_allocation failing(0);
  Small buffer;
  for (std::size_t size = 0; size <= 8; ++size) {
    buffer.resize(size);
    EXPECT_TRUE(is_aligned(buffer.data()));
    EXPECT_TRUE(holds(buffer, size));
  }
  EXPECT_FALSE(failing.has_happened());
}

TEST(AlignedBuffer, TakesMemoryForMore) {
  Small buffer;
  const double* const own = buffer.data();
  for (const std::size_t size : {9U, 300U, 20U}) {
    buffer.resize(size);
    EXPECT_NE(buffer.data(), own);
    EXPECT_TRUE(is_aligned(buffer.data()));
    EXPECT_TRUE(holds(buffer, size));
  }
}

}  // namespace
