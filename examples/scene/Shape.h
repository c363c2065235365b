#pragma once

#include <cstdint>
#include <vector>

#include "examples/scene/Vec3.h"

/// Solid shapes and where a ray meets them.

namespace Scene {

enum class eShape { Box, Ball, Cone, Tube };

struct sRay {
  sVec3 fOrigin;
  sVec3 fDirection;
};

/// One of four unit shapes, stretched, turned and moved into its place: Box [-1, 1]^3, Ball of radius 1,
/// Cone of radius 1 at y = 0 and fTop at y = 1 (fCentre is the middle of its foot), Tube (a cone's mantle
/// without lids).
struct sShape {
  eShape fKind = eShape::Box;
  int fMaterial = 0;
  std::uint32_t fSeed = 0;  ///< distinguishes equal shapes
  float fTop = 1.0f;
  sVec3 fColour;
  sVec3 fCentre;
  sVec3 fRows[3];  ///< from the room to the unit shape, after fCentre was taken away
  sVec3 fLow;      ///< bounds in the room
  sVec3 fHigh;

  /// pAxes: the unit shape's three half axes in the room, at right angles to one another.
  void Place(sVec3 pCentre, const sVec3 (&pAxes)[3]);
};

struct sHit {
  float fDistance = 1.0e30f;
  const sShape* fShape = nullptr;
  sVec3 fPosition;
  sVec3 fLocal;   ///< fPosition in the unit shape
  sVec3 fNormal;  ///< unit length, towards where the ray came from
};

/// All shapes in a tree of boxes. The shapes must outlive it.
class cShapeTree {
 public:
  explicit cShapeTree(std::vector<sShape>& pShapes);

  /// The nearest shape that pRay meets; false where it meets none.
  bool Find(const sRay& pRay, sHit& pHit) const;

  /// Whether a shape that casts shadows (material not below pFirstSolid) lies within pDistance.
  bool IsBlocked(const sRay& pRay, float pDistance, int pFirstSolid) const;

 private:
  struct sNode {
    sVec3 fLow;
    sVec3 fHigh;
    int fFirst;  ///< first shape of a leaf; the second child of a fork (the first one follows the fork)
    int fCount;  ///< shapes of a leaf; 0 in a fork
    int fAxis;   ///< the axis along which a fork's children lie, first child lower
  };

  void Build(int pFirst, int pCount);
  int BestSplit(int pFirst, int pCount, int& pAxis);
  void SortAlong(int pFirst, int pCount, int pAxis);
  template <class tVisit>
  void Walk(const sRay& pRay, float& pLimit, const tVisit& pVisit) const;

  std::vector<sShape>& fShapes;
  std::vector<sNode> fNodes;
};

}  // namespace Scene
