#include "json.h"

#include "console.h"
#include "messages.h"

#include <cmath>

namespace orvml_tool {

Json asJson(double value) { return std::isfinite(value) ? Json(value) : Json(shown(value)); }

Json asJson(const orvml::Error& error) {
  Json json = {{"code", text(error.code())}};
  if (!error.object().empty()) {
    json["object"] = error.object();
  }
  json["sentence"] = error.sentence();
  json["cure"] = cureOf(error.code());
  return json;
}

void printJson(const Json& json) {
  constexpr int kIndent = 2;
  print(json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n");
}

}  // namespace orvml_tool
