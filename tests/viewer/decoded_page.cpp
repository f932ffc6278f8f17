#include "viewer/decoded_page.h"

#include <zlib.h>

#include <bit>
#include <numeric>
#include <stdexcept>
#include <string_view>

namespace orvml_io_tests {

namespace {

/// What is in an element that begins with a tag, up to where a browser ends it.
std::string elementOf(const std::string& html, const std::string& tag) {
  const std::size_t begin = html.find(tag);
  if (begin == std::string::npos || html.find(tag, begin + 1) != std::string::npos) {
    throw std::runtime_error("the page has not one " + tag);
  }
  const std::size_t end = html.find("</script", begin);
  return html.substr(begin + tag.size(), end - begin - tag.size());
}

std::string fromBase64(const std::string& text) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char digit : text) {
    if (digit == '=') {
      break;
    }
    const std::size_t value = kDigits.find(digit);
    if (value == std::string_view::npos) {
      throw std::runtime_error("the arrays are no base64");
    }
    bits = bits << 6U | static_cast<std::uint32_t>(value);
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes += static_cast<char>(bits >> count & 0xffU);
    }
  }
  if (text.size() % 4 != 0) {
    throw std::runtime_error("the arrays are no whole base64");
  }
  return bytes;
}

std::vector<std::uint8_t> inflated(const std::string& deflated) {
  z_stream z = {};
  if (inflateInit(&z) != Z_OK) {
    throw std::runtime_error("zlib cannot begin");
  }
  std::string input = deflated;
  z.next_in = reinterpret_cast<Bytef*>(input.data());
  z.avail_in = static_cast<uInt>(input.size());
  std::vector<std::uint8_t> bytes;
  int result = Z_OK;
  while (result == Z_OK) {
    constexpr std::size_t kBlock = 65536;
    const std::size_t used = bytes.size();
    bytes.resize(used + kBlock);
    z.next_out = bytes.data() + used;
    z.avail_out = kBlock;
    result = inflate(&z, Z_NO_FLUSH);
    bytes.resize(bytes.size() - z.avail_out);
  }
  (void)inflateEnd(&z);
  if (result != Z_STREAM_END || z.avail_in != 0) {
    throw std::runtime_error("the arrays are no whole zlib stream");
  }
  return bytes;
}

}  // namespace

DecodedPage::DecodedPage(const std::string& html)
    : report_(Json::parse(elementOf(html, "<script type=\"application/json\" id=\"report\">"))),
      bytes_(inflated(fromBase64(
          elementOf(html, "<script type=\"application/octet-stream\" id=\"arrays\">")))) {}

Json DecodedPage::cells(const std::string& entity, std::size_t document) const {
  for (const Json& cells : this->document(document).at("mesh").at("cells")) {
    if (cells.at("entity") == entity) {
      return cells;
    }
  }
  return {};
}

/// Words of which all lowest bytes come first.
std::vector<std::uint64_t> DecodedPage::words(const Json& array, std::size_t bytes) const {
  const auto at = array.at("at").get<std::size_t>();
  const auto count = array.at("count").get<std::size_t>();
  if (at + count * bytes > bytes_.size()) {
    throw std::runtime_error("an array lies beyond the stream");
  }
  std::vector<std::uint64_t> words(count);
  for (std::size_t plane = 0; plane < bytes; ++plane) {
    for (std::size_t i = 0; i < count; ++i) {
      words[i] |= std::uint64_t{bytes_[at + plane * count + i]} << (8 * plane);
    }
  }
  return words;
}

std::vector<std::uint32_t> DecodedPage::integers(const Json& array) const {
  const auto stride = array.at("stride").get<std::size_t>();
  std::vector<std::uint32_t> values;
  for (const std::uint64_t word : words(array, 4)) {
    const auto coded = static_cast<std::uint32_t>(word);
    const std::uint32_t difference = coded >> 1U ^ (0U - (coded & 1U));
    values.push_back(difference + (values.size() < stride ? 0U : values[values.size() - stride]));
  }
  return values;
}

std::vector<double> DecodedPage::values(const Json& array) const {
  const std::string type = array.at("type");
  const auto stride = array.at("stride").get<std::size_t>();
  std::vector<double> values;
  if (type == "uint8") {
    for (const std::uint64_t word : words(array, 1)) {
      values.push_back(static_cast<double>(word));
    }
  } else if (type == "int32") {
    for (const std::uint32_t value : integers(array)) {
      values.push_back(static_cast<std::int32_t>(value));
    }
  } else if (type == "float32") {
    for (const std::uint64_t word : words(array, 4)) {
      values.push_back(double{std::bit_cast<float>(static_cast<std::uint32_t>(word))});
    }
  } else if (type == "float64") {
    for (const std::uint64_t word : words(array, 8)) {
      values.push_back(std::bit_cast<double>(word));
    }
  } else if (type == "quantized") {
    for (const std::uint32_t value : integers(array)) {
      const std::size_t component = values.size() % stride;
      values.push_back(array.at("minimum").at(component).get<double>() +
                       value * array.at("step").at(component).get<double>());
    }
  } else {
    throw std::runtime_error("there is no type " + type);
  }
  return values;
}

std::vector<double> DecodedPage::numbers(const Json& array, std::size_t count) const {
  if (!array.is_null()) {
    return values(array);
  }
  std::vector<double> all(count);
  std::iota(all.begin(), all.end(), 0.0);
  return all;
}

std::vector<double> DecodedPage::field(const Json& carriers, const std::string& name) const {
  for (const Json& field : carriers.at("fields")) {
    if (field.at("name") == name) {
      return values(field.at("values"));
    }
  }
  throw std::runtime_error("there is no field " + name);
}

std::vector<double> DecodedPage::indices(const Json& cells) const {
  std::vector<double> all;
  for (const Json& group : cells.at("groups")) {
    const auto some = values(group.at("nodes"));
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

DecodedPage decoded(const orvml::DocumentView& view, const orvml_report::ReportLimits& limits) {
  const orvml_report::ReportedDocument document{&view, "part.h5"};
  return DecodedPage(orvml_report::pageOf({&document, 1}, {.limits = limits}).html);
}

std::string notesOf(const Json& document) {
  std::string notes;
  for (const Json& note : document.at("notes")) {
    notes += note.get<std::string>() + "\n";
  }
  return notes;
}

}  // namespace orvml_io_tests
