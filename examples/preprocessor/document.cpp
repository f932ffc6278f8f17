// Life cycle, identification and files. The mesh and the named values are in files of their own.
#include "preprocessor/document.h"

#include "exchange/check.h"

#include <array>
#include <utility>

namespace orvml_examples {

namespace {

void requireHandle(const void* handle, const std::string& path, const char* kind) {
  require(handle != nullptr,
          path + " cannot be opened, is no exchange file, or holds no " + kind + " document");
}

}  // namespace

Document Document::newInput(const Identification& identification) {
  void* handle = OrvML_IO_NewOrvInputHandle(identification.moduleName.c_str(),
                                            identification.moduleFormatVersion.c_str(),
                                            identification.creator.c_str(), Mesh::kDimension);
  require(handle != nullptr, "OrvML_IO_NewOrvInputHandle gave no document");
  Document document(handle, true);
  require(document.dimension() == Mesh::kDimension, "a new input has another dimension");
  return document;
}

Document Document::readInput(const std::string& path) {
  void* handle = nullptr;
  const int status = OrvML_IO_ReadOrvInput(path.c_str(), handle);
  Document document(handle, false);
  requireOk(status, "OrvML_IO_ReadOrvInput(" + path + ")");
  requireHandle(handle, path, "input");
  return document;
}

Document Document::readOutput(const std::string& path) {
  void* handle = nullptr;
  const int status = OrvML_IO_ReadOrvOutput(path.c_str(), handle);
  Document document(handle, false);
  requireOk(status, "OrvML_IO_ReadOrvOutput(" + path + ")");
  requireHandle(handle, path, "output");
  return document;
}

Document::Document(Document&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)),
      builtHere_(other.builtHere_),
      adopted_(std::move(other.adopted_)) {}

Document::~Document() {
  if (handle_ != nullptr && builtHere_) {
    // The library leaves the attribute blocks of such a document to its caller.
    for (const auto entity : {ORVML_NODES, ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
      (void)OrvML_IO_DeleteAttributesEntitiesVector(handle_, entity);
    }
  }
  OrvML_IO_DeleteOrvInputHandle(handle_);
}

Document Document::cloneInput() const {
  void* handle = OrvML_IO_NewOrvInputHandle(handle_);
  require(handle != nullptr, "OrvML_IO_NewOrvInputHandle gave no copy of a document");
  return Document(handle, false);
}

bool Document::equalsInput(const Document& other) const {
  // The comparison looks at what its first side has, so both sides have to be first once.
  return OrvML_IO_OrvInputsAreEqual(handle_, other.handle_) &&
         OrvML_IO_OrvInputsAreEqual(other.handle_, handle_);
}

void Document::writeInput(const std::string& path) const {
  requireOk(OrvML_IO_WriteOrvInput(path.c_str(), handle_), "OrvML_IO_WriteOrvInput(" + path + ")");
}

void Document::printMesh(const std::string& path) const {
  requireOk(OrvML_IO_WriteMeshInOrvFormat(path.c_str(), handle_),
            "OrvML_IO_WriteMeshInOrvFormat(" + path + ")");
}

Identification Document::identification() const {
  const char* moduleName = OrvML_IO_GetOrvMeshLibraryModuleName(handle_);
  const char* moduleFormatVersion = OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle_);
  std::array<char, 80> creator{};
  require(moduleName != nullptr && moduleFormatVersion != nullptr &&
              OrvML_IO_GetOrvMeshLibraryIOCreator(handle_, creator.data()) == creator.data(),
          "a document does not tell its identification");
  return {moduleName, moduleFormatVersion, creator.data()};
}

int Document::dimension() const { return OrvML_IO_GetMeshDimension(handle_); }

}  // namespace orvml_examples
