#pragma once

namespace orvml_io_tests {

/// Runs the exported functions over a document that was read or cloned, and reports a finding when
/// one breaks its promise. First come those that leave the document as it is.
void useWithoutChange(void* document);

/// Compares a document with another one that must be equal, in both directions.
void requireEqual(void* first, void* second);

/// Runs those that change values and clear content. `choice` says which container goes how.
void useWithChange(void*& document, unsigned choice);

}  // namespace orvml_io_tests
