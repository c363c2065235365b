#include "examples/scene/Room.h"

#include "examples/scene/Material.h"
#include "examples/scene/Noise.h"

namespace Scene {
namespace {

constexpr sVec3 kOak = {0.32f, 0.17f, 0.075f};
constexpr sVec3 kWalnut = {0.13f, 0.062f, 0.030f};
constexpr sVec3 kWhitePaint = {0.72f, 0.70f, 0.65f};
constexpr sVec3 kBrass = {0.95f, 0.68f, 0.30f};

class cFurnisher {
 public:
  std::vector<sShape> Furnish() {
    Walls();
    WindowFrames();
    Curtains();
    Bookcase();
    Lamp();
    Armchair();
    Table();
    StillLife();
    Flowers();
    Plant();
    BackOfTheRoom();
    return std::move(fShapes);
  }

 private:
  sShape& Add(eShape pKind, int pMaterial, sVec3 pColour) {
    sShape shape;
    shape.fKind = pKind;
    shape.fMaterial = pMaterial;
    shape.fColour = pColour;
    shape.fSeed = static_cast<std::uint32_t>(fShapes.size());
    fShapes.push_back(shape);
    return fShapes.back();
  }

  /// A box around pCentre; pHalf are its half sizes, pTurn turns it about the vertical.
  void Block(sVec3 pCentre, sVec3 pHalf, float pTurn, int pMaterial, sVec3 pColour) {
    const float c = std::cos(pTurn);
    const float s = std::sin(pTurn);
    Add(eShape::Box, pMaterial, pColour)
        .Place(pCentre, {{c * pHalf.fX, 0.0f, -s * pHalf.fX},
                         {0.0f, pHalf.fY, 0.0f},
                         {s * pHalf.fZ, 0.0f, c * pHalf.fZ}});
  }

  void Box(sVec3 pLow, sVec3 pHigh, int pMaterial, sVec3 pColour = {}) {
    Block((pLow + pHigh) * 0.5f, (pHigh - pLow) * 0.5f, 0.0f, pMaterial, pColour);
  }

  void Ball(sVec3 pCentre, sVec3 pRadii, int pMaterial, sVec3 pColour) {
    Add(eShape::Ball, pMaterial, pColour)
        .Place(pCentre, {{pRadii.fX, 0.0f, 0.0f}, {0.0f, pRadii.fY, 0.0f}, {0.0f, 0.0f, pRadii.fZ}});
  }

  void Cone(sVec3 pFoot, float pHeight, float pRadius, float pTopRadius, int pMaterial, sVec3 pColour,
            eShape pKind = eShape::Cone) {
    sShape& shape = Add(pKind, pMaterial, pColour);
    shape.fTop = pTopRadius / pRadius;
    shape.Place(pFoot, {{pRadius, 0.0f, 0.0f}, {0.0f, pHeight, 0.0f}, {0.0f, 0.0f, pRadius}});
  }

  void Rod(sVec3 pFrom, sVec3 pTo, float pRadius, int pMaterial, sVec3 pColour) {
    const sFrame frame(Normalised(pTo - pFrom));
    Add(eShape::Cone, pMaterial, pColour).Place(pFrom, {frame.fU * pRadius, pTo - pFrom, frame.fV * pRadius});
  }

  /// A flat, pointed blade from pRoot to pTip.
  void Blade(sVec3 pRoot, sVec3 pTip, float pWidth, sVec3 pColour) {
    const sVec3 along = (pTip - pRoot) * 0.5f;
    const sFrame frame(Normalised(along));
    Add(eShape::Ball, Leaf, pColour).Place(pRoot + along, {along, frame.fV * 0.004f, frame.fU * pWidth});
  }

