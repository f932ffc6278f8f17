#pragma once

#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/shape.hpp>

#include <concepts>
#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

/// Views say what a document holds, wherever it lies: in a document, in mapped pages of a file, in
/// arrays of the caller. They are cheap to copy, change nothing, and are valid as long as the owner
/// of what they show, and until that changes.
namespace orvml {

/// Which of the two documents of an exchange.
enum class Kind { input, output };

/// Which part of a mesh.
enum class Entity { nodes, edges, faces, elements };

/// A container that owns its values and is about to lose them: no view may be made of it.
template <class Container>
concept Expiring =
    !std::is_lvalue_reference_v<Container> &&
    !std::ranges::borrowed_range<std::remove_cvref_t<Container>> && std::ranges::range<Container>;

/// A named vector of ints or doubles: an attribute with one value per node or cell, or a vector
/// parameter.
struct ORVML_EXPORT Attribute {
  using Values = std::variant<std::span<const int>, std::span<const double>>;

  std::string_view name;
  Values values;
  bool mustBeTransmitted = false;  ///< whether the meshing module has to send it back

  Attribute() = default;
  Attribute(std::string_view newName, std::span<const int> ints, bool transmitted = false) noexcept
      : name(newName), values(ints), mustBeTransmitted(transmitted) {}
  Attribute(std::string_view newName, std::span<const double> doubles,
            bool transmitted = false) noexcept
      : name(newName), values(doubles), mustBeTransmitted(transmitted) {}
  template <Expiring Container>
  Attribute(std::string_view, Container&&, bool = false) = delete;
  template <class Text, class Container>
  requires std::same_as<Text, std::string> Attribute(Text&&, Container&&, bool = false)
  = delete;

  [[nodiscard]] bool holdsInts() const noexcept { return values.index() == 0; }
  [[nodiscard]] std::size_t size() const noexcept;

  /// The values; throws Code::wrongValueType when they are of the other type.
  [[nodiscard]] std::span<const int> ints() const;
  [[nodiscard]] std::span<const double> doubles() const;
};

/// Named vectors in ascending byte-wise order of their names.
class ORVML_EXPORT Attributes {
 public:
  using const_iterator = std::vector<Attribute>::const_iterator;

  Attributes() = default;
  /// Takes vectors in any order; throws Code::nameTwice when two have one name.
  explicit Attributes(std::vector<Attribute> attributes);

  [[nodiscard]] const_iterator begin() const noexcept { return list().begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return list().end(); }
  [[nodiscard]] std::size_t size() const noexcept { return list().size(); }
  [[nodiscard]] bool empty() const noexcept { return list().empty(); }

  /// Returns the vector of a name, valid as long as any copy of this view; null when there is none.
  [[nodiscard]] const Attribute* find(std::string_view name) const noexcept;
  /// Returns the vector of a name; throws Code::nameNotFound when there is none.
  [[nodiscard]] const Attribute& at(std::string_view name) const;

 private:
  [[nodiscard]] const std::vector<Attribute>& list() const noexcept;
  std::shared_ptr<const std::vector<Attribute>> list_;
};

/// A named number.
struct Parameter {
  std::string_view name;
  double value = 0.0;

  Parameter() = default;
  Parameter(std::string_view newName, double newValue) noexcept : name(newName), value(newValue) {}
  template <class Text>
  requires std::same_as<Text, std::string> Parameter(Text&&, double)
  = delete;
};

/// Named numbers in ascending byte-wise order of their names.
class ORVML_EXPORT Parameters {
 public:
  using const_iterator = std::vector<Parameter>::const_iterator;

  Parameters() = default;
  /// Takes numbers in any order; throws Code::nameTwice when two have one name.
  explicit Parameters(std::vector<Parameter> parameters);

  [[nodiscard]] const_iterator begin() const noexcept { return list().begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return list().end(); }
  [[nodiscard]] std::size_t size() const noexcept { return list().size(); }
  [[nodiscard]] bool empty() const noexcept { return list().empty(); }

  [[nodiscard]] std::optional<double> find(std::string_view name) const noexcept;
  /// Returns the number of a name; throws Code::nameNotFound when there is none.
  [[nodiscard]] double at(std::string_view name) const;

