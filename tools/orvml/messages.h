#pragma once

#include <orvml/error.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

/// What the command tells its user on standard error, always with the file, and with the object and
/// the cure where there are some.
namespace orvml_tool {

/// The command cannot do what it was asked to do, for a reason of its own.
class Refusal : public std::runtime_error {
 public:
  Refusal(const std::string& sentence, std::string cure)
      : std::runtime_error(sentence), cure_(std::move(cure)) {}

  [[nodiscard]] const std::string& cure() const noexcept { return cure_; }

 private:
  std::string cure_;
};

/// What helps against an error; empty where nothing is known to.
[[nodiscard]] std::string_view cureOf(orvml::Code code) noexcept;

/// The name under which a file is shown: the one it was given, or "standard input".
[[nodiscard]] std::string shownFile(const std::filesystem::path& path);

/// Does some work, in which errors that name no file are about this one.
template <class Work>
auto about(const std::filesystem::path& file, Work&& work) {
  try {
    return work();
  } catch (const orvml::Error& error) {
    if (!error.file().empty()) {
      throw;
    }
    throw orvml::Error(error.code(), error.sentence(), {file, error.object(), error.hdf5Reason()});
  }
}

void tell(const orvml::Error& error);
void tell(const Refusal& refusal);
void tellNote(const std::string& sentence);
/// Any other failure.
void tellFailure(std::string_view sentence, std::string_view cure = {});

}  // namespace orvml_tool
