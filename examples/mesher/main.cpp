// Reads a surface mesh from an exchange file, fills it and sends the result back in another one. It
// uses the C++ layer of the library; the preprocessor uses the flat functions.
#include <orvml/orvml.hpp>

#include "exchange/names.h"
#include "exchange/summary.h"
#include "exchange/surface_checks.h"
#include "mesher/filling.h"
#include "mesher/output_document.h"
#include "mesher/request.h"
#include "mesher/view_mesh.h"
#include "mesher/view_record.h"
#include "program.h"

#include <cstdio>
#include <string>

namespace {

using namespace orvml_examples;

Filling fill(const orvml::InputView& input, const Request& request) {
  const Mesh surface = meshOf(input);
  requireClosedSurface(surface);
  requireEdgesOnSurface(surface);
  if (!request.sweep) {
    return fillWithTetrahedra(surface, request);
  }
  const auto surfaceIds = input.faces().attributes().at(names::kFacesSurfaceId).ints();
  return fillBySweeping(surface, {surfaceIds.begin(), surfaceIds.end()}, request);
}

void printCountsOf(const orvml::DocumentView& document, const char* title) {
  printCounts(title, identificationOf(document), meshOf(document));
}

void meshFile(const std::string& inputFile, const std::string& sentRecord,
              const std::string& outputFile, const std::string& recordFile) {
  const orvml::Input input = orvml::loadInput(inputFile);
  const orvml::InputView surface = input.view();
  requireSameValues(Record::load(sentRecord), recordOf(surface));
  printCountsOf(surface, "Read, and as sent, an input document");
  const Request request = requestOf(surface);
  const orvml::Output output = makeOutputDocument(surface, fill(surface, request));
  recordOf(output.view()).save(recordFile);
  orvml::save(outputFile, output);
  printCountsOf(output.view(), "Wrote an output document");
  std::printf("  filled with %s; all elements are positive, their boundary is the faces\n",
              request.sweep ? "swept columns" : "tetrahedra");
}

bool run(const std::vector<std::string>& arguments) {
  if (arguments.size() != 4) {
    return false;
  }
  meshFile(arguments[0], arguments[1], arguments[2], arguments[3]);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  return orvml_examples::runProgram(
      argc, argv, "mesher INPUT.h5 INPUT_SENT.json OUTPUT.h5 OUTPUT_SENT.json", run);
}
