// What the C++ library, which is part of the module, calls when something is wrong.
//
// The library's own functions print names and texts to the standard error, which a service
// does not have, or throw exceptions that hold a text. They need code that nothing else in the
// module uses: a demangler, reference-counted strings and more, 130 KB in all. These functions
// do without it. No code of the module catches the exceptions of the library by their type,
// except std::bad_alloc.

#include <cstdlib>
#include <exception>
#include <new>
#include <string>

namespace {

struct LibraryError final : std::exception {
  [[nodiscard]] const char* what() const noexcept override { return "error of the C++ library"; }
};

}  // namespace

namespace __gnu_cxx {

// std::terminate calls this.
void __verbose_terminate_handler() {
  std::abort();
}

}  // namespace __gnu_cxx

// NOLINTBEGIN(cert-dcl58-cpp): the library declares these and calls them
namespace std {

void __throw_bad_alloc() {
  throw bad_alloc();
}

void __throw_bad_array_new_length() {
  throw bad_array_new_length();
}

void __throw_length_error(const char* /*text*/) {
  throw LibraryError();
}

void __throw_logic_error(const char* /*text*/) {
  throw LibraryError();
}

void __throw_out_of_range_fmt(const char* /*format*/, ...) {
  throw LibraryError();
}

// A failed check of _GLIBCXX_ASSERTIONS. The optimiser removes the texts, because nothing uses
// them: the address of the stop leads to the line.
void __glibcxx_assert_fail(const char* /*file*/, int /*line*/, const char* /*function*/,
                           const char* /*condition*/) noexcept {
  abort();
}

}  // namespace std
// NOLINTEND(cert-dcl58-cpp)
