// SPDX-License-Identifier: BSD-3-Clause
// The part of a host's MEX interface that the modules use, for a host that the tests control.
#pragma once

#include <cstddef>

using mwSize = std::size_t;
using mwIndex = std::size_t;
using mxLogical = bool;
struct mxArray;
enum mxComplexity { mxREAL, mxCOMPLEX };
enum mxClassID {
  mxUNKNOWN_CLASS,
  mxCELL_CLASS,
  mxSTRUCT_CLASS,
  mxLOGICAL_CLASS,
  mxCHAR_CLASS,
  mxVOID_CLASS,
  mxDOUBLE_CLASS,
  mxSINGLE_CLASS,
  mxINT8_CLASS,
  mxUINT8_CLASS,
  mxINT16_CLASS,
  mxUINT16_CLASS,
  mxINT32_CLASS,
  mxUINT32_CLASS,
  mxINT64_CLASS,
  mxUINT64_CLASS,
  mxFUNCTION_CLASS
};

#pragma GCC visibility push(default)  // a module finds them in the process
extern "C" {
bool mxIsDouble(const mxArray* array);
bool mxIsStruct(const mxArray* array);
bool mxIsCell(const mxArray* array);
bool mxIsChar(const mxArray* array);
bool mxIsLogical(const mxArray* array);
bool mxIsNumeric(const mxArray* array);
bool mxIsClass(const mxArray* array, const char* name);
bool mxIsSparse(const mxArray* array);
bool mxIsComplex(const mxArray* array);
mxClassID mxGetClassID(const mxArray* array);
const char* mxGetClassName(const mxArray* array);

mwSize mxGetM(const mxArray* array);
mwSize mxGetN(const mxArray* array);
mwSize mxGetNumberOfElements(const mxArray* array);
mwSize mxGetNumberOfDimensions(const mxArray* array);
const mwSize* mxGetDimensions(const mxArray* array);

double* mxGetPr(const mxArray* array);
double mxGetScalar(const mxArray* array);
void* mxGetData(const mxArray* array);
mxLogical* mxGetLogicals(const mxArray* array);
mwIndex* mxGetIr(const mxArray* array);
mwIndex* mxGetJc(const mxArray* array);
int mxGetString(const mxArray* array, char* text, mwSize size);

mxArray* mxGetCell(const mxArray* array, mwIndex index);
int mxGetNumberOfFields(const mxArray* array);
int mxGetFieldNumber(const mxArray* array, const char* name);
mxArray* mxGetFieldByNumber(const mxArray* array, mwIndex index, int field);
mxArray* mxGetField(const mxArray* array, mwIndex index, const char* name);

mxArray* mxCreateDoubleMatrix(mwSize rows, mwSize columns, mxComplexity complexity);
mxArray* mxCreateDoubleScalar(double value);
mxArray* mxCreateLogicalMatrix(mwSize rows, mwSize columns);
mxArray* mxCreateString(const char* text);
mxArray* mxCreateCellMatrix(mwSize rows, mwSize columns);
mxArray* mxCreateStructMatrix(mwSize rows, mwSize columns, int num_fields, const char** names);
mxArray* mxDuplicateArray(const mxArray* array);
void mxSetCell(mxArray* array, mwIndex index, mxArray* value);
void mxSetFieldByNumber(mxArray* array, mwIndex index, int field, mxArray* value);
void mxDestroyArray(mxArray* array);

[[noreturn]] void mexErrMsgIdAndTxt(const char* identifier, const char* format, ...);
void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[]);
}
#pragma GCC visibility pop
