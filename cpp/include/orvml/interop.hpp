#pragma once

#include <orvml/document.hpp>
#include <orvml/export.hpp>

#include <filesystem>

/// The way between this interface and the flat one, `orvml_io.h`, so that a program can be changed
/// file by file. Both work on the same documents. They have to be of the same version; these
/// functions throw Code::otherVersion when they are not.
namespace orvml {

/// Takes over a document of the flat interface and makes the caller's handle null.
///
/// The new owner releases, when it goes, all that the library made for the document, attribute
/// blocks included. Mesh arrays that the caller owns stay the caller's and have to outlive it.
///
/// Throws Code::nullHandle for a null handle, and Code::wrongKind, with the handle untouched, for a
/// document of the other kind.
[[nodiscard]] ORVML_EXPORT Input adoptInput(void*& handle);
[[nodiscard]] ORVML_EXPORT Output adoptOutput(void*& handle);

/// Tells which kind of document a handle is of; throws Code::nullHandle for a null one.
[[nodiscard]] ORVML_EXPORT Kind kindOf(void* handle);

/// Lends a document to the flat interface: the handle is valid as long as the document, which keeps
/// owning it. What the flat interface changes makes views of it invalid. Its mesh setters leave
/// such a document as it is, also one that was adopted from a caller who owns the arrays.
[[nodiscard]] ORVML_EXPORT void* handle(Document& document);
void* handle(Document&& document) = delete;

/// Gives a document to the flat interface; the caller deletes the handle. What the document was
/// built from is copied into it, so that the handle needs nothing beside it.
[[nodiscard]] ORVML_EXPORT void* release(Input&& input);
[[nodiscard]] ORVML_EXPORT void* release(Output&& output);

/// Closes what the readers of the flat interface leave open in a file by contract, so that the file
/// is closed and can be written in place. All groups and datasets that HDF5 has open in the file
/// go, those of the caller too. Views and handles stay valid: they need nothing open.
///
/// @return how many were closed; 0 for a path that leads to nothing that is open
ORVML_EXPORT int closeLeftovers(const std::filesystem::path& path);

}  // namespace orvml
