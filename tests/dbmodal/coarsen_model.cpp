#include "dbmodal/coarsen_model.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <memory>

namespace fmdtest {

namespace {

using Point = std::array<double, 3>;

struct Face {
  std::vector<int> corners;
  Point normal = {0, 0, 0};
};

struct Node {
  std::vector<std::size_t> faces;
};

Point minus(const Point& a, const Point& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double dot(const Point& a, const Point& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Point cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

class PlainRules {
 public:
  PlainRules(const Mesh& mesh, const CoarsenSettings& settings, CoarsenCounts& counts)
      : points_(mesh.points), counts_(counts) {
    for (const std::vector<int>& corners : mesh.faces) {
      slots_.push_back(std::make_shared<Face>(Face{corners, normal_of(corners)}));
    }
    nodes_.resize(points_.size());
    for (std::size_t face = 0; face < slots_.size(); ++face) {
      for (const int corner : slots_[face]->corners) {
        auto& node = nodes_[at(corner)];
        if (node == nullptr) node = std::make_unique<Node>();
        node->faces.push_back(face);
      }
    }
    for (const int node : settings.preserved) nodes_[at(node)].reset();
    measure();
    reach2_ = settings.resolution * diagonal_ * (settings.resolution * diagonal_);
    cos_limit_ = std::cos(settings.angle * 3.14159265358979323846 / 180.0);
  }

  void visit_all() {
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      if (neighbors_within_resolution(i) && faces_nearly_coplanar(i)) dissolve(i);
    }
  }

  void remove_straight_vertices() {
    for (auto& slot : slots_) {
      if (slot == nullptr || slot->corners.size() < 4) continue;
      std::vector<int>& c = slot->corners;
      const std::size_t n = c.size();
      std::size_t out = 0;
      int prev = c.back();
      for (std::size_t k = 0; k < n; ++k) {
        if (vertex_is_kept(prev, c[k], c[(k + 1) % n])) {
          c[out++] = c[k];
          prev = c[k];
        } else {
          ++counts_.straight_vertices;
        }
      }
      c.resize(out);
    }
  }

  Faces pack() const {
    Faces packed;
    for (std::size_t slot = 0; slot < slots_.size(); ++slot) {
      if (slots_[slot] == nullptr || slots_[slot]->corners.empty()) continue;
      bool again = false;
      for (std::size_t before = 0; before < slot; ++before) again = again || slots_[before] == slots_[slot];
      if (!again) packed.push_back(slots_[slot]->corners);
    }
    return packed;
  }

 private:
  using Slot = std::shared_ptr<Face>;

  static std::size_t at(int value) { return static_cast<std::size_t>(value); }
  bool has_record(int node) const { return nodes_[at(node)] != nullptr; }

  Point normal_of(const std::vector<int>& corners) const {
    if (corners.size() < 3) return {0, 0, 0};
    const Point& p0 = points_[at(corners[0])];
    const Point& p1 = points_[at(corners[1])];
    const Point& p2 = points_[at(corners[2])];
    Point normal = cross(minus(p2, p1), minus(p0, p1));
    const double length = std::sqrt(dot(normal, normal));
    if (length != 0) normal = {normal[0] / length, normal[1] / length, normal[2] / length};
    return normal;
  }

  void measure() {
    Point low = points_[0];
    Point high = points_[0];
    for (const Point& point : points_) {
      for (std::size_t k = 0; k < 3; ++k) {
        low[k] = std::min(low[k], point[k]);
        high[k] = std::max(high[k], point[k]);
      }
    }
    diagonal_ = std::sqrt(dot(minus(high, low), minus(high, low)));
  }

  double distance2(int a, int b) const {
    const Point d = minus(points_[at(b)], points_[at(a)]);
    return dot(d, d);
  }

  bool neighbors_within_resolution(std::size_t i) const {
    if (nodes_[i] == nullptr) return false;
    std::multiset<int> candidates;
    for (const std::size_t face : nodes_[i]->faces) {
      if (slots_[face] == nullptr) continue;
      candidates.insert(slots_[face]->corners.begin(), slots_[face]->corners.end());
    }
    return std::none_of(candidates.begin(), candidates.end(),
                        [&](int j) { return has_record(j) && distance2(static_cast<int>(i), j) > reach2_; });
  }

  bool faces_nearly_coplanar(std::size_t i) const {
    if (nodes_[i] == nullptr || nodes_[i]->faces.size() < 2) return false;
    const Face& reference = *slots_[nodes_[i]->faces[0]];
    for (std::size_t k = 1; k < nodes_[i]->faces.size(); ++k) {
      const Slot& face = slots_[nodes_[i]->faces[k]];
      if (face == nullptr) continue;
      if (face->corners.size() < 3) return false;
      if (std::fabs(dot(face->normal, reference.normal)) - cos_limit_ < 0) return false;
    }
    return true;
  }

  static void reverse_tail(Face& face) {
    if (face.corners.size() > 2) std::reverse(face.corners.begin() + 1, face.corners.end());
  }

  void orient(std::size_t i) {
    const int node = static_cast<int>(i);
    std::vector<std::size_t> kept;
    for (const std::size_t face : nodes_[i]->faces) {
      std::vector<int>& corners = slots_[face]->corners;
      if (std::count(corners.begin(), corners.end(), node) == 0) {
        ++counts_.dropped_from_stale_lists;
        continue;
      }
      while (corners.front() != node) {  // one step round at a time
        corners.push_back(corners.front());
        corners.erase(corners.begin());
      }
      kept.push_back(face);
    }
    nodes_[i]->faces = kept;
  }

  Slot* find_adjacent(const std::vector<std::size_t>& list, int v) {
    for (const std::size_t face : list) {
      if (slots_[face] != nullptr && slots_[face]->corners.size() > 1 && slots_[face]->corners[1] == v)
        return &slots_[face];
    }
    for (const std::size_t face : list) {
      if (slots_[face] != nullptr && slots_[face]->corners.back() == v) {
        reverse_tail(*slots_[face]);
        ++counts_.reversed_faces;
        return &slots_[face];
      }
    }
    return nullptr;
  }

  Slot merge_fan(const std::vector<std::size_t>& list, int start) {
    Slot& seed = slots_[list[at(std::abs(start))]];
    if (start < 0) reverse_tail(*seed);
    auto polygon = std::make_shared<Face>();
    polygon->corners.assign(seed->corners.begin() + 1, seed->corners.end());
    polygon->normal = seed->normal;
    std::vector<std::pair<Slot*, Slot>> taken = {{&seed, seed}};
    seed = nullptr;
    while (taken.size() < list.size()) {
      Slot* const next = polygon->corners.empty() ? nullptr : find_adjacent(list, polygon->corners.back());
      if (next == nullptr) break;
      const std::vector<int>& corners = (*next)->corners;
      for (std::size_t k = 2; k < corners.size(); ++k) polygon->corners.push_back(corners[k]);
      taken.emplace_back(next, *next);
      *next = nullptr;
    }
    if (taken.size() == list.size() && !polygon->corners.empty()) return polygon;
    for (auto& [place, face] : taken) *place = face;
    return nullptr;
  }

  void dissolve(std::size_t i) {
    orient(i);
    const std::vector<std::size_t> list = nodes_[i]->faces;
    Slot polygon;
    for (int start = 0; start < static_cast<int>(list.size()) && polygon == nullptr; ++start)
      polygon = merge_fan(list, start);
    for (int start = 0; start < static_cast<int>(list.size()) && polygon == nullptr; ++start) {
      polygon = merge_fan(list, -start);
      if (polygon != nullptr) ++counts_.reversed_seeds;
    }
    if (polygon == nullptr) {
      ++counts_.failed_fans;
      return;
    }
    slots_[list[0]] = polygon;
    const bool open = polygon->corners.front() != polygon->corners.back();
    if (open) polygon->corners.push_back(static_cast<int>(i));
    replace_merged_faces(i, list);
    if (!open) nodes_[i].reset();
    ++(open ? counts_.open_fans : counts_.closed_fans);
    remove_pinches(polygon->corners);
  }

  // The scan over all later nodes.
  void replace_merged_faces(std::size_t i, const std::vector<std::size_t>& list) {
    for (std::size_t j = i + 1; j < nodes_.size(); ++j) {
      if (nodes_[j] == nullptr) continue;
      bool changed = false;
      for (std::size_t& face : nodes_[j]->faces) {
        if (std::count(list.begin() + 1, list.end(), face) == 0) continue;
        face = list[0];
        changed = true;
      }
      if (!changed) continue;
      const std::set<std::size_t> once(nodes_[j]->faces.begin(), nodes_[j]->faces.end());
      nodes_[j]->faces.assign(once.begin(), once.end());
    }
  }

  void remove_pinches(std::vector<int>& polygon) {
    const int n = static_cast<int>(polygon.size());
    const int limit = static_cast<int>(std::trunc(0.3 * n));
    std::vector<bool> marked(polygon.size(), false);
    const auto mark = [&](int from, int to, int& count) {
      for (int k = from; k < to; ++k) {
        if (!has_record(polygon[at(k)])) continue;
        marked[at(k)] = true;
        ++count;
      }
    };
    for (int p = 0; p < n; ++p) {
      if (marked[at(p)]) continue;
      for (int q = p + 1; q < n; ++q) {
        if (polygon[at(q)] != polygon[at(p)] || marked[at(q)]) continue;
        if (q - p < limit) {
          mark(p + 1, q, counts_.inner_pinches);
        } else if (n - q + p < limit) {
          mark(0, p, counts_.outer_pinches);
          mark(q, n, counts_.outer_pinches);
        }
      }
    }
    std::vector<int> kept;
    for (int k = 0; k < n; ++k) {
      if (!marked[at(k)]) kept.push_back(polygon[at(k)]);
    }
    polygon = kept;
  }

  bool vertex_is_kept(int prev, int cur, int next) const {
    if (!has_record(prev) || !has_record(cur) || !has_record(next)) return true;
    const double len2 = diagonal_ * 0.05 * (diagonal_ * 0.05);
    const double d1 = distance2(prev, cur);
    if (d1 == 0) return false;
    if (d1 > len2) return true;
    const double d2 = distance2(next, cur);
    if (d2 == 0 || d2 > len2) return true;
    const double along =
        dot(minus(points_[at(prev)], points_[at(cur)]), minus(points_[at(next)], points_[at(cur)]));
    return std::cos(0.17453292519943295) > std::fabs(along / std::sqrt(d1) / std::sqrt(d2));
  }

  std::vector<Point> points_;
  std::vector<Slot> slots_;
  std::vector<std::unique_ptr<Node>> nodes_;
  double diagonal_ = 0;
  double reach2_ = 0;
  double cos_limit_ = 0;
  CoarsenCounts& counts_;
};

}  // namespace

Faces coarsen_by_plain_rules(const Mesh& mesh, const CoarsenSettings& settings, CoarsenCounts& counts) {
  PlainRules rules(mesh, settings, counts);
  rules.visit_all();
  if (settings.removes_colinear) rules.remove_straight_vertices();
  return rules.pack();
}

}  // namespace fmdtest
