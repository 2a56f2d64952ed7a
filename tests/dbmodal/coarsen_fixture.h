// Bodies made of a mesh, coarsened, and their faces read back.
#ifndef FMDTOOLKIT_TESTS_COARSEN_FIXTURE_H
#define FMDTOOLKIT_TESTS_COARSEN_FIXTURE_H

#include <set>
#include <string>
#include <vector>

#include "body/body.h"
#include "dbmodal/coarsen_model.h"
#include "messages/memory.h"
#include "support/session.h"

namespace fmdtest {

class CoarsenTest : public SessionTest {
 protected:
  // Node ids count down from 9000, so that an id is no index and their order is not that of the nodes.
  static int id_of(int node) { return 9000000 - 10 * node; }

  // The face list is put in place as a sketch or a dataset may bring it: any corners, any count.
  static FmdBody* make_body(const Mesh& mesh) {
    FmdBody* body = FMD_Create(static_cast<int>(mesh.points.size()), 2);
    for (std::size_t node = 0; node < mesh.points.size(); ++node) {
      const auto& p = mesh.points[node];
      FMD_SetNodeCoordinates(body, id_of(static_cast<int>(node)), p[0], p[1], p[2]);
    }
    set_faces(body, mesh.faces);
    return body;
  }

  static void set_faces(FmdBody* body, const Faces& faces) {
    std::vector<std::int32_t> list;
    for (const std::vector<int>& face : faces) {
      list.push_back(static_cast<std::int32_t>(face.size()));
      list.insert(list.end(), face.begin(), face.end());
    }
    const auto length = static_cast<std::int32_t>(list.size());
    fmd::release(body->FaceList);
    body->FaceList = static_cast<std::int32_t*>(fmd::allocate_quietly(length, sizeof(std::int32_t)));
    std::copy(list.begin(), list.end(), body->FaceList);
    body->FaceListLength = body->FaceListCapacity = length;
    body->FaceCount = static_cast<std::int32_t>(faces.size());
    body->BlockExists[fmd::kElementFaces] = 1;
  }

  // By node index.
  static Faces faces_of(FmdBody* body) {
    Faces faces;
    std::int32_t place = 0;
    for (int face = 0; face < body->FaceCount; ++face) {
      const std::int32_t count = body->FaceList[place++];
      faces.emplace_back(body->FaceList + place, body->FaceList + place + count);
      place += count;
    }
    EXPECT_EQ(place, body->FaceListLength);
    return faces;
  }

  static void trim(FmdBody* body, std::string options) { FMD_TrimGeometry(body, options.data()); }

  static std::string text_of(const CoarsenSettings& settings) {
    char numbers[100];
    std::snprintf(numbers, sizeof numbers, "%.17g,%.17g,%d,", settings.resolution, settings.angle,
                  settings.removes_colinear ? 1 : 0);
    std::string text = numbers;
    for (const int node : settings.preserved) text += std::to_string(id_of(node)) + ",";
    return text;
  }
};

}  // namespace fmdtest

#endif
