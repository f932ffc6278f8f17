// Patches hold the change between two exchanges, and only what differs.
#include <orvml/orvml.hpp>

#include "cpp/content.h"
#include "cpp/sample_documents.h"
#include "hdf5/id.h"
#include "support/open_ids.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>
#include <hdf5_hl.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <random>

namespace orvml_io_tests {
namespace {

using orvml::Code;
using orvml::Entity;
using orvml::Exchange;
using orvml::Input;
using orvml::Output;
using orvml::Patched;
using orvml::Shape;
using orvml::Transmission;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

Exchange exchangeOf(const Input& input) { return {.input = input.view()}; }

/// Documents with random content, and random changes of them.
class RandomDocuments {
 public:
  Input make() {
    Input input({"m", "1", "c"}, below(2) == 0 ? 2 : 3);
    for (int i = 0; i < 6; ++i) {
      change(input);
    }
    return input;
  }

  /// Makes one to four changes.
  Input changed(const Input& input) {
    Input copy = input.clone();
    for (int i = below(4); i >= 0; --i) {
      change(copy);
    }
    return copy;
  }

 private:
  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
  std::string name() { return std::string(1, static_cast<char>('a' + below(4))); }

  Entity entity() {
    constexpr Entity kEntities[] = {Entity::nodes, Entity::edges, Entity::faces, Entity::elements};
    return kEntities[below(4)];
  }

  /// An attribute of a document, or a vector of any length.
  template <class Value>
  std::vector<Value> values(int size) {
    std::vector<Value> made(static_cast<std::size_t>(size));
    for (Value& value : made) {
      value = static_cast<Value>(below(5));
    }
    return made;
  }

  /// Gives a few values of an attribute that is there others.
  void editAttribute(Input& input, Entity where) {
    const orvml::Attributes attributes = input.attributes(where);
    if (attributes.empty()) {
      return;
    }
    const orvml::Attribute& attribute = *attributes.begin();
    const std::string old(attribute.name);
    std::visit(
        [&](auto span) {
          std::vector copy(span.begin(), span.end());
          if (!copy.empty()) {
            copy[static_cast<std::size_t>(below(static_cast<int>(copy.size())))] = 77;
          }
          input.setAttribute(where, old, std::move(copy));
        },
        attribute.values);
  }

  void setCells(Input& input) {
    const int triangles = below(40);
    const int quads = below(3);
    input.setCells(entity() == Entity::faces ? Entity::faces : Entity::elements,
                   {{Shape::triangle, 3, triangles}, {Shape::quadrilateral, 4, quads}},
                   values<int>(3 * triangles + 4 * quads));
  }

  void change(Input& input) {
    switch (below(9)) {
      case 0:
        input.setNodes(values<double>(input.dimension() * below(30)));
        break;
      case 1:
        setCells(input);
        break;
      case 2:
        input.remove(entity());
        break;
      case 3:
        input.setParameter(name(), below(3));
        break;
      case 4:
        input.removeParameter(name());
        break;
      case 5:
        input.setVectorParameter(name(), values<double>(below(20)));
        break;
      case 6:
        setAttribute(input, entity());
        break;
      case 7:
        editAttribute(input, entity());
        break;
      default:
        input.setIdentification({name(), name(), ""});
    }
  }

  void setAttribute(Input& input, Entity where) {
    const int size = where == Entity::nodes ? input.nodes().size() : input.cells(where).size();
    const auto transmission = below(2) == 0 ? Transmission::optional : Transmission::mandatory;
    if (size == 0) {
      return;
    }
    if (below(2) == 0) {
      input.setAttribute(where, name(), values<int>(size), transmission);
    } else {
      input.setAttribute(where, name(), values<double>(size), transmission);
    }
  }

