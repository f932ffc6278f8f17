#include "files.h"

#include "plain_values.h"
#include "raw_document.h"

#include <pybind11/stl.h>

#include <memory>
#include <utility>

namespace orvml::python {

namespace {

template <class Owner>
py::capsule ownedBy(std::shared_ptr<Owner> owner) {
  auto held = std::make_unique<std::shared_ptr<Owner>>(std::move(owner));
  const auto drop = [](void* pointer) { delete static_cast<std::shared_ptr<Owner>*>(pointer); };
  return {held.release(), drop};
}

Policy policyOf(bool isTolerant) { return isTolerant ? Policy::tolerant : Policy::strict; }

/// What a file held, `RawExchange` of `_orvml.pyi`.
py::dict exchangeOf(py::object input, py::object output, py::list findings, py::list readArrays) {
  py::dict exchange;
  exchange["input"] = std::move(input);
  exchange["output"] = std::move(output);
  exchange["findings"] = std::move(findings);
  exchange["read_arrays"] = std::move(readArrays);
  return exchange;
}

/// Each document is owned by itself, so that one may go while the other stays.
template <class Owner>
py::object shown(std::optional<Owner>& document) {
  if (!document) {
    return py::none();
  }
  const auto owned = std::make_shared<Owner>(std::move(*document));
  return toPython(owned->view(), ownedBy(owned));
}

py::dict read(const py::object& path, bool isTolerant, int threads) {
  const std::string file = bytesOf(path);
  Loaded loaded = [&] {
    const py::gil_scoped_release released;
    return load(file, {.policy = policyOf(isTolerant), .threads = threads});
  }();
  return exchangeOf(shown(loaded.input), shown(loaded.output), plain(loaded.findings), py::list());
}

py::dict open(const py::object& path, bool isTolerant) {
  const std::string file = bytesOf(path);
  const auto mapped = [&] {
    const py::gil_scoped_release released;
    return std::make_shared<MappedFile>(file, policyOf(isTolerant));
  }();
  const py::capsule owner = ownedBy(mapped);
  py::object input = py::none();
  py::object output = py::none();
  if (mapped->hasInput()) {
    input = toPython(mapped->input(), owner);
  }
  if (mapped->hasOutput()) {
    output = toPython(mapped->output(), owner);
  }
  return exchangeOf(std::move(input), std::move(output), plain(mapped->findings()),
                    plain(mapped->readArrays()));
}

void saveHeld(const std::filesystem::path& file, const InputView* input, const OutputView* output,
              const SaveOptions& options) {
  if (input != nullptr && output != nullptr) {
    save(file, *input, *output, options);
  } else if (input != nullptr) {
    save(file, *input, options);
  } else {
    save(file, *output, options);
  }
}

/// Writes one document or two of different kinds.
void write(const py::object& path, const py::object& first, const py::object& second, bool flush) {
  const std::string file = bytesOf(path);
  std::vector<std::unique_ptr<HeldDocument>> held;
  const InputView* input = nullptr;
  const OutputView* output = nullptr;
  for (const py::object& raw : {first, second}) {
    if (!raw.is_none()) {
      held.push_back(std::make_unique<HeldDocument>(raw.cast<py::dict>()));
      input = held.back()->input() != nullptr ? held.back()->input() : input;
      output = held.back()->output() != nullptr ? held.back()->output() : output;
    }
  }
  const py::gil_scoped_release released;
  saveHeld(file, input, output, {.flush = flush});
}

py::dict describeFile(const py::object& path) {
  const std::string file = bytesOf(path);
  const Description description = [&] {
    const py::gil_scoped_release released;
    return describe(file);
  }();
  return plain(description);
}

py::dict upgradeFile(const py::object& old, const py::object& present, bool flush) {
  const std::string from = bytesOf(old);
  const std::string to = bytesOf(present);
  const UpgradeReport report = [&] {
    const py::gil_scoped_release released;
    return upgrade(from, to, {.flush = flush});
  }();
  return plain(report);
}

py::dict rescueFile(const py::object& damaged, const py::object& sound, bool dropUnsoundCells,
                    int places, bool flush) {
  const std::string from = bytesOf(damaged);
  const std::string to = bytesOf(sound);
  const RescueReport report = [&] {
    const py::gil_scoped_release released;
    return rescue(
        from, to,
        {.dropUnsoundCells = dropUnsoundCells, .places = places, .save = {.flush = flush}});
  }();
  return plain(report);
}

}  // namespace

void addFiles(py::module_& module) {
  module.def("read", &read, py::arg("path"), py::arg("tolerant"), py::arg("threads"));
  module.def("open", &open, py::arg("path"), py::arg("tolerant"));
  module.def("write", &write, py::arg("path"), py::arg("first"), py::arg("second"),
             py::arg("flush"));
  module.def("describe", &describeFile, py::arg("path"));
  module.def("upgrade", &upgradeFile, py::arg("old"), py::arg("present"), py::arg("flush"));
  module.def("rescue", &rescueFile, py::arg("damaged"), py::arg("sound"),
             py::arg("drop_unsound_cells"), py::arg("places"), py::arg("flush"));
}

}  // namespace orvml::python
