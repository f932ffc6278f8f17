#pragma once

#include <orvml/export.hpp>
#include <orvml/view.hpp>

#include <concepts>
#include <memory>
#include <ranges>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvml_io {
class OrvInputAndOrvOutput;
}

namespace orvml {

class Document;
class Input;
class Output;

namespace detail {
struct DocumentContent;
struct DocumentAccess;
}  // namespace detail

/// A container that owns contiguous values of a type, and that is handed over.
template <class Container, class Value>
concept HandedOver =
    !std::is_reference_v<Container> && !std::is_const_v<Container> &&
    std::ranges::contiguous_range<const Container> && std::ranges::sized_range<const Container> &&
    !std::ranges::borrowed_range<Container> &&
    std::same_as<std::ranges::range_value_t<Container>, Value>;

template <class Container>
concept HandedOverNumbers = HandedOver<Container, int> || HandedOver<Container, double>;

/// The size of a group of cells whose node indices come in one container for all groups.
struct GroupSize {
  Shape shape = Shape::none;
  int nodesPerCell = 0;
  int cells = 0;
};

/// Whether the meshing module has to send an attribute back.
enum class Transmission { optional, mandatory };

/// An exchange document that can be built and changed. It owns all it holds: containers are handed
/// over with std::move, are not copied, and live as long as the document holds what was in them. A
/// change makes the views of what changed invalid. Documents are moved, and copied by clone()
/// alone.
///
/// It is either an Input or an Output. A document that was moved from holds nothing and may only be
/// assigned to or destroyed.
class ORVML_EXPORT Document {
 public:
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  /// Makes empty documents, as the constructors of Input and Output do.
  [[nodiscard]] static Input input(const Identification& identification, int dimension);
  [[nodiscard]] static Output output(const Identification& identification, int dimension);

  [[nodiscard]] Kind kind() const noexcept;

  /// Valid until the identification is set again.
  [[nodiscard]] Identification identification() const& noexcept;
  Identification identification() const&& = delete;
  /// Throws Code::textTooLong for a text of more than 79 bytes.
  void setIdentification(const Identification& identification);

  /// Coordinates per node.
  [[nodiscard]] int dimension() const noexcept;

  // Views of the parts, each made anew with every call.
  [[nodiscard]] NodesView nodes() const&;
  [[nodiscard]] CellsView edges() const& { return cells(Entity::edges); }
  [[nodiscard]] CellsView faces() const& { return cells(Entity::faces); }
  [[nodiscard]] CellsView elements() const& { return cells(Entity::elements); }
  [[nodiscard]] CellsView cells(Entity entity) const&;
  [[nodiscard]] Attributes attributes(Entity entity) const&;
  [[nodiscard]] Parameters parameters() const&;
  [[nodiscard]] Attributes vectorParameters() const&;
  NodesView nodes() const&& = delete;
  CellsView edges() const&& = delete;
  CellsView faces() const&& = delete;
  CellsView elements() const&& = delete;
  CellsView cells(Entity entity) const&& = delete;
  Attributes attributes(Entity entity) const&& = delete;
  Parameters parameters() const&& = delete;
  Attributes vectorParameters() const&& = delete;

  /// Sets the nodes. Their attributes stay when their number does, and go otherwise.
  ///
  /// @param coordinates  `[nodes x dimension]`, row-major
  template <class Container>
  requires HandedOver<Container, double>
  void setNodes(Container&& coordinates) {
    auto kept = keep(std::forward<Container>(coordinates));
    setNodes(std::span<const double>(std::ranges::data(*kept), std::ranges::size(*kept)), kept);
  }

  /// Sets the edges, faces or volume elements: cells of one shape. Attributes stay as for nodes.
  ///
  /// @param nodeIndices  `[cells x nodesPerCell]`, 0-based, cell after cell
  template <class Container>
  requires HandedOver<Container, int>
  void setCells(Entity entity, Shape shape, int nodesPerCell, Container&& nodeIndices) {
    auto kept = keep(std::forward<Container>(nodeIndices));
    const std::span<const int> values(std::ranges::data(*kept), std::ranges::size(*kept));
    setCells(entity, oneGroup(shape, nodesPerCell, values.size()), values, kept);
  }