  std::mt19937 random_{1};  // NOLINT(cert-msc51-cpp): the same documents in each run
};

TEST(Patch, GivesTheSecondOfAThousandRandomPairs) {
  RandomDocuments documents;
  const TempFile patch;
  for (int i = 0; i < 1000; ++i) {
    const Input from = documents.make();
    const Input to = documents.changed(from);
    savePatch(patch.path(), exchangeOf(from), exchangeOf(to), {.flush = false});

    const Exchange base = exchangeOf(from);
    const Patched patched(patch.path(), base);

    ASSERT_TRUE(patched.documents().input.has_value());
    ASSERT_EQ(fingerprint(*patched.documents().input), fingerprint(to.view())) << i;
    ASSERT_TRUE(diff(*patched.documents().input, to.view()).areSame()) << i;
  }
}

class PatchOfAnExchange : public ::testing::Test {
 protected:
  const Input input_ = fullInput();
  const Output output_ = mixedOutput();
  const TempFile patch_;
};

TEST_F(PatchOfAnExchange, MakesChangesAndRemovesDocuments) {
  Input other = input_.clone();
  other.setParameter("size", 9.0);
  const Exchange inputAlone{.input = input_.view()};
  const Exchange both{.input = other.view(), .output = output_.view()};

  savePatch(patch_.path(), inputAlone, both);
  const Patched made(patch_.path(), inputAlone);
  EXPECT_EQ(contentOf(*made.documents().input), contentOf(other));
  EXPECT_EQ(contentOf(*made.documents().output), contentOf(output_));

  savePatch(patch_.path(), both, inputAlone);
  const Patched back(patch_.path(), both);
  EXPECT_EQ(contentOf(*back.documents().input), contentOf(input_));
  EXPECT_FALSE(back.documents().output.has_value());
}

TEST_F(PatchOfAnExchange, ShowsWhatIsNotChangedWhereItLies) {
  Input other = input_.clone();
  other.setAttribute(Entity::nodes, "size", Doubles{1, 2, 3, 4, 9}, Transmission::mandatory);
  savePatch(patch_.path(), exchangeOf(input_), exchangeOf(other));

  const Patched patched(patch_.path(), exchangeOf(input_));

  const orvml::InputView& view = *patched.documents().input;
  EXPECT_EQ(view.nodes().coordinates().data(), input_.nodes().coordinates().data());
  EXPECT_EQ(view.nodes().attributes().at("size").doubles()[4], 9.0);
}

TEST_F(PatchOfAnExchange, OfTenParametersOfALargeDocumentTakesKilobytes) {
  constexpr std::size_t kNodes = 1000000;
  Input large({"m", "1", "c"}, 3);
  large.setNodes(Doubles(3 * kNodes, 0.5));
  Input other = large.clone();
  for (int i = 0; i < 10; ++i) {
    other.setParameter("p" + std::to_string(i), i);
  }

  savePatch(patch_.path(), exchangeOf(large), exchangeOf(other));

  EXPECT_LT(std::filesystem::file_size(patch_.path()), 16384U);
  const Patched patched(patch_.path(), exchangeOf(large));
  EXPECT_EQ(fingerprint(*patched.documents().input), fingerprint(other.view()));
}

TEST_F(PatchOfAnExchange, OfAFewValuesHoldsThoseAlone) {
  constexpr std::size_t kNodes = 100000;
  Input large({"m", "1", "c"}, 3);
  large.setNodes(Doubles(3 * kNodes, 0.5));
  Doubles moved(3 * kNodes, 0.5);
  moved[123456] = 0.75;
  Input other({"m", "1", "c"}, 3);
  other.setNodes(std::move(moved));

  savePatch(patch_.path(), exchangeOf(large), exchangeOf(other));

  EXPECT_LT(std::filesystem::file_size(patch_.path()), 16384U);
  const Patched patched(patch_.path(), exchangeOf(large));
  EXPECT_EQ(patched.documents().input->nodes().coordinates()[123456], 0.75);
}

Code codeOf(const std::filesystem::path& patch, const Exchange& base) {
  try {
    const Patched patched(patch, base);
  } catch (const orvml::Error& error) {
    EXPECT_EQ(error.file(), patch);
    return error.code();
  }
  ADD_FAILURE() << "the patch was applied";
  return Code::fileNotFound;
}

TEST_F(PatchOfAnExchange, IsRefusedOnAnotherBase) {
  Input changed = input_.clone();
  changed.setParameter("size", 9.0);
  savePatch(patch_.path(), exchangeOf(input_), exchangeOf(changed));

  EXPECT_EQ(codeOf(patch_.path(), exchangeOf(changed)), Code::patchWrongBase);
  EXPECT_EQ(codeOf(patch_.path(), {}), Code::patchWrongBase);
  EXPECT_EQ(codeOf(patch_.path(), {.input = input_.view(), .output = output_.view()}),
            Code::patchWrongBase);
}

TEST_F(PatchOfAnExchange, IsNoExchangeFileAndTheOtherWayRound) {
  savePatch(patch_.path(), {}, exchangeOf(input_));
  EXPECT_THROW((void)orvml::load(patch_.path()), orvml::Error);

  const TempFile exchange;
  orvml::save(exchange.path(), input_);
  EXPECT_EQ(codeOf(exchange.path(), {}), Code::noPatch);
  EXPECT_EQ(codeOf("/nowhere", {}), Code::fileNotFound);
}

TEST_F(PatchOfAnExchange, IsNotMadeForWhatNoFileCanHold) {
  orvml::DocumentParts parts;
  parts.dimension = 7;
  const Exchange impossible{.input = orvml::InputView(parts)};

  EXPECT_THROW(savePatch(patch_.path(), {}, impossible), orvml::Error);
  EXPECT_FALSE(std::filesystem::exists(patch_.path()));
}

/// The places of all values that lie in a file.
std::vector<std::size_t> placesOfValues(const char* path) {
  std::vector<std::size_t> places;
  const orvml_io::FileId file(H5Fopen(path, H5F_ACC_RDONLY, H5P_DEFAULT));
  H5Lvisit(
      file.get(), H5_INDEX_NAME, H5_ITER_INC,
      [](hid_t group, const char* name, const H5L_info_t* /*info*/, void* found) -> herr_t {
        const orvml_io::ObjectId object(H5Oopen(group, name, H5P_DEFAULT));
        if (H5Iget_type(object.get()) == H5I_DATASET) {
          const haddr_t offset = H5Dget_offset(object.get());
          for (hsize_t i = 0; i < H5Dget_storage_size(object.get()); ++i) {
            static_cast<std::vector<std::size_t>*>(found)->push_back(offset + i);
          }
        }
        return 0;
      },
      &places);
  return places;
}

std::string bytesOf(const char* path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// Damage is refused: what comes out is held against its fingerprint.
TEST_F(PatchOfAnExchange, IsRefusedWhicheverByteOfItsValuesIsDamaged) {
  Input changed = input_.clone();
  changed.setParameter("size", 9.0);
  changed.setAttribute(Entity::nodes, "new", Ints{1, 2, 3, 4, 5});
  changed.setCells(Entity::edges, {{Shape::line, 2, 1}, {Shape::line, 2, 1}}, Ints{0, 1, 2, 3});
  savePatch(patch_.path(), exchangeOf(input_), exchangeOf(changed));
  const std::string bytes = bytesOf(patch_.path());
  const std::vector<std::size_t> places = placesOfValues(patch_.path());
  const TempFile damaged;
  const OpenIds ids;

  ASSERT_GT(places.size(), 250U);
  for (const std::size_t place : places) {
    std::string copy = bytes;
    copy[place] = static_cast<char>(copy[place] ^ 0x41);
    std::ofstream(damaged.path(), std::ios::binary) << copy;

    EXPECT_EQ(codeOf(damaged.path(), exchangeOf(input_)), Code::patchDamaged) << place;
  }
  EXPECT_EQ(ids.opened(), IdCounts());
}

/// What is done to a sound patch, each of which it has to notice.
struct Damage {
  const char* name;
  void (*make)(hid_t file);

  friend std::ostream& operator<<(std::ostream& stream, const Damage& damage) {
    return stream << damage.name;
  }
};

void replaceVector(hid_t file, const char* path, int length) {
  H5Ldelete(file, path, H5P_DEFAULT);
  const std::vector<int> values(static_cast<std::size_t>(length), 1);
  const hsize_t extent = values.size();
  H5LTmake_dataset_int(file, path, 1, &extent, values.data());
}

class DamagedPatch : public PatchOfAnExchange, public ::testing::WithParamInterface<Damage> {};

TEST_P(DamagedPatch, IsRefused) {
  Input changed = input_.clone();
  changed.setAttribute(Entity::nodes, "size", Doubles{1, 2, 3, 4, 9}, Transmission::mandatory);
  savePatch(patch_.path(), exchangeOf(input_), exchangeOf(changed));
  {
    const orvml_io::FileId file(H5Fopen(patch_.path(), H5F_ACC_RDWR, H5P_DEFAULT));
    GetParam().make(file.get());
  }
  const OpenIds ids;

  EXPECT_EQ(codeOf(patch_.path(), exchangeOf(input_)), Code::patchDamaged);
  EXPECT_EQ(ids.opened(), IdCounts());
}

const Damage kDamages[] = {
    {"NoBase", [](hid_t file) { H5Adelete(file, "INPUT_BASE"); }},
    {"NoResult", [](hid_t file) { H5Adelete(file, "OUTPUT_RESULT"); }},
    {"NoSteps", [](hid_t file) { H5Ldelete(file, "/OrvInput/steps", H5P_DEFAULT); }},
    {"NoGroup", [](hid_t file) { H5Ldelete(file, "/OrvInput", H5P_DEFAULT); }},
    {"DatasetForGroup", [](hid_t file) { replaceVector(file, "/OrvInput", 6); }},
    {"HalfAStep", [](hid_t file) { replaceVector(file, "/OrvInput/steps", 9); }},
    {"NoNames", [](hid_t file) { H5Ldelete(file, "/OrvInput/names", H5P_DEFAULT); }},
    {"MorePlacesThanValues", [](hid_t file) { replaceVector(file, "/OrvInput/places_0", 2); }},
    {"NoValues", [](hid_t file) { H5Ldelete(file, "/OrvInput/values_0", H5P_DEFAULT); }},
    {"ValuesOfAHugeExtent",
     [](hid_t file) {
       H5Ldelete(file, "/OrvInput/values_0", H5P_DEFAULT);
       const hsize_t extent = 2000000000;
       const orvml_io::DataspaceId space(H5Screate_simple(1, &extent, nullptr));
       const orvml_io::DatasetId dataset(H5Dcreate2(file, "/OrvInput/values_0", H5T_NATIVE_DOUBLE,
                                                    space.get(), H5P_DEFAULT, H5P_DEFAULT,
                                                    H5P_DEFAULT));
     }},
};

INSTANTIATE_TEST_SUITE_P(Each, DamagedPatch, ::testing::ValuesIn(kDamages), RowName());

}  // namespace
}  // namespace orvml_io_tests
