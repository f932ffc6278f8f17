// Equality and the text export.
#include "sequences/caller.h"
#include "sequences/equality_model.h"
#include "sequences/text_model.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace orvml_io_tests {

namespace {

/// Compares two documents, or a document and its clone, in both directions.
template <class Comparison>
bool compare(Caller& caller, const char* function, Comparison comparison) {
  const LiveDocument* first = caller.documentOrNone();
  const LiveDocument* second = caller.documentOrNone();
  caller.log(function, first, second);
  const bool expected = areEqual(modelOf(first), modelOf(second));
  EXPECT_EQ(comparison(handleOf(first), handleOf(second)), expected);
  EXPECT_EQ(comparison(handleOf(second), handleOf(first)),
            areEqual(modelOf(second), modelOf(first)));
  if (first != second) {
    caller.saw(expected ? "two documents that are equal" : "two documents that differ");
  }
  return true;
}

bool compareInputs(Caller& caller) {
  return compare(caller, "OrvML_IO_OrvInputsAreEqual", OrvML_IO_OrvInputsAreEqual);
}

bool compareOutputs(Caller& caller) {
  return compare(caller, "OrvML_IO_OrvOutputsAreEqual", OrvML_IO_OrvOutputsAreEqual);
}

/// A copy that was just made is found equal, whatever it holds, unless something was left out.
bool compareWithClone(Caller& caller) {
  const LiveDocument& document = caller.document();
  caller.log("comparison with a clone", document);
  const DocumentModel model = cloneOf(document.model, true);
  const bool expected = areEqual(&document.model, &model);
  void* clone = OrvML_IO_NewOrvInputHandle(document.handle);
  EXPECT_EQ(OrvML_IO_OrvInputsAreEqual(document.handle, clone), expected);
  EXPECT_EQ(OrvML_IO_OrvInputsAreEqual(clone, document.handle), areEqual(&model, &document.model));
  OrvML_IO_DeleteOrvInputHandle(clone);
  caller.saw(expected ? "document that equals its clone" : "document that differs from its clone");
  return true;
}

std::string contentOf(const char* path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool exportText(Caller& caller) {
  const LiveDocument* document = caller.documentOrNone();
  const TempFile file;
  caller.log("OrvML_IO_WriteMeshInOrvFormat", document);
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(nullptr, handleOf(document)), 1);
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat("no/such/folder/file.txt", handleOf(document)), 1);
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(file.path(), handleOf(document)), 0);
  const std::string expected = textOf(modelOf(document));
  EXPECT_EQ(contentOf(file.path()), expected);
  caller.saw(expected.empty() ? "empty text" : "text with a mesh");
  return true;
}

}  // namespace

std::vector<Call> comparisonCalls() {
  return {{"OrvInputsAreEqual", compareInputs},
          {"OrvOutputsAreEqual", compareOutputs},
          {"OrvInputsAreEqual with a clone", compareWithClone},
          {"WriteMeshInOrvFormat", exportText}};
}

}  // namespace orvml_io_tests
