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

// Every run makes the stores that it works on, so that the memory around them is the same for each
// contender. What stands in `prepare` is not measured.

/// A run of one call on what was prepared. The call answers whether it worked.
template <class Prepare, class Call>
Run calling(Prepare prepare, Call call) {
  return [=](Measurement& measurement) {
    const auto prepared = prepare();
    measurement.start();
    const bool worked = call(prepared);
    measurement.stop();
    require(worked, "a call on named values");
  };
}

/// A run that makes something of what was prepared; it lives until the measurement has ended.
template <class Prepare, class Make>
Run making(Prepare prepare, Make make) {
  return [=](Measurement& measurement) {
    const auto prepared = prepare();
    measurement.start();
    const auto made = make(prepared);
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
Store filled(const Content& content) {
  Store store;
  fill(store, content);
  return store;
}

template <class Store>
Run setting(const SharedContent& content) {
  return making([=] { return content; },
                [](const SharedContent& prepared) { return filled<Store>(*prepared); });
}

template <class Store>
Run getting(const SharedContent& content) {
  return calling([=] { return filled<Store>(*content); },
                 [=](const Store& store) { return getAll(store, *content); });
}

template <class Store>
Run comparing(const SharedContent& content) {
  return calling(
      [=] { return std::make_pair(filled<Store>(*content), filled<Store>(*content)); },
      [](const std::pair<Store, Store>& stores) { return stores.first.equals(stores.second); });
}

template <class Store>
Run copying(const SharedContent& content) {
  return making([=] { return filled<Store>(*content); },
                [](const Store& store) { return Store(store); });
}

Document cloneOf(void* handle) { return Document(OrvML_IO_NewOrvInputHandle(handle)); }

Run cloning(const SharedContent& content) {
  return making([=] { return filled<DocumentScalars>(*content); },
                [](const DocumentScalars& scalars) { return cloneOf(scalars.handle()); });
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
  Contest contest(cloning(content));
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

MapOfVectors mapOf(const Content& content) {
  MapOfVectors map;
  for (const Vector& vector : content.nodeAttributes) {
    map.set(vector.name.c_str(), vector.doubles.data(), vector.doubles.size());
  }
  return map;
}

SharedContent vectorsOf(const VectorInput& input) {
  return std::make_shared<Content>(nodeAttributes(input.count, input.length));
}

Contest setVectors(const VectorInput& input) {
  const SharedContent content = vectorsOf(input);
  const auto prepare = [=] { return content; };
  Contest contest(making(prepare, [](const SharedContent& from) { return Document(*from); }));
  contest.addGoal("std::map", 1.20,
                  making(prepare, [](const SharedContent& from) { return mapOf(*from); }));
  return contest;
}

Contest cloneVectors(const VectorInput& input) {
  const SharedContent content = vectorsOf(input);
  Contest contest(making([=] { return Document(*content); },
                         [](const Document& document) { return cloneOf(document.handle()); }));
  contest.addGoal("std::map", 1.10,
                  making([=] { return mapOf(*content); },
                         [](const MapOfVectors& map) { return MapOfVectors(map); }));
  return contest;
}

Contest compareVectors(const VectorInput& input) {
  const SharedContent content = vectorsOf(input);
  using Documents = std::pair<Document, Document>;
  using Maps = std::pair<MapOfVectors, MapOfVectors>;
  Contest contest(calling([=] { return Documents(*content, *content); },
                          [](const Documents& both) {
                            return OrvML_IO_OrvInputsAreEqual(both.first.handle(),
                                                              both.second.handle());
                          }));
  contest.addGoal("std::map", 1.0,
                  calling([=] { return Maps(mapOf(*content), mapOf(*content)); },
                          [](const Maps& both) { return both.first.equals(both.second); }));
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
