// The process in which the most damaged files are read: it has to tell whose fault a fault is.
#include "hostile/isolated.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace orvml_io_tests {
namespace {

TEST(Isolated, WorkThatDoesNothingSucceeds) {
  EXPECT_EQ(runIsolated([] {}).ending, Ending::succeeded);
}

TEST(Isolated, WorkThatFailsATestFails) {
  const IsolatedRun run = runIsolated([] { ADD_FAILURE() << "the reason"; });

  EXPECT_EQ(run.ending, Ending::failed);
  EXPECT_NE(run.output.find("the reason"), std::string::npos);
}

TEST(Isolated, WorkThatPrintsFails) {
  EXPECT_EQ(runIsolated([] { std::fputs("x", stderr); }).ending, Ending::failed);
}

TEST(Isolated, WorkThatFaultsOutsideOfHdf5Fails) {
  EXPECT_EQ(runIsolated([] { std::raise(SIGSEGV); }).ending, Ending::failed);
  EXPECT_EQ(runIsolated([] { std::abort(); }).ending, Ending::failed);
}

TEST(Isolated, WorkThatIsKilledFails) {
  EXPECT_EQ(runIsolated([] { std::raise(SIGKILL); }).ending, Ending::failed);
}

TEST(Isolated, WorkThatEndsItsProcessFails) {
  EXPECT_EQ(runIsolated([] { ::_exit(7); }).ending, Ending::failed);
}

constexpr char kFaultInHdf5[] =
    "==1==ERROR: AddressSanitizer: SEGV on unknown address\n"
    "    #0 0x7f in __memmove_avx ../sysdeps/x86_64/multiarch/memmove.S:273\n"
    "    #1 0x7f in H5A__close (/lib/x86_64-linux-gnu/libhdf5_serial.so.103+0x64c27)\n"
    "    #2 0x56 in orvml_io::Orv_H5_AttributeExists(long, char const*) probes.cpp:78\n";

constexpr char kFaultInTheLibrary[] =
    "    #0 0x7f in __interceptor_memcpy ../libsanitizer/interceptors.inc:827\n"
    "    #1 0x56 in orvml_io::padCoordinates(orvml_io::Nodes&, int) mesh_datasets.cpp:60\n"
    "    #2 0x7f in H5Dread (/lib/x86_64-linux-gnu/libhdf5_serial.so.103+0xc7f74)\n";

constexpr char kAllocatedByTheLibrary[] =
    "allocated by thread T0 here:\n"
    "    #0 0x7f in operator new[](unsigned long) ../libsanitizer/asan_new_delete.cpp:98\n"
    "    #1 0x56 in makeNewArray<int> blocks.h:17\n";

constexpr char kBacktraceInHdf5[] =
    "/lib/x86_64-linux-gnu/libc.so.6(+0x3c050)[0x7f00]\n"
    "/lib/x86_64-linux-gnu/libhdf5_serial.so.103(H5A__close+0x27)[0x7f01]\n"
    "./orvml_io_hostile_tests(+0x231180)[0x5600]\n";

constexpr char kBacktraceInTheLibrary[] =
    "/lib/x86_64-linux-gnu/libc.so.6(+0x3c050)[0x7f00]\n"
    "./orvml_io_hostile_tests(+0x231180)[0x5600]\n"
    "/lib/x86_64-linux-gnu/libhdf5_serial.so.103(H5Dread+0x27)[0x7f01]\n";

TEST(Stacks, EndInHdf5WhenItsFunctionIsTheInnermost) {
  EXPECT_TRUE(everyStackEndsInHdf5(kFaultInHdf5));
  EXPECT_TRUE(everyStackEndsInHdf5(kBacktraceInHdf5));
}

TEST(Stacks, DoNotEndInHdf5WhenItIsOnlyACaller) {
  EXPECT_FALSE(everyStackEndsInHdf5(kFaultInTheLibrary));
  EXPECT_FALSE(everyStackEndsInHdf5(kBacktraceInTheLibrary));
}

// HDF5 writing behind an array of the library is the library's fault: it made the array too small.
TEST(Stacks, DoNotAllEndInHdf5WhenTheMemoryIsTheLibrarys) {
  EXPECT_FALSE(everyStackEndsInHdf5(std::string(kFaultInHdf5) + kAllocatedByTheLibrary));
}

TEST(Stacks, ThatAreMissingTellNothing) {
  EXPECT_FALSE(everyStackEndsInHdf5(""));
  EXPECT_FALSE(everyStackEndsInHdf5("extents.cpp:88:3: runtime error: signed integer overflow\n"));
}

}  // namespace
}  // namespace orvml_io_tests
