// Names from files, none of which may become part of the page.
#include "cpp_check/meshes.h"
#include "report_page.h"
#include "viewer/decoded_page.h"
#include "words.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

struct TextRow {
  const char* name;
  std::string given;
  std::string shown;
};

class NamesInPages : public ::testing::TestWithParam<TextRow> {};

TEST_P(NamesInPages, AreShownAndNothingElse) {
  const std::string& given = GetParam().given;
  TestMesh mesh = blockOf(formOf(orvml::Shape::quadrilateral, 4), 1);
  mesh.creator = given;
  mesh.parameters = {{given, 1.0}};
  mesh.vectors = {{given, {1.0}}};
  mesh.attributes[2] = {{given, {1.0}}};
  const orvml::InputView view = mesh.view();
  const orvml_report::ReportedDocument document{&view, given};

  const orvml_report::Page made = orvml_report::pageOf({&document, 1}, {.title = given});
  const DecodedPage page(made.html);

  const Json& shown = page.document();
  EXPECT_EQ(page.report().at("title"), GetParam().shown);
  EXPECT_EQ(shown.at("name"), GetParam().shown);
  EXPECT_EQ(shown.at("identification").at("creator"), GetParam().shown);
  EXPECT_EQ(shown.at("parameters").at(0).at("name"), GetParam().shown);
  EXPECT_EQ(shown.at("vectorParameters").at(0).at("name"), GetParam().shown);
  EXPECT_EQ(shown.at("attributes").at(0).at("name"), GetParam().shown);
  EXPECT_EQ(page.cells("faces").at("fields").back().at("name"), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NamesInPages,
    ::testing::Values(TextRow{"EndOfElement", "</script><script>alert(1)</script>",
                              "</script><script>alert(1)</script>"},
                      TextRow{"Comment", "<!--<script><!--report-->", "<!--<script><!--report-->"},
                      TextRow{"Quotes", "\"'`\\", "\"'`\\"},
                      TextRow{"ControlCharacters", "a\x01\n\t\x7f\x1b[31m",
                              "a\x01\n\t\x7f\x1b[31m"},
                      TextRow{"RightToLeft", "\u202etxt.exe\u202c", "\u202etxt.exe\u202c"},
                      TextRow{"LineSeparators", "\u2028\u2029", "\u2028\u2029"},
                      TextRow{"NoUtf8",
                              "a\xff\xfe"
                              "b",
                              "a\ufffd\ufffd"
                              "b"},
                      TextRow{"CutUtf8", "\xe2\x82", "\ufffd"},
                      TextRow{"Words", "größe 尺寸", "größe 尺寸"}),
    [](const auto& row) { return row.param.name; });

TEST(Pages, AreThePageAroundTheirData) {
  const orvml::InputView view{orvml::DocumentParts()};
  const orvml_report::ReportedDocument document{&view, ""};

  const std::string html = orvml_report::pageOf({&document, 1}).html;

  const std::string_view empty = orvml_report::kReportPage;
  const std::size_t marker = empty.find(orvml_report::kDataMarker);
  ASSERT_NE(marker, std::string_view::npos);
  EXPECT_EQ(empty.find(orvml_report::kDataMarker, marker + 1), std::string_view::npos);
  EXPECT_TRUE(html.starts_with(empty.substr(0, marker)));
  EXPECT_TRUE(html.ends_with(empty.substr(marker + orvml_report::kDataMarker.size())));
}

TEST(Pages, TellWhatTheyAreOf) {
  const orvml::InputView view{orvml::DocumentParts()};
  const orvml_report::ReportedDocument documents[] = {
      {&view, "a.h5", orvml_report::FileFacts{123, "1.10"}}, {&view, "b.h5"}};

  const DecodedPage page(orvml_report::pageOf(documents).html);

  EXPECT_EQ(page.report().at("format"), 1);
  EXPECT_EQ(page.report().at("title"), "a.h5 and b.h5");
  EXPECT_EQ(page.report().at("madeBy"), "liborvml " + std::string(orvml::version()));
  EXPECT_EQ(page.document().at("file").at("bytes"), 123);
  EXPECT_EQ(page.document().at("file").at("formatVersion"), "1.10");
  EXPECT_TRUE(page.document(1).at("file").is_null());
  EXPECT_EQ(page.document().at("fingerprint"), fingerprint(view).document.text());
  EXPECT_EQ(page.document().at("kind"), "input");
}

TEST(Words, GroupDigits) {
  EXPECT_EQ(orvml_report::grouped(0), "0");
  EXPECT_EQ(orvml_report::grouped(999), "999");
  EXPECT_EQ(orvml_report::grouped(1000), "1,000");
  EXPECT_EQ(orvml_report::grouped(-123456), "-123,456");
  EXPECT_EQ(orvml_report::grouped(1234567), "1,234,567");
  EXPECT_EQ(orvml_report::counted(1, "node"), "1 node");
  EXPECT_EQ(orvml_report::counted(1200, "node"), "1,200 nodes");
  EXPECT_EQ(orvml_report::rounded(0.8249), "0.82");
}

}  // namespace
}  // namespace orvml_io_tests
