#include "lent_values.h"

#include "requirements.h"

#include <string>
#include <type_traits>

namespace orvml::detail {

void lend(const Attribute& vector, orvml_io::OML_AttributesVector& store) {
  const std::string name(vector.name);
  std::visit(
      [&](auto values) {
        using Value = std::remove_const_t<typename decltype(values)::element_type>;
        static constexpr Value kNone = {};
        // A vector of no values has a block all the same.
        const Value* data = values.empty() ? &kNone : values.data();
        store.Delete(name.c_str());
        store.SetBlock(name.c_str(), orvml_io::borrowedBlock(data), orvml_io::codeOf<Value>(),
                       require32(values.size()), vector.mustBeTransmitted);
      },
      vector.values);
}

void setIdentification(const Identification& identification,
                       orvml_io::OrvInputAndOrvOutput& document) {
  requireIdentification(identification.moduleName, "the name of the module");
  requireIdentification(identification.moduleFormatVersion, "the format version of the module");
  requireIdentification(identification.creator, "the name of the creator");
  // Copies first: the texts may be those of the document.
  const std::string name(identification.moduleName);
  const std::string version(identification.moduleFormatVersion);
  const std::string creator(identification.creator);
  orvml_io::copyIdentification(document.moduleName, name.c_str());
  orvml_io::copyIdentification(document.moduleFormatVersion, version.c_str());
  orvml_io::copyIdentification(document.ioCreator, creator.c_str());
}

}  // namespace orvml::detail
