#include "dbmodal/units_change_model.h"

#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "body/monitor_point.h"
#include "messages/memory.h"

namespace fmdtest {

namespace {

constexpr int kNodes = 6;
constexpr int kFirstId = 21;
constexpr int kFirstMode = 3;
constexpr Dimension kEnergy = kOneForce * kOneLength;
constexpr Dimension kInertia = kOneMass * kOneLength * kOneLength;
constexpr Dimension kStress = kOneForce / (kOneLength * kOneLength);

// Between 0.5 and 1.5, of either sign, in no order.
double some(int seed) {
  const double fraction = std::fmod((seed + 1) * 0.6180339887498949, 1.0);
  return (seed % 3 == 1 ? -1.0 : 1.0) * (0.5 + fraction);
}

int modes_of(const ModelOptions& options) {
  return options.rigid_modes == 6 ? 8 : 4;
}

// Sets values on a body in its units.
class Builder {
 public:
  Builder(FmdBody* made, const UnitSystem& system, const ModelOptions& chosen)
      : body(made), units(system), options(chosen), modes(modes_of(chosen)) {}

  void build() {
    units.set_on(body);
    set_nodes();
    set_vectors();
    set_matrices();
    set_loads();
    set_mass_properties();
    set_monitor_points();
    if (options.mode_records) set_records();
    if (options.invariants) set_invariants();
    FMD_SetKeepModesInMemory(body, options.keep_modes ? 1 : 0);
  }

 private:
  double in(double value, Dimension dimension) const { return units.from_si(value, dimension); }

  std::vector<double> values(int seed, int count, Dimension dimension) const {
    std::vector<double> made;
    for (int i = 0; i < count; ++i) made.push_back(in(some(seed + i), dimension));
    return made;
  }

  void set_nodes() {
    for (int node = 0; node < kNodes; ++node) {
      const int id = kFirstId + node;
      const auto at = values(10 * node, 3, kOneLength);
      FMD_SetNodeCoordinates(body, id, at[0], at[1], at[2]);
      FMD_SetNodalMass(body, id, in(1.0 + 0.25 * node, kOneMass));
    }
    const auto i = values(300, 6, kInertia);
    FMD_SetNodalInertia(body, kFirstId + 1, i[0], i[1], i[2], i[3], i[4], i[5]);
    int face[] = {21, 22, 23, 24};
    int other[] = {24, 25, 26};
    FMD_SetFaceList(body, 4, face);
    FMD_SetFaceList(body, 3, other);
    FMD_SetInterfaceNode(body, kFirstId);
  }

  void set_vectors() {
    for (int mode = 0; mode < modes; ++mode) {
      for (int node = 0; node < kNodes; ++node) {
        const int seed = 1000 + 97 * mode + 11 * node;
        const auto moved = values(seed, 3, kOneLength);
        const auto turned = values(seed + 3, 3, kPure);
        FMD_SetMode(body, kFirstMode + mode, kFirstId + node, 0, moved[0], moved[1], moved[2], turned[0],
                    turned[1], turned[2]);
        if (node % 2 == 0) continue;
        auto stress = values(seed + 5000, 6, kStress);
        auto strain = values(seed + 6000, 6, kPure);
        FMD_SetModeVec(body, kFirstMode + mode, kFirstId + node, 1, stress.data());
        FMD_SetModeVec(body, kFirstMode + mode, kFirstId + node, 2, strain.data());
      }
    }
    FMD_SetPreStressVec(body, kFirstId + 1, values(701, 6, kStress).data());
    FMD_SetPreStrainVec(body, kFirstId + 1, values(702, 6, kPure).data());
  }

  double stiffness_of(int mode) const {
    const double radians = 6.28318530718 * (mode < options.rigid_modes ? 1e-7 * (mode + 1) : 900.0 + mode);
    return kModelMass * radians * radians;
  }

  void set_matrices() {
    for (int mode = 0; mode < modes; ++mode) {
      const int number = kFirstMode + mode;
      FMD_SetGeneralizedMass(body, number, number, in(kModelMass, kInertia));
      FMD_SetGeneralizedStiffness(body, number, number, in(stiffness_of(mode), kEnergy));
    }
    if (options.off_diagonal) {
      FMD_SetGeneralizedMass(body, kFirstMode + 1, kFirstMode + 3, in(0.125, kInertia));
      FMD_SetGeneralizedStiffness(body, kFirstMode + 1, kFirstMode + 3, in(3.5, kEnergy));
    }
    set_damping();
  }