  /// A wall of the box pLow to pHigh with a hole; pAxis is its horizontal direction (0 x, 2 z).
  void WallAround(sVec3 pLow, sVec3 pHigh, sVec3 pHoleLow, sVec3 pHoleHigh, int pAxis, int pMaterial) {
    sVec3 low = pLow;
    sVec3 high = pHigh;
    high[pAxis] = pHoleLow[pAxis];
    Box(low, high, pMaterial);
    low[pAxis] = pHoleHigh[pAxis], high[pAxis] = pHigh[pAxis];
    Box(low, high, pMaterial);
    low[pAxis] = pHoleLow[pAxis], high[pAxis] = pHoleHigh[pAxis];
    Box({low.fX, pHoleHigh.fY, low.fZ}, high, pMaterial);
    if (pHoleLow.fY > pLow.fY) Box(low, {high.fX, pHoleLow.fY, high.fZ}, pMaterial);
  }

  void Walls() {
    Box({-3.3f, -0.2f, -0.3f}, {4.8f, 0.0f, 6.8f}, FloorBoards);
    Box({-3.3f, 2.7f, -0.3f}, {4.8f, 2.9f, 6.8f}, Ceiling, {0.70f, 0.67f, 0.60f});
    WallAround({-3.25f, 0.0f, -0.25f}, {3.2f, 2.7f, 0.0f}, {-2.4f, 0.75f, 0.0f}, {-0.1f, 2.35f, 0.0f}, 0,
               Wallpaper);
    WallAround({-3.25f, 0.0f, 0.0f}, {-3.0f, 2.7f, 6.75f}, {0.0f, 0.8f, 3.0f}, {0.0f, 2.3f, 4.6f}, 2, Brick);
    WallAround({3.0f, 0.0f, 0.0f}, {3.15f, 2.7f, 6.75f}, {0.0f, 0.0f, 1.05f}, {0.0f, 2.05f, 1.9f}, 2,
               Plaster);
    Box({-3.25f, 0.0f, 6.5f}, {3.2f, 2.7f, 6.75f}, Wallpaper);
    // The unlit passage behind the doorway.
    Box({4.5f, 0.0f, 0.4f}, {4.7f, 2.7f, 3.2f}, Plaster);
    Box({3.15f, 0.0f, 0.4f}, {4.6f, 2.7f, 0.6f}, Plaster);
    Box({3.15f, 0.0f, 3.0f}, {4.6f, 2.7f, 3.2f}, Plaster);
    for (const float z : {0.98f, 1.9f}) Box({2.97f, 0.0f, z}, {3.17f, 2.12f, z + 0.07f}, Matt, kWhitePaint);
    Box({2.97f, 2.05f, 0.98f}, {3.17f, 2.12f, 1.97f}, Matt, kWhitePaint);
    for (const float z : {0.9f, 2.5f, 4.1f, 5.7f})
      Box({-3.0f, 2.52f, z}, {3.0f, 2.7f, z + 0.16f}, Wood, kOak);
    Box({-0.75f, 0.0f, 1.0f}, {1.95f, 0.012f, 2.75f}, Rug);
  }

  void WindowFrames() {
    const sVec3 c = kWhitePaint;
    for (const float x : {-2.4f, -1.285f, -0.16f})
      Box({x, 0.75f, -0.16f}, {x + 0.06f, 2.35f, -0.10f}, Matt, c);
    for (const float y : {0.75f, 1.78f, 2.29f}) Box({-2.4f, y, -0.16f}, {-0.1f, y + 0.06f, -0.10f}, Matt, c);
    for (const float x : {-1.84f, -0.725f}) Box({x, 0.75f, -0.145f}, {x + 0.03f, 2.3f, -0.115f}, Matt, c);
    Box({-2.52f, 0.70f, -0.2f}, {0.02f, 0.75f, 0.13f}, Matt, c);
    Ball({-0.50f, 0.83f, 0.02f}, {0.08f, 0.08f, 0.08f}, Polished, {0.93f, 0.93f, 0.95f});
    for (const float z : {3.0f, 3.77f, 4.54f}) Box({-3.16f, 0.8f, z}, {-3.10f, 2.3f, z + 0.06f}, Matt, c);
    for (const float y : {0.8f, 1.75f, 2.24f}) Box({-3.16f, y, 3.0f}, {-3.10f, y + 0.06f, 4.6f}, Matt, c);
    Box({-3.2f, 0.75f, 2.9f}, {-2.88f, 0.8f, 4.7f}, Matt, c);
  }

