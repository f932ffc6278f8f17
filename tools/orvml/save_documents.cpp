#include "save_documents.h"

namespace orvml_tool {

void saveDocuments(const std::filesystem::path& path, const orvml::Exchange& documents) {
  if (documents.input && documents.output) {
    save(path, *documents.input, *documents.output);
  } else if (documents.input) {
    save(path, *documents.input);
  } else if (documents.output) {
    save(path, *documents.output);
  } else {
    throw orvml::Error(orvml::Code::noDocument, "there is no document to write", {path, {}, {}});
  }
}

}  // namespace orvml_tool
