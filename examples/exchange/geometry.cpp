#include "exchange/geometry.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvml_examples {

namespace {

Point minus(const Point& a, const Point& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

Point cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Point& a, const Point& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// Calls `visit(a, b, c, weight)` for the triangles that stand for a face.
template <class Visit>
void forEachTriangle(const std::vector<double>& coordinates, const std::vector<int>& face,
                     Visit visit) {
  const auto at = [&](std::size_t corner) { return pointAt(coordinates, face[corner]); };
  if (face.size() == 3) {
    visit(at(0), at(1), at(2), 1.0);
    return;
  }
  visit(at(0), at(1), at(2), 0.5);
  visit(at(0), at(2), at(3), 0.5);
  visit(at(0), at(1), at(3), 0.5);
  visit(at(1), at(2), at(3), 0.5);
}

}  // namespace

Point pointAt(const std::vector<double>& coordinates, int node) {
  const auto first = static_cast<std::size_t>(node) * 3;
  return {coordinates[first], coordinates[first + 1], coordinates[first + 2]};
}

Point midpoint(const Point& a, const Point& b) {
  return {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2};
}

double distance(const Point& a, const Point& b) {
  const Point difference = minus(a, b);
  return std::sqrt(dot(difference, difference));
}

double tripleProduct(const Point& a, const Point& b, const Point& c, const Point& d) {
  return dot(cross(minus(b, a), minus(c, a)), minus(d, a));
}

double volumeBelow(const std::vector<double>& coordinates, const std::vector<int>& face) {
  double volume = 0.0;
  forEachTriangle(coordinates, face,
                  [&](const Point& a, const Point& b, const Point& c, double weight) {
                    volume += weight * dot(a, cross(b, c)) / 6.0;
                  });
  return volume;
}

double enclosedVolume(const std::vector<double>& coordinates, const Cells& faces) {
  double volume = 0.0;
  faces.forEach(
      [&](ElemType, const std::vector<int>& nodes) { volume += volumeBelow(coordinates, nodes); });
  return volume;
}

std::vector<double> areas(const std::vector<double>& coordinates, const Cells& faces) {
  std::vector<double> measured;
  faces.forEach([&](ElemType, const std::vector<int>& nodes) {
    double area = 0.0;
    forEachTriangle(coordinates, nodes,
                    [&](const Point& a, const Point& b, const Point& c, double weight) {
                      const Point normal = cross(minus(b, a), minus(c, a));
                      area += weight * std::sqrt(dot(normal, normal)) / 2.0;
                    });
    measured.push_back(area);
  });
  return measured;
}

std::vector<double> lengths(const std::vector<double>& coordinates, const Cells& edges) {
  std::vector<double> measured;
  edges.forEach([&](ElemType, const std::vector<int>& nodes) {
    measured.push_back(distance(pointAt(coordinates, nodes[0]), pointAt(coordinates, nodes[1])));
  });
  return measured;
}

std::vector<double> boundingBox(const std::vector<double>& coordinates) {
  std::vector<double> box(6, 0.0);
  for (std::size_t i = 0; i < coordinates.size(); ++i) {
    const std::size_t axis = i % 3;
    box[axis] = i < 3 ? coordinates[i] : std::min(box[axis], coordinates[i]);
    box[axis + 3] = i < 3 ? coordinates[i] : std::max(box[axis + 3], coordinates[i]);
  }
  return box;
}

double sum(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0);
}

}  // namespace orvml_examples