  void Curtains() {
    Rod({-2.9f, 2.47f, 0.13f}, {0.40f, 2.47f, 0.13f}, 0.016f, Polished, kBrass);
    for (int i = 0; i < 16; ++i) {
      const auto fold = static_cast<float>(i % 8);
      const float x = (i < 8 ? -2.80f : -0.09f) + fold * 0.052f;
      const float radius = 0.034f + 0.012f * Hash01(static_cast<std::uint32_t>(i), 3);
      const float z = 0.13f + (i % 2 == 0 ? 0.022f : -0.018f);
      Cone({x, 0.03f, z}, 2.44f, radius * 1.15f, radius * 0.85f, Fabric, {0.42f, 0.030f, 0.040f});
    }
  }

  void Bookcase() {
    const float left = 0.62f;
    const float right = 1.98f;
    const float heights[] = {0.06f, 0.50f, 0.88f, 1.24f, 1.60f, 1.94f};
    Box({left, 0.0f, 0.0f}, {right, 1.98f, 0.02f}, Wood, kWalnut);
    for (const float x : {left, right - 0.035f})
      Box({x, 0.0f, 0.0f}, {x + 0.035f, 2.0f, 0.36f}, Wood, kWalnut);
    for (const float y : heights) Box({left, y, 0.0f}, {right, y + 0.03f, 0.35f}, Wood, kWalnut);
    for (std::uint32_t shelf = 0; shelf < 5; ++shelf) {
      const float foot = heights[shelf] + 0.03f;
      Books(left + 0.04f, right - 0.05f, foot, heights[shelf + 1] - foot, shelf);
    }
    Ball({1.60f, 2.10f, 0.18f}, {0.10f, 0.125f, 0.10f}, Glazed, {0.03f, 0.12f, 0.42f});
    Cone({1.60f, 2.2f, 0.18f}, 0.05f, 0.045f, 0.06f, Glazed, {0.03f, 0.12f, 0.42f});
    Ball({0.95f, 2.07f, 0.18f}, {0.10f, 0.10f, 0.10f}, Polished, {0.93f, 0.93f, 0.95f});
  }

  void Books(float pFrom, float pTo, float pFoot, float pHeight, std::uint32_t pShelf) {
    static constexpr sVec3 kBindings[] = {
        {0.42f, 0.030f, 0.028f}, {0.028f, 0.085f, 0.30f}, {0.035f, 0.20f, 0.075f},
        {0.60f, 0.34f, 0.035f},  {0.20f, 0.085f, 0.035f}, {0.55f, 0.48f, 0.35f},
        {0.035f, 0.22f, 0.26f},  {0.30f, 0.040f, 0.16f},  {0.035f, 0.035f, 0.04f}};
    float x = pFrom;
    for (std::uint32_t i = 0; x < pTo; ++i) {
      const std::uint32_t id = Hash(pShelf, i, 5);
      const float thick = 0.022f + 0.034f * Hash01(id, 1);
      const float high = pHeight * (0.66f + 0.26f * Hash01(id, 2));
      const float deep = 0.17f + 0.10f * Hash01(id, 3);
      const bool gap = Hash01(id, 4) > 0.93f;
      if (!gap && x + thick < pTo) {
        Box({x, pFoot, 0.03f}, {x + thick - 0.0015f, pFoot + high, 0.03f + deep}, Book,
            kBindings[Hash(id, 6) % 9]);
      }
      x += gap ? 0.07f : thick;
    }
  }

