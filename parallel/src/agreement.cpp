#include "agreement.h"

#include <orvml/parallel/together.hpp>

#include <algorithm>
#include <exception>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <type_traits>

namespace orvml::parallel {

namespace detail {

namespace {

static_assert(std::is_trivially_copyable_v<Failure::Message>);

void put(std::string_view text, Failure::Message::Text& place) noexcept {
  place.size = std::min(text.size(), place.bytes.size());
  std::copy_n(text.begin(), place.size, place.bytes.begin());
}

std::string textOf(const Failure::Message::Text& text) { return {text.bytes.data(), text.size}; }

}  // namespace

void Failure::takeCurrent() {
  try {
    throw;
  } catch (const Error& error) {
    code_ = error.code();
    sentence_ = error.sentence();
    about_ = {error.file(), error.object(), error.hdf5Reason()};
    form_ = Form::error;
  } catch (const std::bad_alloc&) {
    form_ = Form::memory;
  } catch (const std::invalid_argument& error) {
    sentence_ = error.what();
    form_ = Form::argument;
  } catch (const std::exception& error) {
    sentence_ = error.what();
  } catch (...) {
    sentence_ = "a step failed with something that is no standard exception";
  }
}

Failure Failure::current() noexcept {
  Failure failure;
  try {
    failure.takeCurrent();
  } catch (...) {
    failure.form_ = Form::memory;  // for its texts
  }
  return failure;
}

void Failure::pack(Message& message) const noexcept {
  message.form = static_cast<int>(form_);
  message.code = static_cast<int>(code_);
  put(sentence_, message.sentence);
  put(about_.file.native(), message.file);
  put(about_.object, message.object);
  put(about_.hdf5Reason, message.hdf5Reason);
}

Failure Failure::unpacked(const Message& message) {
  Failure failure;
  failure.form_ = static_cast<Form>(message.form);
  failure.code_ = static_cast<Code>(message.code);
  failure.sentence_ = textOf(message.sentence);
  failure.about_ = {textOf(message.file), textOf(message.object), textOf(message.hdf5Reason)};
  return failure;
}

void Failure::raise() const {
  switch (form_) {
    case Form::error:
      throw Error(code_, sentence_, about_);
    case Form::memory:
      throw std::bad_alloc();
    case Form::argument:
      throw std::invalid_argument(sentence_);
    case Form::other:
      break;
  }
  throw std::runtime_error(sentence_);
}

namespace {

/// The caller's communicator may return what fails.
void requireDone(int status) {
  if (status != MPI_SUCCESS) {
    throw std::runtime_error("ranks cannot agree: MPI fails with status " + std::to_string(status));
  }
}

}  // namespace

void agree(MPI_Comm comm, const std::optional<Failure>& failure) {
  constexpr int kNobody = std::numeric_limits<int>::max();
  int rank = 0;
  MPI_Comm_rank(comm, &rank);
  int failed = failure ? rank : kNobody;
  requireDone(MPI_Allreduce(MPI_IN_PLACE, &failed, 1, MPI_INT, MPI_MIN, comm));
  if (failed == kNobody) {
    return;
  }
  Failure::Message message;
  if (failed == rank) {
    failure->pack(message);
  }
  requireDone(MPI_Bcast(&message, int{sizeof message}, MPI_BYTE, failed, comm));
  Failure::unpacked(message).raise();
}

}  // namespace detail

void together(MPI_Comm comm, const std::function<void()>& step) { detail::together(comm, step); }

}  // namespace orvml::parallel
