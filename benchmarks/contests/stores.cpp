// Named values in memory: setting, getting, cloning and comparing them.
#include "contests/contests.h"
#include "inputs/document.h"
#include "orvml_io.h"
#include "references/plain_stores.h"

#include <memory>

namespace orvml_io_bench {

namespace {

constexpr int kScalars = 100000;
constexpr char kScalarInput[] = "100,000 scalars";

using SharedContent = std::shared_ptr<Content>;

/// A run of one call that answers whether it worked.
template <class Call>
Run timed(Call call) {
  return [call](Measurement& measurement) {
    measurement.start();
    const bool worked = call();
    measurement.stop();
    require(worked, "a call on named values");
  };
}

/// A run that makes something, which lives until the measurement has ended.
template <class Make>
Run making(Make make) {
  return [make](Measurement& measurement) {
    measurement.start();
    const auto made = make();
    measurement.stop();
  };
}

template <class Store>
void fill(Store& store, const Content& content) {
  for (const auto& [name, value] : content.scalars) {
    store.set(name.c_str(), value);
  }
}

template <class Store>
bool getAll(const Store& store, const Content& content) {
  bool areFound = true;
  for (const auto& [name, expected] : content.scalars) {
    double value = 0;
    areFound = areFound && store.get(name.c_str(), value) && value == expected;
  }
  return areFound;
}

/// The scalar parameters of a document, with the interface of the plain stores.
class DocumentScalars {
 public:
  DocumentScalars() : document_(OrvML_IO_NewOrvInputHandle()) {}
  void set(const char* name, double value) {
    (void)OrvML_IO_SetParameter(document_.handle(), name, value);
  }
  [[nodiscard]] bool get(const char* name, double& value) const {
    return OrvML_IO_GetParameter(document_.handle(), name, value) == 0;
  }
  [[nodiscard]] bool equals(const DocumentScalars& other) const {
    return OrvML_IO_OrvInputsAreEqual(document_.handle(), other.document_.handle());
  }
  [[nodiscard]] void* handle() const { return document_.handle(); }

 private:
  Document document_;
};

template <class Store>
std::shared_ptr<Store> filled(const Content& content) {
  auto store = std::make_shared<Store>();
  fill(*store, content);
  return store;
}

template <class Store>
Run setting(const SharedContent& content) {
  return making([=] { return filled<Store>(*content); });
}

template <class Store>
Run getting(const SharedContent& content) {
  const auto store = filled<Store>(*content);
  return timed([=] { return getAll(*store, *content); });
}

template <class Store>
Run comparing(const SharedContent& content) {
  const auto one = filled<Store>(*content);
  const auto other = filled<Store>(*content);
  return timed([=] { return one->equals(*other); });
}

template <class Store>
Run copying(const SharedContent& content) {
  const auto store = filled<Store>(*content);
  return making([=] { return Store(*store); });
}

Run cloning(const std::shared_ptr<DocumentScalars>& scalars) {
  return making([=] { return Document(OrvML_IO_NewOrvInputHandle(scalars->handle())); });
}

SharedContent scalars() { return std::make_shared<Content>(scalarParameters(kScalars)); }

Contest setScalars() {
  const SharedContent content = scalars();
  Contest contest(setting<DocumentScalars>(content));
  contest.addGoal("std::map", 1.15, setting<MapOfScalars>(content));
  contest.add("flat store", setting<FlatScalars>(content));
  return contest;
}

Contest getScalars() {
  const SharedContent content = scalars();
  Contest contest(getting<DocumentScalars>(content));
  contest.addGoal("std::map", 1.15, getting<MapOfScalars>(content));
  contest.add("flat store", getting<FlatScalars>(content));
  return contest;
}

Contest cloneScalars() {
  const SharedContent content = scalars();
  Contest contest(cloning(filled<DocumentScalars>(*content)));
  contest.addGoal("std::map", 1.10, copying<MapOfScalars>(content));
  contest.add("flat store", copying<FlatScalars>(content));
  return contest;
}

Contest compareScalars() {
  const SharedContent content = scalars();
  Contest contest(comparing<DocumentScalars>(content));
  contest.addGoal("std::map", 1.0, comparing<MapOfScalars>(content));
  contest.add("flat store", comparing<FlatScalars>(content));
  return contest;
}

/// Attribute vectors on the nodes of a document or in a map.
struct VectorInput {
  const char* name;
  int count;
  int length;
};
constexpr VectorInput kVectorInputs[] = {{"10,000 vectors of 3", 10000, 3},
                                         {"1,000 attributes of 1,000", 1000, 1000}};

std::shared_ptr<MapOfVectors> mapOf(const Content& content) {
  auto map = std::make_shared<MapOfVectors>();
  for (const Vector& vector : content.nodeAttributes) {
    map->set(vector.name.c_str(), vector.doubles.data(), vector.doubles.size());
  }
  return map;
}

SharedContent vectorsOf(const VectorInput& input) {
  return std::make_shared<Content>(nodeAttributes(input.count, input.length));
}

Contest setVectors(const VectorInput& input) {
  const SharedContent content = vectorsOf(input);
  Contest contest(making([=] { return Document(*content); }));
  contest.addGoal("std::map", 1.20, making([=] { return mapOf(*content); }));
  return contest;
}

Contest cloneVectors(const VectorInput& input) {
  const SharedContent content = vectorsOf(input);
  const auto document = std::make_shared<Document>(*content);
  const auto map = mapOf(*content);
  Contest contest(making([=] { return Document(OrvML_IO_NewOrvInputHandle(document->handle())); }));
  contest.addGoal("std::map", 1.10, making([=] { return MapOfVectors(*map); }));
  return contest;
}

Contest compareVectors(const VectorInput& input) {
  const SharedContent content = vectorsOf(input);
  const auto one = std::make_shared<Document>(*content);
  const auto other = std::make_shared<Document>(*content);
  const auto map = mapOf(*content);
  const auto otherMap = mapOf(*content);
  Contest contest(
      timed([=] { return OrvML_IO_OrvInputsAreEqual(one->handle(), other->handle()); }));
  contest.addGoal("std::map", 1.0, timed([=] { return map->equals(*otherMap); }));
  return contest;
}

}  // namespace

void registerStores(const Options& options) {
  registerContest("set", kScalarInput, options, setScalars);
  registerContest("get", kScalarInput, options, getScalars);
  registerContest("clone", kScalarInput, options, cloneScalars);
  registerContest("equality", kScalarInput, options, compareScalars);
  for (const VectorInput& input : kVectorInputs) {
    registerContest("set", input.name, options, [=] { return setVectors(input); });
    registerContest("clone", input.name, options, [=] { return cloneVectors(input); });
    registerContest("equality", input.name, options, [=] { return compareVectors(input); });
  }
}

}  // namespace orvml_io_bench
