#include <orvml/parallel/load.hpp>

#include "agreement.h"
#include "array_parts.h"
#include "bytes.h"
#include "file_checks.h"
#include "opened_file.h"
#include "outline_reader.h"
#include "slice_content.h"

#include <sys/stat.h>

#include <memory>
#include <utility>

namespace orvml::parallel {

namespace {

using detail::ArrayPart;
using detail::Communicator;
using detail::DocumentOutline;
using detail::Range;
using detail::SharedFile;
using detail::SliceContent;
using detail::Values;
using orvml::detail::OpenedFile;

/// The file as the first rank has it open beside HDF5, and what it says of it.
class DescribedFile {
 public:
  DescribedFile(const std::filesystem::path& path, std::optional<Kind> wanted) : path_(path) {
    OpenedFile file(path);
    // From here on nobody begins to write it in place, also while HDF5 has it closed in between.
    if (orvml::detail::isHeldForWriting(file.descriptor())) {
      orvml::detail::throwHeldForWriting(path, {});
    }
    for (const Kind kind : {Kind::input, Kind::output}) {
      if (wanted.value_or(kind) == kind && file.holds(kind)) {
        outlines_.push_back(detail::readOutline(file, kind));
      }
    }
    if (outlines_.empty() && wanted) {
      orvml::detail::throwMissing(*wanted, path);
    }
    if (outlines_.empty()) {
      throw Error(Code::noDocument, "holds no document", {path, {}, {}});
    }
    descriptor_ = file.takeDescriptor();
  }

  [[nodiscard]] const std::vector<DocumentOutline>& outlines() const noexcept { return outlines_; }

  /// Throws when the path leads to another file by now: the ranks may have opened that one.
  void requireStillThere() const {
    struct stat here = {};
    struct stat there = {};
    if (::fstat(descriptor_.get(), &here) != 0 || ::stat(path_.c_str(), &there) != 0 ||
        here.st_dev != there.st_dev || here.st_ino != there.st_ino) {
      throw Error(Code::fileHeldForWriting, "was replaced while it was being read",
                  {path_, {}, {}});
    }
  }

