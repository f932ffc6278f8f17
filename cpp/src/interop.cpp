#include <orvml/interop.hpp>

#include "core_views.h"
#include "document_access.h"
#include "hdf5/id.h"
#include "hdf5/silence.h"
#include "model/names.h"
#include "orvml_io.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace orvml {

using orvml_io::Elems;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

namespace {

/// Both libraries are made of the same classes, of which handles point to one: they must be those
/// of one version. It is looked at when this library is loaded.
bool isFlatInterfaceOfThisVersion() noexcept {
  return std::strcmp(OrvML_IO_GetVersion(), orvml_io::kLibraryVersion) == 0;
}
const bool kIsOfOneVersion = isFlatInterfaceOfThisVersion();

void requireSameVersion() {
  if (!kIsOfOneVersion) {
    throw Error(Code::otherVersion, std::string("the flat interface is of version ") +
                                        OrvML_IO_GetVersion() + ", this one of " +
                                        orvml_io::kLibraryVersion);
  }
}

OrvInputAndOrvOutput& documentOf(void* handle) {
  requireSameVersion();
  if (handle == nullptr) {
    throw Error(Code::nullHandle, "the handle is null");
  }
  return *orvml_io::documentOf(handle);
}

template <class T>
orvml_io::NewArray<T> copyOf(const T* values, int length) {
  if (values == nullptr) {
    return nullptr;
  }
  orvml_io::NewArray<T> copy = orvml_io::makeNewArray<T>(length);
  std::copy_n(values, std::max(length, 0), copy.get());
  return copy;
}

/// Makes group arrays of a caller the container's own; they are small.
void takeGroups(Elems& elems) {
  if (!elems.groupArraysMadeByLibrary) {
    const int length = elems.numberOfElementTypes;
    auto cells = copyOf(elems.numberOfElementsByType, length);
    auto shapes = copyOf(elems.elementTypes, length);
    auto nodesPerCell = copyOf(elems.numberOfNodesByElement, length);
    elems.numberOfElementsByType = cells.release();
    elems.elementTypes = shapes.release();
    elems.numberOfNodesByElement = nodesPerCell.release();
    elems.groupArraysMadeByLibrary = true;
  }
  elems.typeArraysOwnedByCaller = false;
}

/// Makes a document whose mesh arrays are its caller's one that releases all the rest.
void takeOver(OrvInputAndOrvOutput& document) {
  if (!document.arraysOwnedByCaller) {
    return;
  }
  for (Elems* elems : {document.edges, document.faces, document.elements}) {
    if (elems != nullptr) {
      takeGroups(*elems);
      elems->connectivitiesAreBorrowed = true;
    }
  }
  if (document.nodes != nullptr) {
    document.nodes->coordsAreBorrowed = true;
  }
  document.arraysOwnedByCaller = false;
}

template <class Made, class Core>
Made adopt(void*& handle, const char* sentence) {
  OrvInputAndOrvOutput& document = documentOf(handle);
  if (dynamic_cast<Core*>(&document) == nullptr) {
    throw Error(Code::wrongKind, sentence);
  }
  takeOver(document);
  std::unique_ptr<OrvInputAndOrvOutput> owned(&document);
  handle = nullptr;
  return detail::DocumentAccess::make<Made>(std::move(owned));
}

/// Copies the blocks of a store that lie in containers.
void copyBorrowed(OML_AttributesVector& store, const detail::DocumentContent& content, int entity) {
  for (const auto& [place, keeper] : content.keepers) {
    const OML_AttributesVector::Entry* entry =
        place.first == entity && !place.second.empty() ? store.find(place.second) : nullptr;
    if (entry == nullptr || !entry->isBorrowed) {
      continue;
    }
    const OML_AttributesVector::Entry old = *entry;
    if (old.code == orvml_io::kIntCode) {
      store.Set(place.second.c_str(), static_cast<const int*>(old.data), old.length,
                old.mustBeTransmitted);
    } else {
      store.Set(place.second.c_str(), static_cast<const double*>(old.data), old.length,
                old.mustBeTransmitted);
    }
  }
}

/// Copies what lies in containers, which go with the document, into the core's document.
void takeFromContainers(detail::DocumentContent& content) {
  OrvInputAndOrvOutput& document = *content.document;
  for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
    const int place = static_cast<int>(entity);
    const bool hasMesh = content.keepers.count({place, {}}) > 0;
    if (entity == Entity::nodes && hasMesh && document.nodes != nullptr &&
        document.nodes->coordsAreBorrowed) {
      orvml_io::Nodes& nodes = *document.nodes;
      const long long length = nodes.coordsLength;
      nodes.setCoordinates(copyOf(nodes.coords, static_cast<int>(length)), length);
    }
    Elems* elems =
        entity == Entity::nodes ? nullptr : document.GetGenericElems(detail::coreEntity(entity));
    if (hasMesh && elems != nullptr && elems->connectivitiesAreBorrowed) {
      elems->setConnectivities(
          copyOf(elems->connectivities, static_cast<int>(elems->connectivityLength())));
    }
    if (OML_AttributesVector* store = document.attributesOf(detail::coreEntity(entity))) {
      copyBorrowed(*store, content, place);
    }
  }
  copyBorrowed(document.parametersVector, content, detail::DocumentContent::kOfNoEntity);
}

