#include "fields.h"

#include "words.h"

#include <type_traits>
#include <utility>

namespace orvml_report {

namespace {

using Form = AttributeBudget::Form;

/// The values of what is carried, of which there are enough.
template <class To, class From>
std::vector<To> carried(std::span<const From> values, const Carriers& carriers) {
  std::vector<To> chosen(carriers.count);
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    const std::size_t from =
        carriers.numbers != nullptr ? static_cast<std::size_t>((*carriers.numbers)[i]) : i;
    if constexpr (std::is_same_v<To, float>) {
      chosen[i] = asFloat(values[from]);
    } else {
      chosen[i] = values[from];
    }
  }
  return chosen;
}

Json field(std::string_view name, const char* role, bool holdsInts, bool mustBeTransmitted,
           Json values) {
  return {{"name", name},
          {"role", role},
          {"type", holdsInts ? "int" : "double"},
          {"mustBeTransmitted", mustBeTransmitted},
          {"values", std::move(values)}};
}

Json packed(const orvml::Attribute& attribute, const Carriers& carriers, Form form,
            PackedArrays& arrays) {
  if (attribute.holdsInts()) {
    return arrays.addInts(carried<int>(attribute.ints(), carriers));
  }
  return form == Form::exact ? arrays.addDoubles(carried<double>(attribute.doubles(), carriers))
                             : arrays.addFloats(carried<float>(attribute.doubles(), carriers));
}

void tellLength(const orvml::Attribute& attribute, const Carriers& carriers,
                std::vector<std::string>& notes) {
  notes.push_back("The attribute \"" + std::string(attribute.name) + "\" has " +
                  counted(static_cast<std::int64_t>(attribute.size()), "value") + " for " +
                  counted(carriers.ofDocument, nameOfOne(carriers.entity)) +
                  " and is not shown with them.");
}

}  // namespace

Json attributeFields(const orvml::Attributes& attributes, const Carriers& carriers,
                     AttributeBudget& budget, PackedArrays& arrays,
                     std::vector<std::string>& notes) {
  Json fields = Json::array();
  for (const orvml::Attribute& attribute : attributes) {
    if (static_cast<std::int64_t>(attribute.size()) != carriers.ofDocument) {
      tellLength(attribute, carriers, notes);
      continue;
    }
    const Form form = budget.formOf(carriers.count, attribute.holdsInts());
    if (form != Form::leftOut) {
      fields.push_back(field(attribute.name, "attribute", attribute.holdsInts(),
                             attribute.mustBeTransmitted,
                             packed(attribute, carriers, form, arrays)));
    }
  }
  return fields;
}

Json measureField(std::string_view name, std::span<const float> values, PackedArrays& arrays) {
  return field(name, "measure", false, false, arrays.addFloats(values));
}

Json differenceField(std::span<const std::uint8_t> marks, PackedArrays& arrays) {
  return field("difference", "difference", true, false, arrays.addBytes(marks));
}

}  // namespace orvml_report