 private:
  std::filesystem::path path_;
  std::vector<DocumentOutline> outlines_;
  orvml_io::Descriptor descriptor_;
};

std::vector<char> packed(const std::vector<DocumentOutline>& outlines) {
  detail::ByteWriter writer;
  writer.add(outlines.size());
  for (const DocumentOutline& outline : outlines) {
    outline.pack(writer);
  }
  return writer.take();
}

std::vector<DocumentOutline> unpacked(const std::vector<char>& bytes) {
  detail::ByteReader reader(bytes);
  std::vector<DocumentOutline> outlines;
  const auto count = reader.number<std::size_t>();
  for (std::size_t i = 0; i < count; ++i) {
    outlines.push_back(DocumentOutline::unpacked(reader));
  }
  return outlines;
}

/// Has the first rank describe the file, and tells all of them.
std::vector<DocumentOutline> outlinesOfAll(const Communicator& comm,
                                           const std::filesystem::path& path,
                                           std::optional<Kind> wanted,
                                           std::optional<DescribedFile>& described) {
  std::vector<char> bytes;
  together(comm, [&] {
    if (comm.isFirst()) {
      described.emplace(path, wanted);
      bytes = packed(described->outlines());
    }
  });
  comm.broadcast(bytes);
  std::vector<DocumentOutline> outlines;
  together(comm, [&] { outlines = unpacked(bytes); });
  return outlines;
}

std::vector<Range> rangesOf(const SliceContent& slice, Entity entity, bool areIndices) {
  return detail::rangesOfGroups(slice.parts.outline().of(entity).groups,
                                slice.groups[static_cast<std::size_t>(entity)], areIndices);
}

/// Which values of a vector a slice has: those of its nodes or cells, or a block of its own where
/// the numbers differ.
std::vector<Range> rangesOf(const SliceContent& slice, Entity entity,
                            const detail::VectorOutline& vector, const Communicator& comm) {
  if (vector.size != slice.parts.outline().of(entity).size) {
    return {detail::blockOf(vector.size, comm.rank(), comm.size())};
  }
  return entity == Entity::nodes ? std::vector<Range>{slice.nodes} : rangesOf(slice, entity, false);
}

/// Makes the memory of an array and adds it to what is to be read.
template <class Vector>
void addPart(const std::string& object, std::vector<Range> ranges, Vector& values,
             std::vector<ArrayPart<void*>>& parts) {
  values.resize(static_cast<std::size_t>(detail::countOf(ranges)));
  if (!object.empty()) {
    constexpr bool kAreInts = std::is_same_v<Vector, std::vector<int>>;
    parts.push_back({object, kAreInts, std::move(ranges), values.data()});
  }
}

void addAttributes(SliceContent& slice, Entity entity, const Communicator& comm,
                   std::vector<ArrayPart<void*>>& parts) {
  const auto& outlines = slice.parts.outline().of(entity).attributes;
  for (std::size_t i = 0; i < outlines.size(); ++i) {
    std::visit(
        [&](auto& values) {
          addPart(outlines[i].object, rangesOf(slice, entity, outlines[i], comm), values, parts);
        },
        slice.parts.of(entity).attributes[i]);
  }
}

/// Makes the memory of a slice; what it is to be filled with.
std::vector<ArrayPart<void*>> makeRoom(SliceContent& slice, const Communicator& comm) {
  std::vector<ArrayPart<void*>> parts;
  const DocumentOutline& outline = slice.parts.outline();
  const std::int64_t width = outline.dimension;
  addPart(outline.of(Entity::nodes).object,
          {{slice.nodes.first * width, slice.nodes.count * width}},
          slice.parts.of(Entity::nodes).coordinates, parts);
  addAttributes(slice, Entity::nodes, comm, parts);
  for (const Entity entity : detail::kCellEntities) {
    addPart(outline.of(entity).object, rangesOf(slice, entity, true),
            slice.parts.of(entity).nodeIndices, parts);
    addAttributes(slice, entity, comm, parts);
  }
  return parts;
}

Slice readSlice(const Communicator& comm, const SharedFile& file, DocumentOutline outline,
                Transfer transfer) {
  std::unique_ptr<SliceContent> slice;
  std::vector<ArrayPart<void*>> parts;
  together(comm, [&] {
    slice = std::make_unique<SliceContent>(std::move(outline), comm.rank(), comm.size());
    parts = makeRoom(*slice, comm);
  });
  readParts(comm, file, parts, transfer);
  return Slice(std::move(slice));
}

Loaded loadKinds(MPI_Comm callers, const std::filesystem::path& path, std::optional<Kind> wanted,
                 Transfer transfer) {
  const Communicator comm(callers);
  std::optional<DescribedFile> described;
  std::vector<DocumentOutline> outlines = outlinesOfAll(comm, path, wanted, described);
  SharedFile file(comm, path, path, SharedFile::Access::read);
  together(comm, [&] {
    if (described) {
      described->requireStillThere();
    }
  });
  Loaded loaded;
  for (DocumentOutline& outline : outlines) {
    auto& slice = outline.kind == Kind::input ? loaded.input : loaded.output;
    slice = readSlice(comm, file, std::move(outline), transfer);
  }
  return loaded;
}

}  // namespace

Loaded load(MPI_Comm comm, const std::filesystem::path& path, Transfer transfer) {
  return loadKinds(comm, path, std::nullopt, transfer);
}

Slice loadInput(MPI_Comm comm, const std::filesystem::path& path, Transfer transfer) {
  return std::move(*loadKinds(comm, path, Kind::input, transfer).input);
}

Slice loadOutput(MPI_Comm comm, const std::filesystem::path& path, Transfer transfer) {
  return std::move(*loadKinds(comm, path, Kind::output, transfer).output);
}

}  // namespace orvml::parallel