  void Lamp() {
    const sVec3 foot = {kBulb.fX, 0.0f, kBulb.fZ};
    Cone(foot, 0.03f, 0.15f, 0.13f, Polished, kBrass);
    Cone(foot, 1.52f, 0.014f, 0.012f, Polished, kBrass);
    Cone({foot.fX, 1.47f, foot.fZ}, 0.34f, 0.24f, 0.135f, LampShade, {9.0f, 5.2f, 2.1f}, eShape::Tube);
    Ball(kBulb, {0.032f, 0.04f, 0.032f}, Bulb, {900.0f, 560.0f, 250.0f});
  }

  void Armchair() {
    const sVec3 c = {0.018f, 0.155f, 0.165f};
    const float turn = -0.75f;
    const sVec3 at = {2.05f, 0.0f, 1.55f};
    const sVec3 side = {std::cos(turn), 0.0f, -std::sin(turn)};
    const sVec3 front = {std::sin(turn), 0.0f, std::cos(turn)};
    const sVec3 up = {0.0f, 1.0f, 0.0f};
    Block(at + up * 0.24f, {0.30f, 0.12f, 0.34f}, turn, Fabric, c);
    Add(eShape::Ball, Fabric, c * 1.15f)
        .Place(at + up * 0.38f + front * 0.04f, {side * 0.31f, up * 0.10f, front * 0.36f});
    Block(at + up * 0.55f - front * 0.34f, {0.36f, 0.41f, 0.075f}, turn, Fabric, c);
    Add(eShape::Ball, Fabric, c * 1.15f)
        .Place(at + up * 0.68f - front * 0.25f, {side * 0.31f, up * 0.27f, front * 0.09f});
    Rod(at + up * 0.95f - front * 0.34f - side * 0.36f, at + up * 0.95f - front * 0.34f + side * 0.36f,
        0.085f, Fabric, c);
    for (const float s : {-0.37f, 0.37f}) {
      Block(at + side * s + up * 0.33f, {0.075f, 0.22f, 0.36f}, turn, Fabric, c);
      Rod(at + side * s + up * 0.56f - front * 0.36f, at + side * s + up * 0.56f + front * 0.38f, 0.09f,
          Fabric, c);
    }
    for (const float s : {-0.3f, 0.3f}) Cone(at + side * s + front * 0.3f, 0.13f, 0.02f, 0.03f, Wood, kOak);
    Add(eShape::Ball, Fabric, {0.62f, 0.30f, 0.030f})
        .Place(at + up * 0.60f - front * 0.12f - side * 0.08f,
               {side * 0.19f, up * 0.18f + front * -0.05f, front * 0.065f + up * 0.018f});
  }

  void Table() {
    Cone({-0.95f, 0.715f, 3.60f}, 0.035f, 0.74f, 0.74f, Wood, {0.17f, 0.070f, 0.030f});
    Cone({-0.95f, 0.05f, 3.60f}, 0.67f, 0.05f, 0.045f, Wood, kWalnut);
    Ball({-0.95f, 0.35f, 3.60f}, {0.085f, 0.14f, 0.085f}, Wood, kWalnut);
    Cone({-0.95f, 0.0f, 3.60f}, 0.06f, 0.33f, 0.10f, Wood, kWalnut);
  }

