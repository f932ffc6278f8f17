// Measures of a mesh. Lengths are in the unit of the coordinates.
#pragma once

#include "exchange/mesh.h"

#include <array>
#include <vector>

namespace orvml_examples {

using Point = std::array<double, 3>;

Point pointAt(const std::vector<double>& coordinates, int node);
Point midpoint(const Point& a, const Point& b);
double distance(const Point& a, const Point& b);

/// Six times the signed volume of the tetrahedron a, b, c, d.
double tripleProduct(const Point& a, const Point& b, const Point& c, const Point& d);

/// The part of a closed surface's volume that one face contributes, seen from the origin. A
/// quadrilateral counts as the mean of its two divisions into triangles, so that the two cells at
/// an inner face take it the same way.
double volumeBelow(const std::vector<double>& coordinates, const std::vector<int>& face);

/// Volume enclosed by faces that are all seen counter-clockwise from outside.
double enclosedVolume(const std::vector<double>& coordinates, const Cells& faces);

std::vector<double> areas(const std::vector<double>& coordinates, const Cells& faces);
std::vector<double> lengths(const std::vector<double>& coordinates, const Cells& edges);

/// xmin, ymin, zmin, xmax, ymax, zmax; zeros without nodes.
std::vector<double> boundingBox(const std::vector<double>& coordinates);

double sum(const std::vector<double>& values);

}  // namespace orvml_examples
