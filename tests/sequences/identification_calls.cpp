// Versions, identification strings, dimension and callbacks.
#include "sequences/caller.h"
#include "sequences/text_model.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {

namespace {

bool askVersions(Caller& caller) {
  caller.log("OrvML_IO_GetVersion");
  EXPECT_STREQ(OrvML_IO_GetVersion(), "1.10.0");
  EXPECT_STREQ(OrvML_IO_GetFormatVersion(), "1.4");
  EXPECT_STREQ(ORVML_IO_GetMinimumFormatVersionToSave(handleOf(caller.documentOrNone())), "1.4");
  return true;
}

bool askVersionNumber(Caller& caller) {
  static const std::vector<std::pair<const char*, double>> versions = {
      {"1.4", 1.4}, {"1.10.0", 1.1}, {"1.9", 1.9}, {"", 0.0}, {"v1", 0.0}, {"2", 2.0}};
  const auto& [text, number] = caller.random.oneOf(versions);
  caller.log("OrvML_IO_GetFormatVersion_Number", text);
  EXPECT_EQ(OrvML_IO_GetFormatVersion_Number(text), number);
  return true;
}

bool askShapeName(Caller& caller) {
  const int shape = caller.random.between(NONE, CIRCLE);
  caller.log("ElemTypeNames", shape);
  EXPECT_EQ(ElemTypeNames[shape], nameOfShape(static_cast<ElemType>(shape)));
  return true;
}

using TextSetter = void (*)(const char*, void*);

/// A null text clears the string, except for the creator, which keeps the old one.
template <TextSetter setter, std::string DocumentModel::*text, bool nullClears>
bool setText(Caller& caller, const char* function) {
  LiveDocument* document = caller.documentOrNone();
  const std::optional<std::string> value = anyText(caller.random);
  caller.log(function, value, document);
  setter(pointerTo(value), handleOf(document));
  if (document != nullptr && (value || nullClears)) {
    document->model.*text = cutIdentification(value.value_or(""));
  }
  return true;
}

bool setModuleName(Caller& caller) {
  return setText<OrvML_IO_SetOrvMeshLibraryModuleName, &DocumentModel::moduleName, true>(
      caller, "OrvML_IO_SetOrvMeshLibraryModuleName");
}

bool setModuleFormatVersion(Caller& caller) {
  return setText<OrvML_IO_SetOrvMeshLibraryModuleFormatVersion, &DocumentModel::moduleFormatVersion,
                 true>(caller, "OrvML_IO_SetOrvMeshLibraryModuleFormatVersion");
}

bool setIOCreator(Caller& caller) {
  return setText<OrvML_IO_SetOrvMeshLibraryIOCreator, &DocumentModel::ioCreator, false>(
      caller, "OrvML_IO_SetOrvMeshLibraryIOCreator");
}

bool setMeshDimension(Caller& caller) {
  static const std::vector<int> dimensions = {2, 3, 2, 3, 2, 3, 2, 3, 2, 3, 2, 3, 1, 0, -1, 100};
  LiveDocument* document = caller.documentOrNone();
  const int dimension = caller.random.oneOf(dimensions);
  if (document != nullptr && document->model.nodes &&
      !coordinatesReach(*document->model.nodes, document->model.nodes->count, dimension)) {
    return false;
  }
  caller.log("OrvML_IO_SetMeshDimension", document, dimension);
  OrvML_IO_SetMeshDimension(handleOf(document), dimension);
  if (document != nullptr) {
    document->model.dimension = dimension;
  }
  return true;
}

using CallbackSetter = void (*)(void*&, void*, void*);

template <CallbackSetter setter, CallbackModel DocumentModel::*callback>
bool setCallback(Caller& caller, const char* function) {
  static int things[4] = {};
  LiveDocument* document = caller.documentOrNone();
  const CallbackModel value = {&things[caller.random.below(4)], &things[caller.random.below(4)]};
  caller.log(function, document, value.first, value.second);
  void* none = nullptr;
  setter(document == nullptr ? none : document->handle, value.first, value.second);
  if (document != nullptr && document->model.isInput) {
    document->model.*callback = value;
  }
  return true;
}

bool setCallbackStatus(Caller& caller) {
  return setCallback<OrvML_IO_SetCallbackStatus, &DocumentModel::statusCallback>(
      caller, "OrvML_IO_SetCallbackStatus");
}

bool setCallbackError(Caller& caller) {
  return setCallback<OrvML_IO_SetCallbackError, &DocumentModel::errorCallback>(
      caller, "OrvML_IO_SetCallbackError");
}

}  // namespace

std::vector<Call> identificationCalls() {
  return {{"versions", askVersions},
          {"version number", askVersionNumber},
          {"shape name", askShapeName},
          {"SetOrvMeshLibraryModuleName", setModuleName},
          {"SetOrvMeshLibraryModuleFormatVersion", setModuleFormatVersion},
          {"SetOrvMeshLibraryIOCreator", setIOCreator},
          {"SetMeshDimension", setMeshDimension},
          {"SetCallbackStatus", setCallbackStatus},
          {"SetCallbackError", setCallbackError}};
}

}  // namespace orvml_io_tests
