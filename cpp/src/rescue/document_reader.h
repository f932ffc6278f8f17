#pragma once

#include "hdf5/kept_open.h"
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/source_file.h"
#include "model/document.h"
#include "opened_file.h"
#include "rescue/losses.h"
#include "rescue/positional_names.h"
#include "rescue/read_document.h"
#include "rescue/rescued_document.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvml::detail {

struct GroupArrays;  // rescue/read_mesh.cpp

/// A document of the core that owns what readers put into it.
struct ReadValuesOfCore : orvml_io::OrvInputAndOrvOutput {
  ReadValuesOfCore() { arraysOwnedByCaller = false; }
};

using ObjectOfName = std::function<std::string(const std::string&)>;

/// A vector and where it comes from, by name.
struct ObjectAndVector {
  std::string object;
  RescuedVector vector;
};
using NamedVectors = std::map<std::string, ObjectAndVector>;

/// Reads one document of a file, object by object, so that no trouble with one keeps another from
/// being read.
class DocumentReader {
 public:
  DocumentReader(hid_t file, Kind kind, const FileFacts& facts, Losses& losses)
      : group_(groupOf(kind)),
        facts_(facts),
        losses_(losses),
        file_(file, {&diagnosis_, nullptr, &closed_, true, true, true}),
        isLegacy_(orvml_io::isBelowNamedFormat(facts.version.c_str())) {
    read_.kind = kind;
  }

  std::optional<RescuedDocument> read() {
    const auto opened = file_.openGroup(file_.root(), group_.c_str());
    bool isRead = false;
    if (opened.isObject()) {
      isRead = readFrom(file_.root().below(opened.id.get(), group_));
    }
    tellFindings();
    return isRead ? std::optional(std::move(read_)) : std::nullopt;
  }

 private:
  bool readFrom(const orvml_io::OpenGroup& document) {
    requireNames(document, group_);
    if (!readDimension(document)) {
      losses_.add(Code::dependsOnLost, group_, "has no dimension, without which it is no document");
      return false;
    }
    readIdentification();
    readNodes(document);
    readCells(document, Entity::edges, orvml_io::layout::kEdges);
    readCells(document, Entity::faces, orvml_io::layout::kFaces);
    readCells(document, Entity::elements, orvml_io::layout::kElements);
    readParameters(document);
    return true;
  }

  // The dimension and the texts.

  bool readDimension(const orvml_io::OpenGroup& document);
  void readIdentification();
  void readText(const char* attribute, std::string& text);

  // The mesh.

  void readNodes(const orvml_io::OpenGroup& document);
  std::optional<std::int64_t> readCoordinates(const orvml_io::OpenGroup& container);
  void readCells(const orvml_io::OpenGroup& document, Entity entity, const char* subPath);
  std::optional<std::vector<int>> readGroupArray(const orvml_io::OpenGroup& container,
                                                 const std::string& containerPath,
                                                 const char* subPath);
  std::optional<std::int64_t> readGroups(const orvml_io::OpenGroup& container, Entity entity);
  void readConnectivities(const orvml_io::OpenGroup& container, Entity entity,
                          const GroupArrays& arrays);
  void takeCells(const GroupArrays& arrays, std::size_t groups, const std::vector<int>& indices,
                 std::vector<RescuedGroup>& taken);

  // Values.

  void readAttributes(const orvml_io::OpenGroup& container, Entity entity,
                      std::optional<std::int64_t> count);
  void readPositionedAttributes(const orvml_io::OpenGroup& container, Entity entity,
                                std::optional<std::int64_t> count);
  void takeAttributes(const orvml_io::OML_AttributesVector& store, Entity entity,
                      std::optional<std::int64_t> count, const ObjectOfName& objectOfName);
  void cutAttributes(Entity entity, std::optional<std::int64_t> count);
  void readParameters(const orvml_io::OpenGroup& document);
  void readScalars(const orvml_io::OpenGroup& document, ReadValuesOfCore& core);
  void readGenericVectors(const orvml_io::OpenGroup& document, NamedVectors& vectors);
  void takePositioned(const orvml_io::OpenGroup& document, const char* subPath,
                      const orvml_io::OML_AttributesVector& store, NamedVectors& vectors,
                      const std::function<std::string(int)>& nameOf);
  void take(const orvml_io::OML_AttributesVector& store, const ObjectOfName& objectOfName,
            NamedVectors& vectors);

  [[nodiscard]] bool isAllowed(const std::string& name, const std::string& object);
  void requireNames(const orvml_io::OpenGroup& group, const std::string& path);
  void tellBehindMaxId(const std::vector<PositionedVector>& vectors);
  void tellFindings();

  std::string group_;
  const FileFacts& facts_;
  Losses& losses_;
  orvml_io::Diagnosis diagnosis_;
  orvml_io::ClosedAtTheEnd closed_;
  orvml_io::SourceFile file_;
  bool isLegacy_;
  RescuedDocument read_;
};

}  // namespace orvml::detail
