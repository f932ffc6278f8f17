// HDF5's automatic error handler is the caller's: no function of the layer leaves another one.
#include <orvml/orvml.hpp>

#include "cpp/sample_documents.h"
#include "support/counting_error_handler.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

class ErrorHandlerOfTheCaller : public CountingErrorHandlerTest {
 protected:
  /// How often the caller's handler is called: while a document is saved and read in each way, and
  /// when HDF5 fails for the caller afterwards.
  void useTheLayer() {
    const TempFile temp;
    orvml::save(temp.path(), fullInput());
    (void)orvml::load(temp.path());
    (void)orvml::describe(temp.path());
    const orvml::MappedFile mapped(temp.path());
    (void)orvml::closeLeftovers(temp.path());
    duringUse_ = calls;
    failInHdf5();
  }

  int duringUse_ = 0;
};

TEST_F(ErrorHandlerOfTheCaller, IsThereAfterwards) {
  setHandler();

  useTheLayer();

  EXPECT_EQ(duringUse_, 0);
  EXPECT_EQ(calls, 1);
}

TEST_F(ErrorHandlerOfTheCaller, IsThereAfterwardsWhenItIsOfTheFirstGeneration) {
  setHandlerOfTheFirstGeneration();

  useTheLayer();

  EXPECT_EQ(duringUse_, 0);
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace orvml_io_tests
