// The C++ layer as it may be used. Built as it stands this must compile; with the name of one of
// the lines below defined it must not.
#include <orvml/orvml.hpp>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

Doubles makeDoubles() { return Doubles(6); }
Ints makeInts() { return Ints(6); }
orvml::Input makeInput() { return {{"module", "1", "me"}, 3}; }
orvml::Output makeOutput() { return {{"module", "1", "me"}, 3}; }

[[maybe_unused]] void use(const std::string& path) {
  Doubles doubles = makeDoubles();
  Ints ints = makeInts();
  const Doubles fixed = makeDoubles();
  std::string name = "a";
  orvml::Input input = makeInput();
  orvml::Output output = makeOutput();
  orvml::MappedFile mapped(path);

#if defined(NODES_VIEW_OF_A_TEMPORARY)
  const orvml::NodesView nodes(makeDoubles(), 3);
#elif defined(CELL_GROUP_OF_A_TEMPORARY)
  const orvml::CellGroup group(orvml::Shape::triangle, 3, makeInts());
#elif defined(ATTRIBUTE_OF_TEMPORARY_VALUES)
  const orvml::Attribute attribute("a", makeInts());
#elif defined(ATTRIBUTE_OF_A_TEMPORARY_NAME)
  const orvml::Attribute attribute(std::string("a"), ints);
#elif defined(PARAMETER_OF_A_TEMPORARY_NAME)
  const orvml::Parameter parameter(std::string("a"), 1.0);
#elif defined(VIEW_OF_A_TEMPORARY_INPUT)
  const orvml::InputView view = makeInput().view();
#elif defined(VIEW_OF_A_TEMPORARY_OUTPUT)
  const orvml::OutputView view = makeOutput().view();
#elif defined(PART_OF_A_TEMPORARY_INPUT)
  const orvml::NodesView nodes = makeInput().nodes();
#elif defined(IDENTIFICATION_OF_A_TEMPORARY_INPUT)
  const orvml::Identification who = makeInput().identification();
#elif defined(VIEW_OF_A_TEMPORARY_MAPPED_FILE)
  const orvml::InputView view = orvml::MappedFile(path).input();
#elif defined(FINDINGS_OF_A_TEMPORARY_MAPPED_FILE)
  const auto findings = orvml::MappedFile(path).findings();
#elif defined(COPY_OF_AN_INPUT)
  const orvml::Input copy(input);
#elif defined(COPY_OF_AN_OUTPUT)
  const orvml::Output copy(output);
#elif defined(COPY_OF_A_MAPPED_FILE)
  const orvml::MappedFile copy(mapped);
#elif defined(ASSIGNED_INPUT)
  input = std::as_const(input);
#elif defined(OUTPUT_AS_AN_INPUT)
  input = makeOutput();
#elif defined(OUTPUT_VIEW_AS_AN_INPUT_VIEW)
  const orvml::InputView view = output.view();
#elif defined(SAVE_OF_AN_OUTPUT_IN_AN_INPUTS_PLACE)
  orvml::save(path, output.view(), input.view());
#elif defined(DOCUMENT_OF_NO_KIND)
  const orvml::Document document(makeInput());
#elif defined(NODES_THAT_ARE_NOT_HANDED_OVER)
  input.setNodes(doubles);
#elif defined(NODES_THAT_CANNOT_BE_HANDED_OVER)
  input.setNodes(std::move(fixed));
#elif defined(NODES_OF_BORROWED_VALUES)
  input.setNodes(std::span<const double>(doubles));
#elif defined(NODES_OF_INTS)
  input.setNodes(makeInts());
#elif defined(NODES_OF_FLOATS)
  input.setNodes(std::vector<float>(3));
#elif defined(CELLS_THAT_ARE_NOT_HANDED_OVER)
  input.setCells(orvml::Entity::faces, orvml::Shape::triangle, 3, ints);
#elif defined(CELLS_OF_DOUBLES)
  input.setCells(orvml::Entity::faces, orvml::Shape::triangle, 3, makeDoubles());
#elif defined(ATTRIBUTE_THAT_IS_NOT_HANDED_OVER)
  input.setAttribute(orvml::Entity::nodes, name, ints);
#elif defined(ATTRIBUTE_OF_FLOATS)
  input.setAttribute(orvml::Entity::nodes, name, std::vector<float>(3));
#elif defined(VECTOR_PARAMETER_THAT_IS_NOT_HANDED_OVER)
  input.setVectorParameter(name, doubles);
#elif defined(HANDLE_OF_A_TEMPORARY)
  void* lent = orvml::handle(makeInput());
#elif defined(RELEASE_OF_WHAT_IS_NOT_HANDED_OVER)
  void* released = orvml::release(input);
#elif defined(ADOPTION_OF_A_TEMPORARY_HANDLE)
  const orvml::Input adopted = orvml::adoptInput(static_cast<void*>(nullptr));
#elif defined(UNUSED_LOAD)
  orvml::load(path);
#else
  const orvml::NodesView nodes(doubles, 3);
  const orvml::NodesView sameNodes(std::span<const double>(fixed), 3);
  const orvml::CellGroup group(orvml::Shape::triangle, 3, ints);
  const orvml::Attribute attribute(name, ints);
  const orvml::Attribute literal("a", doubles, true);
  const orvml::Parameter parameter(name, 1.0);
  const orvml::InputView view = input.view();
  const orvml::OutputView mappedView = mapped.output();
  input.setNodes(std::move(doubles));
  input.setNodes(makeDoubles());
  input.setNodes(std::array<double, 3>());
  input.setCells(orvml::Entity::faces, orvml::Shape::triangle, 3, std::move(ints));
  input.setCells(orvml::Entity::faces, {{orvml::Shape::triangle, 3, 2}}, makeInts());
  input.setAttribute(orvml::Entity::nodes, name, Ints(1), orvml::Transmission::mandatory);
  input.setVectorParameter(std::string("temporary"), makeDoubles());
  input = makeInput();
  const orvml::Input copy = input.clone();
  const orvml::MappedFile moved = std::move(mapped);
  orvml::save(path, input, output);
  orvml::save(path, input.view(), mappedView);
  void* lent = orvml::handle(output);
  void* released = orvml::release(std::move(input));
  const orvml::Input adopted = orvml::adoptInput(released);
  (void)lent;
#endif
}

}  // namespace
