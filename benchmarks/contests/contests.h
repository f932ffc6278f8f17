#pragma once

#include "harness/fresh_program.h"
#include "harness/results.h"

namespace orvml_io_bench {

// Each function registers the contests of one subject.

void registerMeshFiles(const Options& options);
void registerSmallFiles(const Options& options);
void registerValueFiles(const Options& options);
void registerMemory(const Options& options);
void registerStores(const Options& options);
void registerText(const Options& options);
void registerFreshProcesses(const Options& options);
void registerGrowth(const Options& options);
void registerCppLayer(const Options& options);  // where the layer is built
void registerChecks(const Options& options);    // where the layer is built

/// What this program is started anew for.
Tasks tasksOfFreshProcesses();
Tasks tasksOfChecks();  // where the layer is built

}  // namespace orvml_io_bench
