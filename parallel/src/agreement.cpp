#include "agreement.h"

#include <orvml/parallel/together.hpp>

#include "bytes.h"

#include <exception>
#include <limits>
#include <new>
#include <stdexcept>

namespace orvml::parallel {

namespace detail {

Failure Failure::current() {
  Failure failure;
  try {
    throw;
  } catch (const Error& error) {
    failure.form_ = Form::error;
    failure.code_ = error.code();
    failure.sentence_ = error.sentence();
    failure.about_ = {error.file(), error.object(), error.hdf5Reason()};
  } catch (const std::bad_alloc&) {
    failure.form_ = Form::memory;
  } catch (const std::exception& error) {
    failure.sentence_ = error.what();
  } catch (...) {
    failure.sentence_ = "a step failed with something that is no standard exception";
  }
  return failure;
}

std::vector<char> Failure::packed() const {
  ByteWriter writer;
  writer.add(static_cast<int>(form_));
  writer.add(static_cast<int>(code_));
  writer.add(std::string_view(sentence_));
  writer.add(std::string_view(about_.file.native()));
  writer.add(std::string_view(about_.object));
  writer.add(std::string_view(about_.hdf5Reason));
  return writer.take();
}

Failure Failure::unpacked(const std::vector<char>& bytes) {
  ByteReader reader(bytes);
  Failure failure;
  failure.form_ = static_cast<Form>(reader.number<int>());
  failure.code_ = static_cast<Code>(reader.number<int>());
  failure.sentence_ = reader.text();
  failure.about_.file = reader.text();
  failure.about_.object = reader.text();
  failure.about_.hdf5Reason = reader.text();
  return failure;
}

void Failure::raise() const {
  switch (form_) {
    case Form::error:
      throw Error(code_, sentence_, about_);
    case Form::memory:
      throw std::bad_alloc();
    case Form::other:
      break;
  }
  throw std::runtime_error(sentence_);
}

void agree(const Communicator& comm, const std::optional<Failure>& failure) {
  constexpr int kNobody = std::numeric_limits<int>::max();
  const int failed = comm.least(failure ? comm.rank() : kNobody);
  if (failed == kNobody) {
    return;
  }
  std::vector<char> bytes = failed == comm.rank() ? failure->packed() : std::vector<char>();
  comm.broadcast(bytes, failed);
  Failure::unpacked(bytes).raise();
}

}  // namespace detail

void together(MPI_Comm comm, const std::function<void()>& step) {
  const detail::Communicator ranks(comm);
  detail::together(ranks, step);
}

}  // namespace orvml::parallel
