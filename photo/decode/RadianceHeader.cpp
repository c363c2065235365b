#include "photo/decode/RadianceHeader.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>

namespace Photo {
namespace {

/// XYZ as a colour space of its own: the primaries are the axes, the white is that of equal energy.
constexpr float kThird = 1.0f / 3.0f;
const sPrimaries kXYZPrimaries{{1.0f, 0.0f}, {0.0f, 1.0f}, {0.0f, 0.0f}, {kThird, kThird}};

/// The numbers behind the '=' of a header line, if they are pCount.
template <int tCount>
bool ReadNumbers(const std::string& pLine, double (&pNumbers)[tCount]) {
  std::istringstream text(pLine.substr(pLine.find('=') + 1));
  for (double& number : pNumbers) {
    if (!(text >> number)) return false;
  }
  return true;
}

/// A second line of the same kind multiplies with the first.
void Multiply(double& pScale, double pFactor) {
  if (std::isfinite(pFactor) && pFactor > 0.0) pScale *= pFactor;
}

void ReadLine(const std::string& pLine, sRadianceHeader& pHeader) {
  double one[1];
  double three[3];
  double eight[8];
  if (pLine.starts_with("EXPOSURE=") && ReadNumbers(pLine, one)) {
    for (double& scale : pHeader.fScale) Multiply(scale, one[0]);
  } else if (pLine.starts_with("COLORCORR=") && ReadNumbers(pLine, three)) {
    for (int i = 0; i < 3; ++i) Multiply(pHeader.fScale[i], three[i]);
  } else if (pLine.starts_with("PRIMARIES=") && ReadNumbers(pLine, eight)) {
    const auto point = [&](int pIndex) {
      return TmEngine::cVector2(static_cast<float>(eight[pIndex]), static_cast<float>(eight[pIndex + 1]));
    };
    pHeader.fPrimaries = sPrimaries{point(0), point(2), point(4), point(6)};
  }
}

/// The resolution line names the axis of the rows first; '-Y' runs down, '+X' to the right.
int ReadOrientation(const std::string& pLine) {
  const char* const kOrders[] = {"-Y+X", "-Y-X", "+Y-X", "+Y+X", "+X-Y", "-X-Y", "-X+Y", "+X+Y"};
  std::istringstream text(pLine);
  std::string first;
  std::string second;
  int size = 0;
  text >> first >> size >> second;
  for (int i = 0; i < static_cast<int>(std::size(kOrders)); ++i) {
    if (first + second == kOrders[i]) return i + 1;
  }
  return 1;
}

}  // namespace

sRadianceHeader ReadRadianceHeader(const std::string& pFile) {
  constexpr std::streamoff kLongest = 65536;
  sRadianceHeader header;
  std::ifstream stream(pFile, std::ios::binary);
  std::string line;
  if (!std::getline(stream, line) || !line.starts_with("#?")) return header;
  bool isXYZ = false;
  while (std::getline(stream, line) && stream.tellg() < kLongest) {
    if (line.empty() || line == "\r") {
      std::getline(stream, line);
      header.fOrientation = ReadOrientation(line);
      break;
    }
    ReadLine(line, header);
    isXYZ = isXYZ || (line.starts_with("FORMAT=") && line.find("xyze") != std::string::npos);
  }
  if (isXYZ) header.fPrimaries = kXYZPrimaries;
  return header;
}

}  // namespace Photo
