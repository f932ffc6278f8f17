#pragma once

#include <petscksp.h>

#include <stdexcept>
#include <string>
#include <utility>

/// PETSc's objects, destroyed by themselves. Making and destroying are collective.
namespace petsc {

/// One rank may throw it alone, while the others wait in a call of PETSc: the program has to end.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline void require(PetscErrorCode status) {
  if (status != 0) {
    throw Failure("PETSc fails with status " + std::to_string(status));
  }
}

template <class Handle, PetscErrorCode (*Destroy)(Handle*)>
class Object {
 public:
  Object() = default;
  Object(Object&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Object& operator=(Object&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  ~Object() { (void)Destroy(&handle_); }
  [[nodiscard]] Handle get() const noexcept { return handle_; }
  /// For a function that makes it.
  [[nodiscard]] Handle* put() noexcept { return &handle_; }

 private:
  Handle handle_ = nullptr;
};

using Matrix = Object<Mat, MatDestroy>;
using Vector = Object<Vec, VecDestroy>;
using Solver = Object<KSP, KSPDestroy>;

}  // namespace petsc
