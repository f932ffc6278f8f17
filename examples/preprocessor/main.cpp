// Models a part, meshes its surface, sends it to the mesher in an exchange file, and looks at what
// comes back; once, or again with another mesh size while it keeps the first result.
#include "exchange/check.h"
#include "exchange/summary.h"
#include "exchange/surface_checks.h"
#include "gmsh_session.h"
#include "preprocessor/cad_measures.h"
#include "preprocessor/document_record.h"
#include "preprocessor/input_checks.h"
#include "preprocessor/input_document.h"
#include "preprocessor/module_process.h"
#include "preprocessor/named_values.h"
#include "preprocessor/output_checks.h"
#include "preprocessor/received.h"
#include "program.h"

#include <cstdio>
#include <string>

namespace {

using namespace orvml_examples;

void requireSoundSurface(const Part& part, const Mesh& mesh) {
  const SurfaceCounts counts = requireClosedSurface(mesh);
  requireEdgesOnSurface(mesh);
  std::printf("  closed surface: %d nodes - %d sides + %d faces = Euler characteristic %d\n",
              counts.nodes, counts.edges, counts.faces, counts.eulerCharacteristic());
  require(counts.eulerCharacteristic() == part.eulerCharacteristic,
          "the part has the Euler characteristic " + std::to_string(part.eulerCharacteristic));
}

/// Builds the document and sends it. What comes back is a copy: the document itself and the arrays
/// that it was built from are gone by then.
Document sendKeepingACopy(const Part& part, double size, const std::string& inputFile,
                          const std::string& recordFile) {
  const GmshSession session(part.name);
  const CadModel model = part.build();
  const CadMeasures cad = measure(model);
  std::printf("CAD model of the %s: %zu surfaces, volume %.3f mm3, area %.3f mm2\n", part.name,
              cad.surfaces.size(), cad.volume, cad.area);
  const MeshSizes sizes{size};
  const Document document = makeInputDocument(part, model, cad, sizes, meshSurface(model, sizes));
  requireSoundSurface(part, document.mesh());
  recordOf(document, "OrvInput").save(recordFile);
  document.writeInput(inputFile);
  printCounts("Wrote an input document", document.identification(), document.mesh());
  return document.cloneInput();
}

void write(const Part& part, double size, const std::string& inputFile,
           const std::string& recordFile) {
  const Document copy = sendKeepingACopy(part, size, inputFile, recordFile);
  requireEqualWhenReadBack(copy, inputFile);
  const std::string textFile = inputFile + ".txt";
  printMeshAndRequireItWhole(copy, textFile);
  std::printf("  a copy of it equals what the file reads back; its mesh as text: %s\n",
              textFile.c_str());
}

void printCloseness(const Closeness& closeness, const CadMeasures& cad) {
  std::printf("  volume %.3f mm3, CAD %.3f: off by %+.3f, tolerance %.3f (%.2f %%)\n",
              closeness.volume, cad.volume, closeness.volume - cad.volume,
              closeness.volumeTolerance, 100 * closeness.volumeTolerance / cad.volume);
  std::printf("  area   %.3f mm2, CAD %.3f: off by %+.3f, tolerance %.3f (%.2f %%)\n",
              closeness.area, cad.area, closeness.area - cad.area, closeness.areaTolerance,
              100 * closeness.areaTolerance / cad.area);
  std::printf("  chordal error %.4f mm, allowed %.4f: round surfaces are meshed with flat faces\n",
              closeness.chordalError, closeness.allowedChordalError);
}

/// What came back for an input, when it is all that it should be.
Document readAnswer(const Part& part, const Document& input, const std::string& outputFile,
                    const std::string& recordFile) {
  Document output = Document::readOutput(outputFile);
  requireReceivedAsSent({output, "OrvOutput", Record::load(recordFile)});
  requireSurfaceKept(input, output);
  requireUserAttributesKept(input, output);
  printCounts("Read, and as sent, an output document", output.identification(), output.mesh());
  const GmshSession session(part.name);
  const CadMeasures cad = measure(part.build());
  printCloseness(requireCloseToCad(input, output, cad), cad);
  return output;
}

void show(const Part& part, const std::string& inputFile, const std::string& outputFile,
          const std::string& recordFile) {
  const Document input = Document::readInput(inputFile);
  printNamedValues(readAnswer(part, input, outputFile, recordFile));
}

/// The same two files serve every run; both are told without their endings.
struct Files {
  std::string input;
  std::string output;
};

Document haveMeshed(const Part& part, double size, const Files& files,
                    const std::vector<std::string>& module) {
  // The file that was sent is not read back here: who has read a file cannot write it again.
  const Document input = sendKeepingACopy(part, size, files.input + ".h5", files.input + ".json");
  runModule(module);
  return readAnswer(part, input, files.output + ".h5", files.output + ".json");
}

/// Has a part meshed, and again with another size while the first result is in use.
void meshTwice(const Part& part, double size, double otherSize, const Files& files,
               const std::vector<std::string>& module) {
  const Document first = haveMeshed(part, size, files, module);
  const Record asRead = recordOf(first, "OrvOutput");
  const Document second = haveMeshed(part, otherSize, files, module);
  require(recordOf(first, "OrvOutput").entries() == asRead.entries(),
          "the document of the first run changed when the second one was written");
  require(first.numberOf(ORVML_NODES) != second.numberOf(ORVML_NODES),
          "the second run gave the mesh of the first one");
  std::printf(
      "Meshed again into the same files: %d nodes there, and still %d in the first document\n",
      second.numberOf(ORVML_NODES), first.numberOf(ORVML_NODES));
  printNamedValues(second);
}

bool run(const std::vector<std::string>& arguments) {
  if (arguments.size() == 5 && arguments[0] == "write") {
    write(partNamed(arguments[1]), std::stod(arguments[2]), arguments[3], arguments[4]);
    return true;
  }
  if (arguments.size() == 5 && arguments[0] == "show") {
    show(partNamed(arguments[1]), arguments[2], arguments[3], arguments[4]);
    return true;
  }
  if (arguments.size() > 6 && arguments[0] == "twice") {
    meshTwice(partNamed(arguments[1]), std::stod(arguments[2]), std::stod(arguments[3]),
              {arguments[4], arguments[5]}, {arguments.begin() + 6, arguments.end()});
    return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  return orvml_examples::runProgram(
      argc, argv,
      "preprocessor write PART SIZE INPUT.h5 SENT.json\n"
      "       preprocessor show PART INPUT.h5 OUTPUT.h5 SENT.json\n"
      "       preprocessor twice PART SIZE SIZE INPUT OUTPUT MODULE...\n"
      "MODULE... is the command that makes OUTPUT.h5 of INPUT.h5,\n"
      "PART is flange or lug, SIZE the length of edges in mm",
      run);
}
