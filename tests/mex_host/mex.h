// SPDX-License-Identifier: BSD-3-Clause
// The part of a host's MEX interface that the module uses, for a host that the tests control.
#pragma once

#include <cstddef>

using mwSize = std::size_t;
struct mxArray;
enum mxComplexity { mxREAL, mxCOMPLEX };

#pragma GCC visibility push(default)  // a module finds them in the process
extern "C" {
bool mxIsDouble(const mxArray* array);
bool mxIsSparse(const mxArray* array);
bool mxIsComplex(const mxArray* array);
mwSize mxGetM(const mxArray* array);
mwSize mxGetN(const mxArray* array);
mwSize mxGetNumberOfElements(const mxArray* array);
double* mxGetPr(const mxArray* array);
double mxGetScalar(const mxArray* array);
const char* mxGetClassName(const mxArray* array);
mxArray* mxCreateDoubleMatrix(mwSize rows, mwSize columns, mxComplexity complexity);
[[noreturn]] void mexErrMsgIdAndTxt(const char* identifier, const char* format, ...);
void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[]);
}
#pragma GCC visibility pop
