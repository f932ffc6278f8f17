#pragma once

// The run-time side of the mutation campaign (scripts/mutate). The campaign builds the library
// once, with every mutant in it; the environment chooses at most one of them:
//
//   ORVML_IO_MUTANT   the number of the mutant that is switched on; none when unset
//   ORVML_IO_REACHED  a file of one byte for each mutant, set to 1 when its place is reached

#include <H5Ipublic.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace mutation {

/// What the environment asks for. Shared memory, so that forked children of a test count too.
class Campaign {
 public:
  Campaign() noexcept : chosen_(numberFrom("ORVML_IO_MUTANT")) { mapReached(); }

  bool isChosen(int mutant) const noexcept {
    if (mutant < numberOfMutants_) {
      reached_[mutant] = 1;
    }
    return mutant == chosen_;
  }

 private:
  static int numberFrom(const char* variable) noexcept {
    const char* text = std::getenv(variable);
    return text == nullptr ? -1 : std::atoi(text);
  }

  void mapReached() noexcept {
    const char* fileName = std::getenv("ORVML_IO_REACHED");
    const int file = fileName == nullptr ? -1 : ::open(fileName, O_RDWR | O_CLOEXEC);
    struct stat status = {};
    if (file < 0 || ::fstat(file, &status) != 0) {
      return;
    }
    void* bytes = ::mmap(nullptr, static_cast<std::size_t>(status.st_size), PROT_READ | PROT_WRITE,
                         MAP_SHARED, file, 0);
    if (bytes != MAP_FAILED) {
      reached_ = static_cast<unsigned char*>(bytes);
      numberOfMutants_ = static_cast<int>(status.st_size);
    }
    (void)::close(file);
  }

  int chosen_;
  unsigned char* reached_ = nullptr;
  int numberOfMutants_ = 0;
};

inline const Campaign campaign;

inline bool mutant(int number) noexcept { return campaign.isChosen(number); }

// Each function below is an operator of the source until its mutant is chosen.

template <class A, class B>
bool less(int n, const A& a, const B& b) {
  return mutant(n) ? a <= b : a < b;
}
template <class A, class B>
bool lessOrEqual(int n, const A& a, const B& b) {
  return mutant(n) ? a < b : a <= b;
}
template <class A, class B>
bool greater(int n, const A& a, const B& b) {
  return mutant(n) ? a >= b : a > b;
}
template <class A, class B>
bool greaterOrEqual(int n, const A& a, const B& b) {
  return mutant(n) ? a > b : a >= b;
}

template <class A, class B>
auto plus(int n, A a, B b) {
  return mutant(n) ? a - b : a + b;
}
template <class A, class B>
auto minus(int n, A a, B b) {
  return mutant(n) ? a + b : a - b;
}
template <class A, class B>
auto times(int n, A a, B b) {
  return mutant(n) ? a + b : a * b;
}
template <class A, class B>
auto dividedBy(int n, A a, B b) {
  return mutant(n) ? a * b : a / b;
}

/// The operand of a compound assignment: `a += b` becomes `a -= b`.
template <class T>
T operand(int n, T value) {
  return mutant(n) ? static_cast<T>(-value) : value;
}

/// Added to an integer.
inline int one(int n) noexcept { return mutant(n) ? 1 : 0; }

/// An identifier that is closed once less than it has to be.
inline hid_t neverClosed(int n, hid_t id) {
  if (mutant(n) && id >= 0) {
    (void)H5Iinc_ref(id);
  }
  return id;
}

/// An identifier that is closed although it has to stay open.
inline hid_t closed(int n, hid_t id) {
  if (mutant(n) && id >= 0) {
    (void)H5Idec_ref(id);
  }
  return id;
}

}  // namespace mutation
