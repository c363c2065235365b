#include "photo/render/CurvePoints.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "photo/base/FloatText.h"

namespace Photo {
namespace {

using TmEngine::cVector2;

constexpr std::size_t kMostPoints = 100;
constexpr float kCircle = 360.0f;

std::string Quote(std::string_view pText) {
  return "'" + std::string(pText) + "'";
}

std::string_view TrimBlanks(std::string_view pText) {
  const std::size_t first = pText.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return pText.substr(first, pText.find_last_not_of(' ') - first + 1);
}

/// pWhat and pPoint: for the message only.
float ParseNumber(std::string_view pText, int pHighest, const char* pWhat, std::string_view pPoint) {
  const std::string_view text = TrimBlanks(pText);
  const std::optional<float> number = ParseFloat(text);
  if (number && *number >= 0.0f && *number <= static_cast<float>(pHighest)) return *number;
  throw std::invalid_argument("the " + std::string(pWhat) + " of " + Quote(pPoint) +
                              " is not a number from 0 to " + std::to_string(pHighest));
}

cVector2 ParsePoint(std::string_view pText) {
  const std::size_t colon = pText.find(':');
  if (colon == std::string_view::npos) throw std::invalid_argument(Quote(pText) + " is not HUE:VALUE");
  return {ParseNumber(pText.substr(0, colon), 360, "hue", pText),
          ParseNumber(pText.substr(colon + 1), 1, "value", pText)};
}

std::vector<std::string_view> Split(std::string_view pText) {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0; start <= pText.size();) {
    const std::size_t end = std::min(pText.find(',', start), pText.size());
    parts.push_back(pText.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

/// The value at 360 degrees where no point lies.
float ValueAtSeam(const tHuePoints& pPoints) {
  const cVector2 first = pPoints.front();
  const cVector2 last = pPoints.back();
  const float toSeam = kCircle - last.fX;
  return last.fY + (first.fY - last.fY) * (toSeam / (toSeam + first.fX));
}

}  // namespace

tHuePoints ParseHuePoints(const std::string& pText) {
  const std::vector<std::string_view> parts = Split(pText);
  if (parts.size() > kMostPoints) {
    throw std::invalid_argument("has " + std::to_string(parts.size()) + " points; a curve takes 1 to " +
                                std::to_string(kMostPoints));
  }
  tHuePoints points;
  std::transform(parts.begin(), parts.end(), std::back_inserter(points), ParsePoint);
  std::sort(points.begin(), points.end(),
            [](const cVector2& pA, const cVector2& pB) { return pA.fX < pB.fX; });
  const auto twin = std::adjacent_find(points.begin(), points.end(),
                                       [](const cVector2& pA, const cVector2& pB) { return pA.fX == pB.fX; });
  if (twin == points.end()) return points;
  throw std::invalid_argument("the hue " + ToText(twin->fX) + " has two values");
}

tHuePoints CloseCircle(const tHuePoints& pPoints) {
  if (pPoints.empty()) return {{0.0f, 0.5f}, {kCircle, 0.5f}};
  tHuePoints closed = pPoints;
  if (closed.back().fX != kCircle) closed.emplace_back(kCircle, ValueAtSeam(pPoints));
  if (closed.front().fX != 0.0f) closed.emplace(closed.begin(), 0.0f, closed.back().fY);
  return closed;
}

std::unique_ptr<TmEngine::cHermiteSpline> MakeHueCurve(const tHuePoints& pPoints,
                                                       TmEngine::eSplineInterpolationMode pMode) {
  std::vector<TmEngine::sControlPoint> points;
  for (const cVector2& point : CloseCircle(pPoints)) {
    points.push_back({{point.fX / kCircle, point.fY}, {}, {}, 0});
  }
  auto curve = std::make_unique<TmEngine::cHermiteSpline>();
  curve->SetControlPoints(pMode, static_cast<int>(points.size()), points.data());
  return curve;
}

}  // namespace Photo
