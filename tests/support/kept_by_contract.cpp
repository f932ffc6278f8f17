// What LeakSanitizer is told of memory that stays allocated on purpose.

// Deleting a document whose arrays are the caller's leaves the one-entry group arrays of its
// single-shape setters to the caller, who may have handed them on. Tests that do not look at them
// do not take them back either. The names are the sanitizer's; where it is not linked, nobody calls
// them.
extern "C" {

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming,cert-dcl*)
__attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:makeOneEntryArray\n"; }

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming,cert-dcl*)
__attribute__((visibility("default"))) const char* __lsan_default_options();
const char* __lsan_default_options() { return "print_suppressions=0"; }

}  // extern "C"