  // On the rigid axes the first three coordinates are lengths, the others angles or without unit.
  void set_damping() {
    for (int row = 0; row < modes; ++row) {
      for (int column = row; column < modes; ++column) {
        Dimension dimension = kEnergy * kOneTime;
        if (options.axis_damping && row < 3) dimension = dimension / kOneLength;
        if (options.axis_damping && column < 3) dimension = dimension / kOneLength;
        FMD_SetGeneralizedDamping(body, kFirstMode + row, kFirstMode + column,
                                  in(some(800 + 13 * row + column), dimension));
      }
    }
    if (options.axis_damping) body->DampingOnPrincipalAxes = 1;
  }

  Dimension load_dimension(int mode, bool processed) const {
    return processed && mode < std::min(options.rigid_modes, 3) ? kOneForce : kEnergy;
  }

  void set_loads() {
    const bool processed = options.processed_loads;
    for (int mode = 0; mode < modes; ++mode) {
      const int number = kFirstMode + mode;
      FMD_SetModalPreload(body, number, in(some(900 + mode), load_dimension(mode, processed)));
      FMD_SetModalLoad(body, 0, number, in(some(920 + mode), load_dimension(mode, false)));
      FMD_SetModalLoad(body, 1, number, in(some(940 + mode), load_dimension(mode, processed)));
    }
    FMD_SetModalPreloadProcessed(body, processed ? 1 : 0);
    FMD_SetModalLoadProcessed(body, 1, processed ? 1 : 0);
    for (int coordinate = 1; coordinate <= 6; ++coordinate) {
      FMD_SetModalLoadNodal(body, 1, kFirstId + 1, coordinate,
                            in(some(960 + coordinate), coordinate <= 3 ? kOneForce : kEnergy));
    }
  }

  void set_mass_properties() {
    FMD_SetGlobalMass(body, in(7.5, kOneMass), values(40, 3, kOneLength).data(),
                      values(50, 9, kInertia).data());
  }

  // Each component of each result: what is told, per modal coordinate, its rates, or a modal load.
  void set_monitor_points() {
    for (int result = 0; result <= 5; ++result) {
      auto location = values(60 + result, 3, kOneLength);
      char name[] = "POINT";
      char label[] = "somewhere";
      constexpr int kComponent = 1426053;
      constexpr int kLoadOperators = 2;
      FMD_SetMonitorPointInfo(body, 1, result, kComponent, kLoadOperators, location.data(), name, label);
      for (int kind = 1; kind <= 4; ++kind) {
        std::vector<double> rows;
        for (int layer = 0; layer < (kind == 4 ? kLoadOperators : 1); ++layer) {
          for (const char digit : std::to_string(kComponent)) {
            const auto row = values(2000 + 500 * kind + 70 * layer + digit, modes,
                                    operator_dimension(result, digit <= '3' && digit != '0', kind));
            rows.insert(rows.end(), row.begin(), row.end());
          }
        }
        FMD_SetMonitorPointOperator(body, result, kind, rows.data());
      }
    }
  }

  static Dimension operator_dimension(int result, bool translation, int kind) {
    if (result < 1 || result > 4) return kPure;
    const Dimension results[] = {translation ? kOneLength : kPure, kStress, kPure,
                                 translation ? kOneForce : kEnergy};
    const Dimension inputs[] = {kPure, kPure / kOneTime, kPure / (kOneTime * kOneTime), kEnergy};
    return results[result - 1] / inputs[kind - 1];
  }

  void set_records() {
    body->ModeRecords = fmd::allocate<FmdModeRecord>(modes, "dbread").release();
    body->ModeRecordCount = modes;
    for (int mode = 0; mode < modes; ++mode) {
      const double hertz = mode < options.rigid_modes ? 1e-7 * (mode + 1) : 900.0 + mode;
      const Dimension rate = kPure / kOneTime;
      body->ModeRecords[mode] = {kFirstMode + mode,        in(4.0 + mode, kEnergy / kInertia),
                                 in(hertz, rate),          in(3.0 * hertz, rate),
                                 in(5.0 + mode, kInertia), in(6.0 + mode, kEnergy)};
    }
  }

  void set_invariants() {
    constexpr Dimension kMoment = kOneMass * kOneLength;
    FMD_SetInvar1(body, in(9.5, kOneMass));
    FMD_SetInvar2(body, values(100, 3, kMoment).data());
    FMD_SetInvar7(body, values(110, 6, kInertia).data());
    for (int i = 0; i < modes; ++i) {
      const int mode = kFirstMode + i;
      FMD_SetInvar3(body, mode, values(120 + i, 3, kMoment).data());
      FMD_SetInvar4(body, mode, values(140 + i, 3, kInertia).data());
      FMD_SetInvar8(body, mode, values(160 + i, 9, kInertia).data());
      for (int j = i + 1; j < modes; ++j) {
        FMD_SetInvar5(body, mode, kFirstMode + j, values(180 + 10 * i + j, 3, kInertia).data());
        FMD_SetInvar9(body, mode, kFirstMode + j, values(280 + 10 * i + j, 9, kInertia).data());
      }
    }
  }