void* releaseDocument(Document&& document) {
  requireSameVersion();
  detail::DocumentContent& content = detail::DocumentAccess::contentOf(document);
  takeFromContainers(content);
  return orvml_io::handleOf(content.document.release());
}

/// The groups and datasets that are open in a file, or in all files.
std::vector<hid_t> openObjectsOf(hid_t file) {
  constexpr unsigned kObjects = H5F_OBJ_GROUP | H5F_OBJ_DATASET;
  const ssize_t count = H5Fget_obj_count(file, kObjects);
  std::vector<hid_t> objects(count > 0 ? static_cast<std::size_t>(count) : 0);
  const ssize_t found = H5Fget_obj_ids(file, kObjects, objects.size(), objects.data());
  objects.resize(found > 0 ? static_cast<std::size_t>(found) : 0);
  return objects;
}

/// Closes what is open in the file that was opened by a path.
int closeThoseBelow(const std::filesystem::path& path) {
  int closed = 0;
  std::string name(path.string().size() + 1, '\0');
  for (const hid_t object : openObjectsOf(H5F_OBJ_ALL)) {
    const ssize_t length = H5Fget_name(object, name.data(), name.size());
    const bool isOfPath = length >= 0 && static_cast<std::size_t>(length) + 1 == name.size() &&
                          path.compare(name.c_str()) == 0;
    closed += isOfPath && H5Oclose(object) >= 0 ? 1 : 0;
  }
  return closed;
}

}  // namespace

Input adoptInput(void*& handle) {
  return adopt<Input, orvml_io::OrvInput>(handle, "the handle is that of an output document");
}

Output adoptOutput(void*& handle) {
  return adopt<Output, orvml_io::OrvOutput>(handle, "the handle is that of an input document");
}

Kind kindOf(void* handle) {
  return dynamic_cast<orvml_io::OrvInput*>(&documentOf(handle)) != nullptr ? Kind::input
                                                                           : Kind::output;
}

void* handle(Document& document) {
  requireSameVersion();
  return orvml_io::handleOf(&detail::DocumentAccess::coreOf(document));
}

void* release(Input&& input) { return releaseDocument(std::move(input)); }

void* release(Output&& output) { return releaseDocument(std::move(output)); }

int closeLeftovers(const std::filesystem::path& path) {
  const orvml_io::Silence silence;
  int closed = closeThoseBelow(path);
  // The path may lead to another file by now, or to the same one by another name.
  const orvml_io::FileId file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
  if (file.valid()) {
    for (const hid_t object : openObjectsOf(file.get())) {
      closed += H5Oclose(object) >= 0 ? 1 : 0;
    }
  }
  return closed;
}

}  // namespace orvml
