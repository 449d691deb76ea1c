// SPDX-License-Identifier: BSD-3-Clause
// How far from the axis the image of a lens goes.
#pragma once

#include "cameras/lens.h"

namespace kelvane {

/// The radius of the largest disc on the plane of the lens, at most `limit`, on which the lens is certainly one to one
/// and turns nothing round (docs/derivations.md, Eqs. 65 and 66); of a radial lens that is where its picture folds
/// back.
double fold_radius(const Lens& lens, double limit);

}  // namespace kelvane
