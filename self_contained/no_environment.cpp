// SPDX-License-Identifier: BSD-3-Clause
// OpenCV reads variables of the environment when it is loaded: some make it print, and a malformed value of others ends
// the process. The linker sends its questions here (--wrap), see cmake/KelvaneSelfContained.cmake.

// NOLINTBEGIN(bugprone-reserved-identifier): the name that the linker gives
extern "C" {
char* __wrap_getenv(const char* name);
char* __wrap_getenv(const char* /*name*/) { return nullptr; }
}
// NOLINTEND(bugprone-reserved-identifier)