 private:
  [[nodiscard]] const std::vector<Parameter>& list() const noexcept;
  std::shared_ptr<const std::vector<Parameter>> list_;
};

/// The nodes of a mesh.
class ORVML_EXPORT NodesView {
 public:
  NodesView() = default;
  /// @param coordinates  `[size x dimension]`, row-major, in the unit of the caller; throws
  ///                     Code::sizesDisagree when that does not come out even
  NodesView(std::span<const double> coordinates, int dimension, Attributes attributes = {});
  template <Expiring Container>
  NodesView(Container&&, int, Attributes = {}) = delete;

  /// Nodes whose coordinates are not known: a tolerant reader may give them.
  [[nodiscard]] static NodesView withoutCoordinates(int size, int dimension);

  [[nodiscard]] int size() const noexcept { return size_; }
  [[nodiscard]] int dimension() const noexcept { return dimension_; }

  /// `[size x dimension]`, row-major; empty where a tolerant reader could not read them.
  [[nodiscard]] std::span<const double> coordinates() const noexcept { return coordinates_; }

  /// The coordinates of one node; throws std::out_of_range where there is none.
  [[nodiscard]] std::span<const double> operator[](int node) const {
    const auto width = static_cast<std::size_t>(dimension_);
    const auto begin = static_cast<std::size_t>(node) * width;
    if (node < 0 || node >= size_ || begin + width > coordinates_.size()) {
      throwOutOfRange();
    }
    return coordinates_.subspan(begin, width);
  }

  [[nodiscard]] const Attributes& attributes() const noexcept { return attributes_; }

  /// The same nodes with other attributes.
  [[nodiscard]] NodesView withAttributes(Attributes attributes) const;

  /// The nodes from `first` to before `last` with their part of the attributes; throws
  /// std::out_of_range when there are not that many.
  [[nodiscard]] NodesView range(int first, int last) const;

 private:
  [[noreturn]] static void throwOutOfRange();

  std::span<const double> coordinates_;
  int size_ = 0;
  int dimension_ = 0;
  Attributes attributes_;
};

class CellRange;

/// Consecutive cells of one shape and one number of nodes.
class ORVML_EXPORT CellGroup {
 public:
  CellGroup() = default;
  /// @param nodeIndices  `[size x nodesPerCell]`, 0-based, cell after cell; throws
  ///                     Code::sizesDisagree when that does not come out even
  CellGroup(Shape shape, int nodesPerCell, std::span<const int> nodeIndices);
  template <Expiring Container>
  CellGroup(Shape, int, Container&&) = delete;

  /// Cells without nodes, which only their number tells.
  [[nodiscard]] static CellGroup withoutNodes(Shape shape, int size);

  [[nodiscard]] Shape shape() const noexcept { return shape_; }
  [[nodiscard]] int nodesPerCell() const noexcept { return nodesPerCell_; }
  [[nodiscard]] int size() const noexcept { return size_; }

  /// `[size x nodesPerCell]`, 0-based, cell after cell.
  [[nodiscard]] std::span<const int> nodeIndices() const noexcept { return nodeIndices_; }

  /// The node indices of one cell; throws std::out_of_range where there is none.
  [[nodiscard]] std::span<const int> operator[](int cell) const {
    const auto width = static_cast<std::size_t>(nodesPerCell_);
    if (cell < 0 || cell >= size_) {
      throwOutOfRange();
    }
    return nodeIndices_.subspan(static_cast<std::size_t>(cell) * width, width);
  }

  /// All cells, as a range of their node indices.
  [[nodiscard]] CellRange cells() const;

 private:
  [[noreturn]] static void throwOutOfRange();

  Shape shape_ = Shape::none;
  int nodesPerCell_ = 0;
  int size_ = 0;
  std::span<const int> nodeIndices_;
};

/// The cells of a group one by one, each as its node indices. It needs no group that stays, and is
/// written out because older compilers do not take the adaptors of the standard library.
class CellRange {
 public:
  class Iterator {
   public:
    using iterator_concept = std::forward_iterator_tag;
    using iterator_category = std::input_iterator_tag;
    using value_type = std::span<const int>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = value_type;

