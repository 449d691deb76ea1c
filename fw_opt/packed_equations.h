// SPDX-License-Identifier: BSD-3-Clause
// Functions that hand out their equations in pieces, in an order made for vector instructions.
#pragma once

#include <cstddef>
#include <vector>

namespace fw {

/// Equations of a number of like items, say points, with the same few outputs each; all of that stacked once or more.
///
/// Published order: stack by stack, item by item, output by output. Packed order: stack by stack, the items in groups
/// of eight, output by output, and the eight items of the group next to each other. The last group of each stack is
/// filled up with zeros. So vectors of any length up to eight read and write neighbours.
struct Packed_layout {
  std::size_t num_items = 0;    ///< like points
  std::size_t num_outputs = 0;  ///< of an item in one stack
  std::size_t num_stacks = 0;   ///< how many times all of it is there

  static constexpr std::size_t group_size = 8;  ///< items

  /// Groups of a stack, the last one counted whole.
  std::size_t num_groups() const { return (num_items + group_size - 1) / group_size; }
  /// Doubles in published order.
  std::size_t num_equations() const { return num_items * num_outputs * num_stacks; }
  /// Doubles in packed order, filling included.
  std::size_t packed_size() const { return num_groups() * group_size * num_outputs * num_stacks; }
  /// Whether all three numbers are equal.
  bool operator==(const Packed_layout& other) const;

  /// From published to packed order; `packed` has packed_size() entries.
  void pack(const double* published, double* packed) const;
  /// Back again; `published` has num_equations() entries.
  void unpack(const double* packed, double* published) const;
};

/// Receives predictions piece by piece.
class Value_sink {
 public:
  /// `size` values, those from `first` on in packed order; aligned to a cache line.
  virtual void take(std::size_t first, const double* values, std::size_t size) = 0;

 protected:
  ~Value_sink() = default;
};

/// Receives rows piece by piece: column by column, the rows of a piece next to each other.
class Row_sink {
 public:
  static constexpr std::size_t max_rows = 240;  ///< of a piece; eight columns stay in a first-level cache of 32 kB

  /// Entry (row, c) of the piece at hand goes to column(c)[row]. Every column is aligned to a cache line, has room for
  /// max_rows entries and is rubbish after take().
  double* column(std::size_t c) const { return columns_ + c * column_stride_; }
  /// Doubles from one column to the next.
  std::size_t column_stride() const { return column_stride_; }
  /// The rows of a piece have been written, which starts at row `first` in packed order. Their number is a multiple of
  /// 8; rows of zeros fill it up.
  virtual void take(std::size_t first, std::size_t num_rows) = 0;

 protected:
  /// Column c begins at columns + c * column_stride; the memory belongs to the derived class.
  Row_sink(double* columns, std::size_t column_stride) : columns_(columns), column_stride_(column_stride) {}
  /// Writes to the memory of another one.
  explicit Row_sink(const Row_sink& next) = default;
  ~Row_sink() = default;

  double* columns_;            ///< the first entry of column 0
  std::size_t column_stride_;  ///< doubles from one column to the next
};

/// An objective that can do without a vector for its result.
class Packed_function {
 public:
  /// Of the predictions.
  virtual Packed_layout layout() const = 0;
  /// The predictions at x, in packed order and in pieces of any size.
  virtual void evaluate(const std::vector<double>& x, Value_sink& sink) const = 0;

 protected:
  ~Packed_function() = default;
};

/// A Jacobian that can do without a matrix for its result.
class Packed_jacobian {
 public:
  /// Of the rows.
  virtual Packed_layout layout() const = 0;
  /// One for each parameter.
  virtual int num_columns() const = 0;
  /// The Jacobian at x, unweighted, in packed order and in pieces of at most Row_sink::max_rows rows. Where
  /// predicts_base() and predicts_base_at(x) hold, column num_columns() has the predictions; otherwise it is rubbish.
  virtual void linearise(const std::vector<double>& x, Row_sink& sink) const = 0;
  /// Whether the predictions made on the way are, up to rounding, those of the base function.
  virtual bool predicts_base() const { return false; }
  /// Whether they are at this very x; asked only where predicts_base() holds.
  virtual bool predicts_base_at(const std::vector<double>& /*x*/) const { return false; }

 protected:
  ~Packed_jacobian() = default;
};

}  // namespace fw
