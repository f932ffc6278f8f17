// Reads a surface mesh from an exchange file, fills it and sends the result back in another one.
#include "exchange/names.h"
#include "exchange/received.h"
#include "exchange/record.h"
#include "exchange/summary.h"
#include "exchange/surface_checks.h"
#include "mesher/filling.h"
#include "mesher/output_document.h"
#include "mesher/request.h"
#include "program.h"

#include <cstdio>
#include <string>

namespace {

using namespace orvml_examples;

Filling fill(const Document& input, const Request& request) {
  const Mesh surface = input.mesh();
  requireClosedSurface(surface);
  requireEdgesOnSurface(surface);
  return request.sweep
             ? fillBySweeping(surface, input.intAttribute(names::kFacesSurfaceId), request)
             : fillWithTetrahedra(surface, request);
}

void meshFile(const std::string& inputFile, const std::string& sentRecord,
              const std::string& outputFile, const std::string& recordFile) {
  const Document input = Document::readInput(inputFile);
  requireReceivedAsSent({input, "OrvInput", Record::load(sentRecord)});
  printCounts("Read, and as sent, an input document", input);
  const Request request = requestOf(input);
  const Document output = makeOutputDocument(input, fill(input, request));
  recordOf(output, "OrvOutput").save(recordFile);
  output.writeOutput(outputFile);
  printCounts("Wrote an output document", output);
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
