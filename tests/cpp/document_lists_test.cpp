// Names, types, lengths and flags of all parameters and attributes, wherever a document comes from.
#include <orvml/orvml.hpp>

#include "cpp/content.h"
#include "cpp/sample_documents.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <ostream>

namespace orvml_io_tests {
namespace {

using orvml::Entity;
using orvml::Input;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

Input loaded() {
  const TempFile file;
  orvml::save(file.path(), fullInput());
  return orvml::loadInput(file.path());
}

Input adoptedAfterReading() {
  const TempFile file;
  const OpenIds ids;
  orvml::save(file.path(), fullInput());
  void* handle = nullptr;
  EXPECT_EQ(OrvML_IO_ReadOrvInput(file.path(), handle), 0);
  return orvml::adoptInput(handle);
}

/// The copy owns all it holds; the flat interface cannot make another such document.
Input adoptedCopy() {
  const BuiltDocument built = fullDocument();
  void* handle = OrvML_IO_NewOrvInputHandle(built.handle());
  return orvml::adoptInput(handle);
}

Input releasedAndAdopted() {
  void* handle = orvml::release(fullInput());
  return orvml::adoptInput(handle);
}

/// A way to come by the full document.
struct Origin {
  const char* name;
  Input (*make)();
  bool hasFlags = true;

  friend std::ostream& operator<<(std::ostream& stream, const Origin& origin) {
    return stream << origin.name;
  }
};

const Origin kOrigins[] = {{"Built", fullInput},
                           {"Cloned", [] { return fullInput().clone(); }},
                           {"Loaded", loaded},
                           {"AdoptedCopy", adoptedCopy},
                           {"ReleasedAndAdopted", releasedAndAdopted},
                           // The readers of the flat interface do not bring flags, by contract.
                           {"AdoptedAfterReading", adoptedAfterReading, false}};

class ListsOfADocument : public ::testing::TestWithParam<Origin> {
 protected:
  const Input input_ = GetParam().make();
  const std::string flag_ = GetParam().hasFlags ? " transmitted" : "";
};

INSTANTIATE_TEST_SUITE_P(Each, ListsOfADocument, ::testing::ValuesIn(kOrigins), RowName());

TEST_P(ListsOfADocument, TellTheAttributesOfEachEntity) {
  EXPECT_EQ(contentOf(input_.attributes(Entity::nodes)),
            "forced ints: 0 1 0 1 0\nsize doubles" + flag_ + ": 1 2 3 4 5\n");
  EXPECT_EQ(contentOf(input_.attributes(Entity::edges)), "line ints" + flag_ + ": 7 8 9\n");
  EXPECT_EQ(contentOf(input_.attributes(Entity::faces)), "surface ints" + flag_ + ": 1 2 3 4\n");
  EXPECT_EQ(contentOf(input_.attributes(Entity::elements)), "quality doubles: 0.5 0.75\n");
}

TEST_P(ListsOfADocument, TellTheParameters) {
  EXPECT_EQ(input_.parameters().size(), 2U);
  EXPECT_EQ(input_.parameters().at("angle"), 40.0);
  EXPECT_EQ(input_.parameters().at("size"), 0.25);
  EXPECT_EQ(contentOf(input_.vectorParameters()),
            "layers ints: 3 2 1\nvolumes_sizes doubles: 0.5 0.25\n");
}

TEST_P(ListsOfADocument, TellTheSameThroughTheWholeView) {
  const orvml::InputView view = input_.view();

  for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
    EXPECT_EQ(contentOf(view.attributes(entity)), contentOf(input_.attributes(entity)));
  }
  EXPECT_EQ(contentOf(view.vectorParameters()), contentOf(input_.vectorParameters()));
  EXPECT_EQ(view.parameters().size(), input_.parameters().size());
}

class ChangedDocument : public ListsOfADocument {};

INSTANTIATE_TEST_SUITE_P(Each, ChangedDocument, ::testing::ValuesIn(kOrigins), RowName());

TEST_P(ChangedDocument, HoldsWhatItWasGivenLast) {
  Input input = GetParam().make();

  input.setNodes(Doubles{0, 0, 0});
  input.setAttribute(Entity::nodes, "new", Ints{1}, orvml::Transmission::mandatory);
  input.setCells(Entity::edges, orvml::Shape::line, 2, Ints{0, 0, 0, 0, 0, 0});
  EXPECT_TRUE(input.removeAttribute(Entity::faces, "surface"));
  input.setAttribute(Entity::elements, "quality", Ints{1, 2});
  input.remove(Entity::elements);
  EXPECT_TRUE(input.removeVectorParameter("layers"));
  input.setVectorParameter("volumes_sizes", Ints{1});
  EXPECT_TRUE(input.removeParameter("angle"));
  input.setIdentification({"a", "b", "c"});

  EXPECT_EQ(contentOf(input),
            "input \"a\" \"b\" \"c\" 3D\nnodes 1: 0 0 0\nnew ints transmitted: 1\n"
            "edges 3\nline 3 of 2: 0 0 0 0 0 0\nline ints" +
                flag_ +
                ": 7 8 9\n"
                "faces 4\ntriangle 4 of 3: 0 1 2 0 1 3 1 2 3 0 2 3\nelements 0\n"
                "size = 0.25\nvolumes_sizes ints: 1\n");
}

TEST_P(ChangedDocument, CanBeSavedAndLoaded) {
  Input input = GetParam().make();
  input.setNodes(Doubles{0, 0, 0});
  input.remove(Entity::elements);
  const TempFile file;

  orvml::save(file.path(), input);

  EXPECT_EQ(contentOf(orvml::loadInput(file.path())), contentOf(input));
}

}  // namespace
}  // namespace orvml_io_tests
