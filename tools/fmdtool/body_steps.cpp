#include "body_steps.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <vector>

#include "unit_labels.h"

namespace fmdtool {

namespace {

using Vector = std::array<double, 3>;

// Finite numbers with commas between; none where the text is anything else.
std::vector<double> numbers_of(const std::string& text) {
  std::vector<double> numbers;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, ',');) {
    char* end = nullptr;
    numbers.push_back(std::strtod(part.c_str(), &end));
    if (part.empty() || *end != '\0' || !std::isfinite(numbers.back())) return {};
  }
  return !text.empty() && text.back() != ',' ? numbers : std::vector<double>();
}

Vector vector_at(const std::vector<double>& numbers, std::size_t first) {
  return {numbers[first], numbers[first + 1], numbers[first + 2]};
}

double length_of(const Vector& v) {
  return std::hypot(v[0], v[1], v[2]);
}

std::string expected(const char* what, const std::string& text) {
  return std::string("expected ") + what + ", found \"" + text + "\"";
}

}  // namespace

std::string parse_translation(const std::string& text, BodyStep& step) {
  const std::vector<double> numbers = numbers_of(text);
  if (numbers.size() != 3) return expected("three numbers X,Y,Z", text);
  step = [by = vector_at(numbers, 0)](FmdBody* body) mutable {
    const double distance = length_of(by);
    return distance == 0.0 ? 1 : FMD_Translate(body, by.data(), distance);
  };
  return "";
}

std::string parse_rotation(const std::string& text, BodyStep& step) {
  const std::vector<double> numbers = numbers_of(text);
  if (numbers.size() != 4 && numbers.size() != 7) {
    return expected("an axis, an angle and perhaps a point, AX,AY,AZ,DEGREES[,X,Y,Z]", text);
  }
  Vector axis = vector_at(numbers, 0);
  if (length_of(axis) == 0.0) return expected("an axis of some length", text);
  Vector point = numbers.size() == 7 ? vector_at(numbers, 4) : Vector{};
  step = [axis, point, angle = numbers[3]](FmdBody* body) mutable {
    return FMD_Rotate(body, axis.data(), point.data(), angle);
  };
  return "";
}

std::string parse_mirror(const std::string& text, BodyStep& step) {
  const std::vector<double> numbers = numbers_of(text);
  if (numbers.size() != 3 && numbers.size() != 6) {
    return expected("a normal and perhaps a point, NX,NY,NZ[,X,Y,Z]", text);
  }
  Vector normal = vector_at(numbers, 0);
  if (length_of(normal) == 0.0) return expected("a normal of some length", text);
  Vector point = numbers.size() == 6 ? vector_at(numbers, 3) : Vector{};
  step = [normal, point](FmdBody* body) mutable { return FMD_Mirror(body, normal.data(), point.data()); };
  return "";
}

std::string parse_change_of_units(const std::string& text, BodyStep& step) {
  calculix::Units units;
  const std::string error = parse_units(text, units);
  if (!error.empty()) return error;
  step = [units](FmdBody* body) mutable {
    FMD_SetUnits(body, units.mass.data(), units.length.data(), units.time.data(), units.force.data());
    return 1;
  };
  return "";
}

}  // namespace fmdtool
