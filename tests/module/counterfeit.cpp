// SPDX-License-Identifier: BSD-3-Clause
// A library to preload: functions by the names of OpenCV's solvers and of LAPACK's, which answer nothing and note that
// they were asked, on a line of the file that KELVANE_COUNTERFEIT_LOG names.
#include <cstdio>
#include <cstdlib>
#include <opencv2/core.hpp>

namespace {

void note(const char* function) {
  const char* path = std::getenv("KELVANE_COUNTERFEIT_LOG");
  std::FILE* log = path != nullptr ? std::fopen(path, "a") : nullptr;
  if (log == nullptr) return;
  std::fprintf(log, "%s\n", function);
  std::fclose(log);
}

}  // namespace

namespace cv {

bool solve(InputArray A, InputArray /*b*/, OutputArray x, int /*flags*/) {
  note("cv::solve");
  x.create(A.cols(), 1, CV_64F);
  x.setTo(Scalar(777.0));
  return true;
}

void SVD::compute(InputArray A, OutputArray w, OutputArray u, OutputArray vt, int /*flags*/) {
  note("cv::SVD::compute");
  w.create(A.cols(), 1, CV_64F);
  u.create(A.rows(), A.cols(), CV_64F);
  vt.create(A.cols(), A.cols(), CV_64F);
  w.setTo(Scalar(777.0));
  u.setTo(Scalar(777.0));
  vt.setTo(Scalar(777.0));
}

void SVD::compute(InputArray /*A*/, OutputArray /*w*/, int /*flags*/) { note("cv::SVD::compute"); }

SVD& SVD::operator()(InputArray /*A*/, int /*flags*/) {
  note("cv::SVD::operator()");
  return *this;
}

void SVD::backSubst(InputArray /*w*/, InputArray /*u*/, InputArray /*vt*/, InputArray /*b*/, OutputArray /*x*/) {
  note("cv::SVD::backSubst");
}

}  // namespace cv

// The arguments are never looked at. "info", the last one, stays as it was.
extern "C" {
void dgesdd_() { note("dgesdd_"); }
void sgesdd_() { note("sgesdd_"); }
void dgels_() { note("dgels_"); }
void dgeqrf_() { note("dgeqrf_"); }
void dgesv_() { note("dgesv_"); }
void dpotrf_() { note("dpotrf_"); }
void cblas_dgemm() { note("cblas_dgemm"); }
}