  void StillLife() {
    const float top = 0.75f;
    const sVec3 bowl = {-0.98f, top, 3.74f};
    Cone(bowl, 0.015f, 0.08f, 0.075f, Glazed, {0.70f, 0.72f, 0.74f});
    Cone(bowl + sVec3{0.0f, 0.012f, 0.0f}, 0.085f, 0.09f, 0.21f, Glazed, {0.66f, 0.70f, 0.76f}, eShape::Tube);
    Cone(bowl + sVec3{0.0f, 0.085f, 0.0f}, 0.014f, 0.198f, 0.213f, Glazed, {0.03f, 0.09f, 0.38f},
         eShape::Tube);
    Cone(bowl + sVec3{0.0f, 0.02f, 0.0f}, 0.02f, 0.10f, 0.12f, Glazed, {0.66f, 0.70f, 0.76f});
    const sVec3 orange = {0.82f, 0.25f, 0.010f};
    const sVec3 red = {0.55f, 0.022f, 0.018f};
    const sVec3 green = {0.30f, 0.46f, 0.030f};
    const sVec3 lemon = {0.86f, 0.66f, 0.025f};
    const struct {
      sVec3 fAt;
      float fRadius;
      sVec3 fColour;
    } fruits[] = {{{-0.09f, 0.085f, 0.04f}, 0.050f, orange}, {{0.01f, 0.08f, 0.10f}, 0.046f, red},
                  {{0.10f, 0.085f, 0.03f}, 0.050f, orange},  {{0.05f, 0.085f, -0.08f}, 0.050f, green},
                  {{-0.06f, 0.085f, -0.08f}, 0.052f, red},   {{0.00f, 0.150f, 0.01f}, 0.051f, orange},
                  {{0.33f, 0.047f, -0.10f}, 0.047f, red},    {{0.235f, 0.049f, -0.02f}, 0.050f, orange}};
    for (const auto& fruit : fruits) {
      Ball(bowl + fruit.fAt, {fruit.fRadius, fruit.fRadius * 0.95f, fruit.fRadius}, Fruit, fruit.fColour);
    }
    Add(eShape::Ball, Fruit, lemon)
        .Place(bowl + sVec3{0.10f, 0.036f, 0.32f},
               {{0.045f, 0.0f, 0.025f}, {0.0f, 0.036f, 0.0f}, {-0.018f, 0.0f, 0.032f}});
    Add(eShape::Ball, Fruit, lemon)
        .Place(bowl + sVec3{-0.12f, 0.115f, -0.02f},
               {{0.02f, 0.0f, 0.042f}, {0.0f, 0.036f, 0.0f}, {0.032f, 0.0f, -0.015f}});
    for (std::uint32_t i = 0; i < 15; ++i) {
      const float row = static_cast<float>(i / 5);
      const sVec3 at = {-0.33f + 0.035f * static_cast<float>(i % 5) + 0.01f * row,
                        0.018f + 0.012f * Hash01(i, 9) + (i / 5 == 1 ? 0.02f : 0.0f),
                        0.16f + 0.03f * row + 0.01f * Hash01(i, 8)};
      Ball(bowl + at, {0.019f, 0.019f, 0.019f}, Fruit, {0.10f, 0.018f, 0.13f});
    }
    Candlestick({-1.38f, top, 3.40f});
    Carafe({-0.45f, top, 3.42f});
    const sVec3 book = {-0.58f, top, 3.98f};
    ClosedBook(book, {0.150f, 0.026f, 0.105f}, 0.35f, {0.05f, 0.13f, 0.42f});
    ClosedBook(book + sVec3{0.01f, 0.026f, 0.0f}, {0.130f, 0.034f, 0.095f}, 0.12f, {0.50f, 0.07f, 0.03f});
  }

  /// A lying book of pSize (half width, thickness, half depth).
  void ClosedBook(sVec3 pFoot, sVec3 pSize, float pTurn, sVec3 pColour) {
    const sVec3 page = {pSize.fX - 0.005f, 0.5f * pSize.fY - 0.003f, pSize.fZ - 0.005f};
    Block(pFoot + sVec3{0.0f, 0.5f * pSize.fY, 0.0f}, page, pTurn, Matt, {0.62f, 0.56f, 0.42f});
    for (const float y : {0.002f, pSize.fY - 0.002f}) {
      Block(pFoot + sVec3{0.0f, y, 0.0f}, {pSize.fX, 0.002f, pSize.fZ}, pTurn, Fabric, pColour);
    }
  }