    Iterator() = default;
    Iterator(const CellGroup& group, int cell) : group_(group), cell_(cell) {}
    [[nodiscard]] reference operator*() const { return group_[cell_]; }
    Iterator& operator++() {
      ++cell_;
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++cell_;
      return before;
    }
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.cell_ == b.cell_; }

   private:
    CellGroup group_;
    int cell_ = 0;
  };

  explicit CellRange(const CellGroup& group) : group_(group) {}
  [[nodiscard]] Iterator begin() const { return {group_, 0}; }
  [[nodiscard]] Iterator end() const { return {group_, group_.size()}; }
  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(group_.size()); }
  [[nodiscard]] std::span<const int> operator[](std::size_t cell) const {
    return group_[static_cast<int>(cell)];
  }

 private:
  CellGroup group_;
};

inline CellRange CellGroup::cells() const { return CellRange(*this); }

/// The edges, the faces or the volume elements of a mesh.
class ORVML_EXPORT CellsView {
 public:
  CellsView() = default;
  /// Throws Code::tooManyValues when the cells, or their node indices, are more than 32 bits count.
  explicit CellsView(std::vector<CellGroup> groups, Attributes attributes = {});

  [[nodiscard]] int size() const noexcept { return size_; }
  [[nodiscard]] std::span<const CellGroup> groups() const noexcept;
  [[nodiscard]] const Attributes& attributes() const noexcept { return attributes_; }

  /// The same cells with other attributes.
  [[nodiscard]] CellsView withAttributes(Attributes attributes) const;

 private:
  std::shared_ptr<const std::vector<CellGroup>> groups_;
  int size_ = 0;
  Attributes attributes_;
};

/// Who made a document for whom.
struct Identification {
  std::string_view moduleName;           ///< the meshing module that it is meant for
  std::string_view moduleFormatVersion;  ///< the version of the module's parameters
  std::string_view creator;              ///< the program that made it
};

/// What a view of a document is made from.
struct DocumentParts {
  Identification identification;
  int dimension = 0;  ///< coordinates per node, 2 or 3
  NodesView nodes;
  CellsView edges;
  CellsView faces;
  CellsView elements;
  Parameters parameters;
  Attributes vectorParameters;  ///< without flags: those have no meaning here
};

/// A whole document.
class ORVML_EXPORT DocumentView {
 public:
  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  [[nodiscard]] const Identification& identification() const noexcept {
    return parts_->identification;
  }
  [[nodiscard]] int dimension() const noexcept { return parts_->dimension; }
  [[nodiscard]] const NodesView& nodes() const noexcept { return parts_->nodes; }
  [[nodiscard]] const CellsView& edges() const noexcept { return parts_->edges; }
  [[nodiscard]] const CellsView& faces() const noexcept { return parts_->faces; }
  [[nodiscard]] const CellsView& elements() const noexcept { return parts_->elements; }
  /// The cells of one kind; no cells for the nodes.
  [[nodiscard]] const CellsView& cells(Entity entity) const noexcept;
  /// The attributes of one kind of entity.
  [[nodiscard]] const Attributes& attributes(Entity entity) const noexcept;
  [[nodiscard]] const Parameters& parameters() const noexcept { return parts_->parameters; }
  [[nodiscard]] const Attributes& vectorParameters() const noexcept {
    return parts_->vectorParameters;
  }

 protected:
  DocumentView(Kind kind, DocumentParts parts);

 private:
  Kind kind_;
  std::shared_ptr<const DocumentParts> parts_;
};

/// The document that a pre-processor sends to a meshing module.
class ORVML_EXPORT InputView : public DocumentView {
 public:
  explicit InputView(DocumentParts parts) : DocumentView(Kind::input, std::move(parts)) {}
};

/// The document that a meshing module sends back.
class ORVML_EXPORT OutputView : public DocumentView {
 public:
  explicit OutputView(DocumentParts parts) : DocumentView(Kind::output, std::move(parts)) {}
};

/// A view of the same document with an attribute of its nodes, or of its cells of one kind, in the
/// place of the one of that name or beside the others. It borrows from both. The values should be
/// as many as the nodes or cells are; check() finds an attribute of another size, this does not.
[[nodiscard]] ORVML_EXPORT DocumentView withAttribute(const DocumentView& document, Entity entity,
                                                      const Attribute& attribute);

}  // namespace orvml
