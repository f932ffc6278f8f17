#pragma once

#include <orvml/orvml.hpp>

#include <pybind11/pybind11.h>

#include <span>

/// What the library reports, as dictionaries, lists, texts and numbers whose keys are the fields of
/// the classes in `_reports.py`.
namespace orvml::python {

[[nodiscard]] pybind11::list plain(std::span<const Finding> findings);
[[nodiscard]] pybind11::list plain(std::span<const ReadArray> arrays);
[[nodiscard]] pybind11::dict plain(const Description& description);
[[nodiscard]] pybind11::dict plain(const UpgradeReport& report);
[[nodiscard]] pybind11::dict plain(const RescueReport& report);
[[nodiscard]] pybind11::dict plain(const CheckReport& report);
[[nodiscard]] pybind11::dict plain(const DiffReport& report);
[[nodiscard]] pybind11::dict plain(const Fingerprint& fingerprint);

}  // namespace orvml::python
