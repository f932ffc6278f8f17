#pragma once

/// How the command ends. docs/command.md has what each subcommand makes of them.
namespace orvml_tool {

inline constexpr int kDone = 0;       ///< also: no difference
inline constexpr int kDifferent = 1;  ///< of diff, patch and apply: the documents are not the same
inline constexpr int kTrouble = 2;    ///< nothing can be said, or was done

/// Who read standard output wants no more: what a shell has for a program that SIGPIPE ended.
inline constexpr int kBrokenPipe = 141;

// Those of check.
inline constexpr int kClean = 0;
inline constexpr int kWarnings = 1;
inline constexpr int kErrors = 2;
inline constexpr int kUnreadable = 3;  ///< also for a wrong use of the command

}  // namespace orvml_tool
