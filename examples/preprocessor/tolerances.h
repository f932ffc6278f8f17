// How far a mesh of flat faces may stray from a round part, and why.
#pragma once

#include "preprocessor/cad_measures.h"
#include "preprocessor/part.h"
#include "preprocessor/surface_mesh.h"

#include <vector>

namespace orvml_examples {

/// The largest distance allowed between a chord and the surface, in millimetres. On a circle of
/// radius r, a chord of length s bulges s^2 / (8 r), and one of n on a full turn r (1 - cos(pi/n));
/// the mesh keeps to the finer of both. The sides of well-shaped faces may be up to sqrt(2) times
/// longer than the size that was asked for, which doubles the distance.
double allowedChordalError(const Part& part, const MeshSizes& sizes);

/// What the volume may differ by. Between a face and the surface lies at most the area of the face
/// times its chordal error, so plane surfaces add nothing. A part in a billion is left to rounding.
double volumeTolerance(const CadMeasures& cad, const std::vector<double>& faceAreas,
                       const std::vector<double>& chordalErrors);

/// What the area may differ by: a regular polygon of n sides in a circle lacks (2 pi / n)^2 / 6 of
/// the circle's area, its perimeter a quarter of that.
double areaTolerance(const CadMeasures& cad);

}  // namespace orvml_examples
