#include "cpp_rescue/small_file.h"

#include "orvml_io.h"

#include <gtest/gtest.h>

#include <fstream>

namespace orvml_io_tests {

void makeSmallFile(const char* path) {
  RawFile file = RawFile::createMarked(path);
  file.textAttribute("/", "ORVML_IO_CREATOR", "tests");
  file.textAttribute("/", "ORVML_MODULE_NAME", "mesher");
  file.textAttribute("/", "ORVML_MODULE_FORMAT_VERSION", "2.1");
  file.documentGroup("/OrvInput", 3);
  file.group("/OrvInput/Nodes");
  file.doubleTable("/OrvInput/Nodes/coordinates", 5, 3,
                   {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1});
  file.group("/OrvInput/Nodes/Attributes");
  file.doubleVector("/OrvInput/Nodes/Attributes/size", {0.5, 1.5, 2.5, 3.5, 4.5});
  file.elements("/OrvInput/Faces", {3}, {TRIANGLE}, {3}, {0, 2, 1, 0, 1, 3, 0, 3, 2});
  file.group("/OrvInput/Faces/Attributes");
  file.intVector("/OrvInput/Faces/Attributes/surface", {7, 8, 9});
  file.elements("/OrvInput/Elements", {2}, {TETRAHEDRA}, {4}, {0, 1, 2, 3, 1, 2, 3, 4});
  file.group("/OrvInput/Elements/Attributes");
  file.doubleVector("/OrvInput/Elements/Attributes/quality", {0.25, 0.75});
  file.parameterTable("/OrvInput/parameters", {{"angle", 40.0}, {"growth", 1.5}});
  file.group("/OrvInput/ParametersVector");
  file.intVector("/OrvInput/ParametersVector/layers", {3, 2, 1});
  file.close();
}

void writeBytes(const char* path, const std::string& bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  EXPECT_TRUE(stream.flush()) << path;
}

int countOf(const char* path, orvml::Entity entity) {
  const orvml::Input input = orvml::loadInput(path);
  return entity == orvml::Entity::nodes ? input.nodes().size() : input.cells(entity).size();
}

std::string toldOf(const orvml::RescueReport& report) {
  std::string told;
  for (const orvml::LostObject& lost : report.lost) {
    told += std::string(lost.code) + ": " + lost.sentence;
    if (!lost.places.empty()) {
      told += " (" + std::to_string(lost.count) + ":";
      for (const orvml::CheckPlace& place : lost.places) {
        told += " " + std::string(name(place.kind)) + " " + std::to_string(place.index);
      }
      told += ")";
    }
    told += "\n";
  }
  return told;
}

std::string toldOf(const std::vector<orvml::ChangedObject>& changed) {
  std::string told;
  for (const orvml::ChangedObject& object : changed) {
    told += object.sentence + "\n";
  }
  return told;
}

std::string errorsOf(const char* path) {
  std::string errors;
  for (const orvml::CheckFinding& finding : orvml::check(std::filesystem::path(path)).findings) {
    if (finding.severity == orvml::Severity::error) {
      errors += finding.sentence + "\n";
    }
  }
  return errors;
}

}  // namespace orvml_io_tests