  /// Sets cells of several groups.
  ///
  /// @param nodeIndices  those of all groups, one group after the other
  template <class Container>
  requires HandedOver<Container, int>
  void setCells(Entity entity, const std::vector<GroupSize>& groups, Container&& nodeIndices) {
    auto kept = keep(std::forward<Container>(nodeIndices));
    setCells(entity, groups,
             std::span<const int>(std::ranges::data(*kept), std::ranges::size(*kept)), kept);
  }

  /// Removes the nodes, or the cells of one kind, with their attributes.
  void remove(Entity entity);

  /// Sets a number. Names have 1 to 79 bytes, no "/" and no null byte, and are not "." alone; other
  /// ones throw Code::nameTooLong or Code::nameNotAllowed.
  void setParameter(std::string_view name, double value);
  /// Returns whether there was one.
  bool removeParameter(std::string_view name);

  /// Sets a vector parameter, of a name as above.
  template <class Container>
  requires HandedOverNumbers<Container>
  void setVectorParameter(std::string_view name, Container&& values) {
    auto kept = keep(std::forward<Container>(values));
    setVectorParameter(Attribute(name, viewOf(*kept)), kept);
  }
  bool removeVectorParameter(std::string_view name);

  /// Sets an attribute: one value per node or cell, of a name as above.
  ///
  /// Throws Code::sizesDisagree when there are not as many values as nodes or cells.
  template <class Container>
  requires HandedOverNumbers<Container>
  void setAttribute(Entity entity, std::string_view name, Container&& values,
                    Transmission transmission = Transmission::optional) {
    auto kept = keep(std::forward<Container>(values));
    setAttribute(entity, Attribute(name, viewOf(*kept), transmission == Transmission::mandatory),
                 kept);
  }
  bool removeAttribute(Entity entity, std::string_view name);

 protected:
  explicit Document(std::unique_ptr<orvml_io::OrvInputAndOrvOutput> document);
  Document(Document&& other) noexcept;
  Document& operator=(Document&& other) noexcept;
  ~Document();

  [[nodiscard]] DocumentParts parts() const;
  [[nodiscard]] orvml_io::OrvInputAndOrvOutput& core() const noexcept;

 private:
  friend detail::DocumentAccess;
  using Keeper = std::shared_ptr<const void>;

  template <class Container>
  static std::shared_ptr<const std::remove_cvref_t<Container>> keep(Container&& container) {
    return std::make_shared<const std::remove_cvref_t<Container>>(
        std::forward<Container>(container));
  }
  template <class Container>
  static auto viewOf(const Container& container) noexcept {
    using Value = std::ranges::range_value_t<Container>;
    return std::span<const Value>(std::ranges::data(container), std::ranges::size(container));
  }
  static std::vector<GroupSize> oneGroup(Shape shape, int nodesPerCell, std::size_t indices);

  void setNodes(std::span<const double> coordinates, Keeper keeper);
  void setCells(Entity entity, const std::vector<GroupSize>& groups,
                std::span<const int> nodeIndices, Keeper keeper);
  void setVectorParameter(const Attribute& vector, Keeper keeper);
  void setAttribute(Entity entity, const Attribute& attribute, Keeper keeper);

  std::unique_ptr<detail::DocumentContent> content_;
};

/// The document that a pre-processor sends to a meshing module.
class ORVML_EXPORT Input : public Document {
 public:
  /// Makes an empty document; throws Code::wrongDimension for any other dimension than 2 or 3.
  Input(const Identification& identification, int dimension);
  Input(Input&&) noexcept = default;
  Input& operator=(Input&&) noexcept = default;
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  ~Input() = default;

  [[nodiscard]] InputView view() const& { return InputView(parts()); }
  InputView view() const&& = delete;

  /// Returns a copy that shares nothing with this document.
  [[nodiscard]] Input clone() const;

 private:
  friend detail::DocumentAccess;
  using Document::Document;
};

/// The document that a meshing module sends back.
class ORVML_EXPORT Output : public Document {
 public:
  /// Makes an empty document, as for inputs.
  Output(const Identification& identification, int dimension);
  Output(Output&&) noexcept = default;
  Output& operator=(Output&&) noexcept = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output() = default;

  [[nodiscard]] OutputView view() const& { return OutputView(parts()); }
  OutputView view() const&& = delete;

  [[nodiscard]] Output clone() const;

 private:
  friend detail::DocumentAccess;
  using Document::Document;
};

}  // namespace orvml
