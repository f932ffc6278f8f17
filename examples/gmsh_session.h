#pragma once

#include <gmsh.h>

namespace orvml_examples {

/// Gmsh between its initialisation and its end; silent, and independent of the user's settings.
class GmshSession {
 public:
  explicit GmshSession(const char* modelName) {
    gmsh::initialize(0, nullptr, false);
    gmsh::option::setNumber("General.Terminal", 0);
    gmsh::model::add(modelName);
  }
  GmshSession(const GmshSession&) = delete;
  GmshSession& operator=(const GmshSession&) = delete;
  GmshSession(GmshSession&&) = delete;
  GmshSession& operator=(GmshSession&&) = delete;
  ~GmshSession() { gmsh::finalize(); }
};

}  // namespace orvml_examples