  void Candlestick(sVec3 pFoot) {
    const sVec3 up = {0.0f, 1.0f, 0.0f};
    Cone(pFoot, 0.02f, 0.065f, 0.05f, Polished, kBrass);
    Cone(pFoot + up * 0.02f, 0.05f, 0.03f, 0.012f, Polished, kBrass);
    Ball(pFoot + up * 0.085f, {0.024f, 0.024f, 0.024f}, Polished, kBrass);
    Cone(pFoot + up * 0.10f, 0.08f, 0.012f, 0.018f, Polished, kBrass);
    Cone(pFoot + up * 0.18f, 0.012f, 0.036f, 0.040f, Polished, kBrass);
    Cone(pFoot + up * 0.19f, 0.20f, 0.0135f, 0.0120f, Matt, {0.78f, 0.74f, 0.62f});
    Cone(pFoot + up * 0.39f, 0.012f, 0.0015f, 0.0012f, Matt, {0.03f, 0.03f, 0.03f});
  }

  void Carafe(sVec3 pFoot) {
    const sVec3 up = {0.0f, 1.0f, 0.0f};
    const sVec3 tint = {0.62f, 0.86f, 0.72f};
    Cone(pFoot + up * 0.004f, 0.13f, 0.068f, 0.068f, Glass, tint, eShape::Tube);
    Cone(pFoot + up * 0.134f, 0.06f, 0.068f, 0.026f, Glass, tint, eShape::Tube);
    Cone(pFoot + up * 0.194f, 0.11f, 0.026f, 0.030f, Glass, tint, eShape::Tube);
    Cone(pFoot, 0.006f, 0.068f, 0.068f, Glass, tint);
    Cone(pFoot + up * 0.008f, 0.085f, 0.064f, 0.064f, Glass, {0.72f, 0.055f, 0.045f});
  }

  void Flowers() {
    const sVec3 foot = {-1.02f, 0.75f, 3.28f};
    const sVec3 blue = {0.018f, 0.085f, 0.42f};
    const sVec3 up = {0.0f, 1.0f, 0.0f};
    Cone(foot, 0.02f, 0.045f, 0.05f, Glazed, blue);
    Ball(foot + up * 0.095f, {0.085f, 0.09f, 0.085f}, Glazed, blue);
    Cone(foot + up * 0.165f, 0.075f, 0.046f, 0.036f, Glazed, blue);
    Cone(foot + up * 0.24f, 0.02f, 0.036f, 0.05f, Glazed, blue);
    const sVec3 petals[] = {
        {0.72f, 0.030f, 0.035f}, {0.86f, 0.50f, 0.020f}, {0.70f, 0.10f, 0.32f}, {0.80f, 0.74f, 0.66f}};
    for (std::uint32_t i = 0; i < 11; ++i) {
      const float turn = 2.4f * static_cast<float>(i);
      const float lean = 0.05f + 0.13f * Hash01(i, 21);
      const sVec3 head =
          foot + sVec3{std::cos(turn) * lean, 0.40f + 0.16f * Hash01(i, 22), std::sin(turn) * lean};
      const sVec3 root = foot + up * 0.24f;
      Rod(root, head, 0.0035f, Leaf, {0.07f, 0.17f, 0.030f});
      Blade(root, Mix(root, head, 0.75f) + sVec3{std::cos(turn + 1.0f), 0.2f, std::sin(turn + 1.0f)} * 0.10f,
            0.020f, {0.08f, 0.22f, 0.035f});
      Blossom(head, Normalised(head - root), petals[Hash(i, 23) % 4]);
    }
  }

  void Blossom(sVec3 pAt, sVec3 pUp, sVec3 pColour) {
    const sFrame frame(pUp);
    for (int i = 0; i < 6; ++i) {
      const float turn = static_cast<float>(i) * kPi / 3.0f;
      const sVec3 out = frame.fU * std::cos(turn) + frame.fV * std::sin(turn);
      const sVec3 side = frame.fV * std::cos(turn) - frame.fU * std::sin(turn);
      const sVec3 along = Normalised(out * 0.55f + pUp);
      Add(eShape::Ball, Leaf, pColour)
          .Place(pAt + along * 0.026f + out * 0.008f,
                 {along * 0.030f, Cross(side, along) * 0.006f, side * 0.018f});
    }
    Ball(pAt + pUp * 0.012f, {0.012f, 0.012f, 0.012f}, Matt, {0.20f, 0.13f, 0.02f});
  }