  FmdBody* body;
  const UnitSystem& units;
  const ModelOptions& options;
  int modes;
};

// Collects the numbers of a body.
class Painter {
 public:
  explicit Painter(FmdBody* painted) : body(painted), modes(FMD_ModeCount(painted)) {}

  Picture paint() {
    paint_nodes();
    paint_vectors();
    paint_matrices();
    paint_eigenvalues();
    paint_loads();
    paint_statistics();
    paint_monitor_points();
    paint_invariants();
    return std::move(picture);
  }

 private:
  void put(const std::string& name, const double* values, int count) {
    picture[name].insert(picture[name].end(), values, values + count);
  }

  void put_owned(const std::string& name, double* values, int count) {
    if (values != nullptr) put(name, values, count);
    FMD_FreeMemory(values);
  }

  void paint_nodes() {
    for (int node = 0; node < FMD_NodeCount(body); ++node) {
      double values[9] = {};
      FMD_NodeCoordinates(body, node, values);
      put("node coordinates", values, 3);
      values[0] = FMD_NodalMass(body, node);
      put("node masses", values, 1);
      if (FMD_NodalInertia(body, node, values) != 0) put("node inertias", values, 9);
    }
    put("mass of the body", &body->GlobalMass, 1);
    put("center of mass", body->GlobalCenterOfMass, 3);
    put("inertia of the body", body->GlobalInertia, 9);
  }

  void paint_vectors() {
    static const char* const names[3] = {"mode shape", "modal stress", "modal strain"};
    for (int type = 0; type < 3; ++type) {
      for (int mode = type == 0 ? 0 : -1; mode < modes; ++mode) {
        const int number = mode < 0 ? 0 : FMD_ModeNumber(body, mode);
        for (int part = 0; part < 2; ++part) {
          const int count = 3 * FMD_ModeNodeCount(body, type);
          std::vector<double> half(static_cast<std::size_t>(count));
          if (FMD_Mode(body, number, type, half.data(), part) == 0) continue;
          put(names[type] + std::string(mode < 0 ? " before load" : "") + (part == 0 ? " first" : " second"),
              half.data(), count);
        }
      }
    }
  }

  void paint_matrix(const std::string& name, int count, int (*read)(FmdBody*, double*, int*, int*)) {
    const auto size = static_cast<std::size_t>(count);
    std::vector<double> values(size);
    std::vector<int> rows(size);
    std::vector<int> columns(size);
    read(body, values.data(), rows.data(), columns.data());
    put(name, values.data(), count);
  }

  void paint_matrices() {
    paint_matrix("generalized mass", FMD_NumberOfGenMass(body), FMD_GenMassSparse);
    paint_matrix("generalized stiffness", FMD_NumberOfGenStiff(body), FMD_GenStiffSparse);
    paint_matrix("generalized damping", FMD_NumberOfGenDamp(body), FMD_GenDampSparse);
  }

  void paint_eigenvalues() {
    static const char* const names[5] = {"eigenvalues", "frequencies", "circular frequencies", "modal masses",
                                         "modal stiffnesses"};
    for (int mode = 0; mode < modes; ++mode) {
      double v[5] = {};
      if (FMD_Eigenvalue(body, FMD_ModeNumber(body, mode), &v[0], &v[1], &v[2], &v[3], &v[4]) == 0) continue;
      for (int i = 0; i < 5; ++i) put(names[i], &v[i], 1);
    }
  }

  void paint_loads() {
    int count = 0;
    double* const preload = FMD_GetModalPreload(body, &count);
    put_owned("preload", preload, count);
    for (int index = 0; index < FMD_GetModalLoadCaseCount(body); ++index) {
      double* const load = FMD_GetModalLoad(body, index, &count);
      put_owned("load case " + std::to_string(index), load, count);
    }
    for (int index = 0; index < FMD_GetModalLoadNodalCaseCount(body); ++index) {
      put_owned("nodal loads", FMD_GetModalLoadNodalLoad(body, index),
                FMD_GetModalLoadNodalCount(body, index));
    }
  }

  void paint_statistics() {
    struct Statistic {
      const char* name;
      int (*get)(FmdBody*, int, int*, double*);
    };
    for (const Statistic& statistic : {Statistic{"largest displacement", FMD_GetMaxModeDisplacement},
                                       Statistic{"largest rotation", FMD_GetMaxModeRotation},
                                       Statistic{"largest stress", FMD_GetMaxVonMisesStress},
                                       Statistic{"largest strain", FMD_GetMaxVonMisesStrain}}) {
      for (int mode = 0; mode < modes; ++mode) {
        double value = 0.0;
        statistic.get(body, FMD_ModeNumber(body, mode), nullptr, &value);
        put(statistic.name, &value, 1);
      }
    }
  }

  void paint_monitor_points() {
    for (int index = 0; index < FMD_GetMonitorPointCount(body); ++index) {
      double location[3] = {};
      FMD_GetMonitorPointLocation(body, index, location);
      put("monitor point locations", location, 3);
      int rows = 0;
      int columns = 0;
      FMD_GetMonitorPointOperatorSize(body, index, &rows, &columns);
      for (int kind = 1; kind <= 4; ++kind) {
        const int layers = kind == 4 ? FMD_GetMonitorPointNumLoadOperator(body, index) : 1;
        std::vector<double> values(static_cast<std::size_t>(layers * rows * columns));
        FMD_GetMonitorPointOperator(body, index, kind, values.data());
        // Row by row, since rows differ in dimension.
        for (int row = 0; row < layers * rows; ++row) {
          const std::string name = "operator " + std::to_string(kind) + " of result " +
                                   std::to_string(FMD_GetMonitorPointResultType(body, index)) + " row " +
                                   std::to_string(row);
          put(name, values.data() + row * columns, columns);
        }
      }
    }
  }

  void paint_invariants() {
    const double first = FMD_Invar1(body);
    put("invariant 1", &first, 1);
    put_owned("invariant 2", FMD_Invar2(body), 3);
    put_owned("invariant 3", FMD_Invar3(body), 3 * modes);
    put_owned("invariant 4", FMD_Invar4(body), 3 * modes);
    put_owned("invariant 7", FMD_Invar7(body), 9);
    for (int i = 0; i < modes; ++i) {
      put_owned("invariant 5", FMD_Invar5(body, i), 3 * modes);
      put_owned("invariant 8", FMD_Invar8(body, i), 9);
      for (int j = 0; j < modes; ++j) put_owned("invariant 9", FMD_Invar9(body, i, j), 9);
    }
  }

  FmdBody* body;
  int modes;
  Picture picture;
};

}  // namespace

double UnitSystem::from_si(double value, Dimension dimension) const {
  return value / (std::pow(force_size, dimension.force) * std::pow(length_size, dimension.length) *
                  std::pow(mass_size, dimension.mass) * std::pow(time_size, dimension.time));
}

void UnitSystem::set_on(FmdBody* body) const {
  std::string labels[] = {mass, length, time, force};
  FMD_SetUnits(body, labels[0].data(), labels[1].data(), labels[2].data(), labels[3].data());
}

const UnitSystem kSi = {"KILOGRAM", "METER", "SECOND", "NEWTON", 1.0, 1.0, 1.0, 1.0};
const UnitSystem kOdd = {"SLUG",  "FOOT", "MINUTE",           "KILOGRAM_FORCE",
                         9.80665, 0.3048, 14.593902937206366, 60.0};

UnitSystem si_but_for(const std::string& quantity) {
  UnitSystem units = kSi;
  if (quantity == "force") {
    units.force = kOdd.force;
    units.force_size = kOdd.force_size;
  } else if (quantity == "length") {
    units.length = kOdd.length;
    units.length_size = kOdd.length_size;
  } else if (quantity == "mass") {
    units.mass = kOdd.mass;
    units.mass_size = kOdd.mass_size;
  } else {
    units.time = kOdd.time;
    units.time_size = kOdd.time_size;
  }
  return units;
}

FmdBody* make_body_in(const UnitSystem& units, const ModelOptions& options) {
  FmdBody* const body = FMD_Create(kNodes, modes_of(options));
  Builder(body, units, options).build();
  return body;
}

Picture picture_of(FmdBody* body) {
  return Painter(body).paint();
}

void expect_same_picture(const Picture& found, const Picture& expected, double tolerance) {
  ASSERT_EQ(found.size(), expected.size());
  for (const auto& [name, values] : expected) {
    SCOPED_TRACE(name);
    ASSERT_EQ(found.count(name), 1U);
    const std::vector<double>& others = found.at(name);
    ASSERT_EQ(others.size(), values.size());
    double largest = 0.0;
    for (const double value : values) largest = std::max(largest, std::fabs(value));
    for (std::size_t i = 0; i < values.size(); ++i) {
      EXPECT_LE(std::fabs(others[i] - values[i]), tolerance * largest)
          << others[i] << " instead of " << values[i] << " at " << i;
    }
  }
}

}  // namespace fmdtest