  void Plant() {
    const sVec3 foot = {-2.62f, 0.0f, 0.72f};
    Cone(foot, 0.34f, 0.14f, 0.20f, Matt, {0.46f, 0.17f, 0.085f});
    Cone(foot + sVec3{0.0f, 0.30f, 0.0f}, 0.05f, 0.205f, 0.215f, Matt, {0.48f, 0.18f, 0.09f});
    for (std::uint32_t i = 0; i < 34; ++i) {
      const float turn = 2.4f * static_cast<float>(i);
      const float lean = 0.08f + 0.34f * Hash01(i, 31);
      const sVec3 out = {std::cos(turn), 0.0f, std::sin(turn)};
      const sVec3 root = foot + sVec3{0.0f, 0.35f, 0.0f};
      const sVec3 knee = root + out * lean + sVec3{0.0f, 0.30f + 0.75f * Hash01(i, 32), 0.0f};
      Rod(root, knee, 0.004f, Leaf, {0.06f, 0.14f, 0.03f});
      const sVec3 tip =
          knee + out * (0.16f + 0.1f * Hash01(i, 33)) + sVec3{0.0f, 0.12f - 0.24f * Hash01(i, 34), 0.0f};
      Blade(knee - out * 0.02f, tip, 0.045f + 0.025f * Hash01(i, 35),
            Mix(sVec3{0.035f, 0.15f, 0.03f}, sVec3{0.14f, 0.30f, 0.04f}, Hash01(i, 36)));
    }
  }

  void Picture(sVec3 pLow, sVec3 pHigh, sVec3 pInwards) {
    const sVec3 rim =
        sVec3{0.07f, 0.07f, 0.07f} * (sVec3{1.0f, 1.0f, 1.0f} - Max(pInwards, pInwards * -1.0f));
    Box(pLow - rim, pHigh + rim, Wood, {0.55f, 0.36f, 0.11f});
    Box(pLow + pInwards * 0.008f, pHigh + pInwards * 0.008f, Painting);
    fShapes.back().fSeed = static_cast<std::uint32_t>(fShapes.size()) % 5;
  }

  void BackOfTheRoom() {
    Picture({-2.99f, 1.15f, 1.45f}, {-2.965f, 1.95f, 2.45f}, {1.0f, 0.0f, 0.0f});
    Picture({-1.0f, 1.2f, 6.46f}, {1.2f, 2.2f, 6.485f}, {0.0f, 0.0f, -1.0f});
    Picture({2.965f, 1.2f, 3.4f}, {2.99f, 2.0f, 4.5f}, {-1.0f, 0.0f, 0.0f});
    Box({-1.5f, 0.12f, 6.0f}, {1.7f, 0.88f, 6.5f}, Wood, kWalnut);
    for (const float x : {-1.45f, -0.40f, 0.65f})
      Box({x, 0.18f, 5.985f}, {x + 1.0f, 0.83f, 6.0f}, Wood, kOak);
    for (const float x : {-0.55f, 0.5f, 0.78f})
      Ball({x, 0.5f, 5.97f}, {0.018f, 0.018f, 0.018f}, Polished, kBrass);
    Ball({-1.0f, 1.03f, 6.25f}, {0.14f, 0.15f, 0.14f}, Glazed, {0.05f, 0.32f, 0.20f});
    Ball({1.25f, 0.99f, 6.25f}, {0.11f, 0.11f, 0.11f}, Polished, {0.93f, 0.93f, 0.95f});
    Cone({2.55f, 0.0f, 5.9f}, 0.5f, 0.28f, 0.34f, Glazed, {0.50f, 0.10f, 0.03f});
  }

  std::vector<sShape> fShapes;
};

}  // namespace

std::vector<sShape> FurnishRoom() {
  return cFurnisher().Furnish();
}

}  // namespace Scene
