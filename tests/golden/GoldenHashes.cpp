// Every compiler, optimisation level, sanitizer and processor gives the same bytes: the hashes of pictures,
// and of what they are computed with (ArithmeticHashes.cpp), are in hashes.txt.
//
//   golden-hashes hashes.txt            compares, names what differs
//   golden-hashes --update hashes.txt   writes the table anew, after a change that is meant to change bytes
//
// A program without a test framework, so that it also runs where only a C++ compiler is.
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "engine/cColorEqRenderer.h"
#include "engine/cTmRenderer.h"
#include "engine/curve/cHermiteSpline.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapXYZ32.h"
#include "tests/export/HostCall.h"
#include "tests/golden/GoldenTable.h"

using namespace TmEngine;

namespace {

using tImage = std::unique_ptr<cBitmapLDR>;

std::string Hash(const unsigned char* pBytes, std::size_t pCount) {
  cHash hash;
  hash.AddBytes(pBytes, pCount);
  return hash.Text();
}

struct sSliders {
  const char* fName;
  tm_quorvane_settings fSettings;
};

void HashCall(tTable& pTable, const std::string& pName, const tm_quorvane_image& pImage, int pColorSpace,
              const tm_quorvane_settings& pSettings) {
  sCall call(pImage);
  call.fSettings = pSettings;
  const bool done = call.Run(pColorSpace) == 1;
  pTable[pName] = done ? Hash(call.fOutput.data(), call.fOutput.size()) : "failed";
}

/// All depths, spaces and sliders.
void HashCalls(tTable& pTable) {
  const sSliders kSliders[] = {{"neutral", {}},
                               {"strong", {160, 8, 20, 40, 1, 9, {}, 0, {}, 0}},
                               {"expanded", {-230, -10, 3, 10, 0.5f, -10, {}, 0, {}, 1}},
                               {"panorama", {60, -3, 7, 2, 0.1f, 4, {}, 0, {}, 1}}};
  for (const int inputBits : {8, 16, 32}) {
    for (const int outputBits : {8, 16}) {
      for (int colorSpace = 0; colorSpace < 3; ++colorSpace) {
        for (const sSliders& sliders : kSliders) {
          const std::string name = std::to_string(inputBits) + "-" + std::to_string(outputBits) + "-" +
                                   std::to_string(colorSpace) + "-" + sliders.fName;
          HashCall(pTable, name, HostImage(203, 91, inputBits, outputBits), colorSpace, sliders.fSettings);
        }
      }
    }
  }
}

/// Black and white points that cross are not stretched: the exposure scale decides, most below strength 0.
void HashFallback(tTable& pTable) {
  for (const int inputBits : {8, 16, 32}) {
    for (const int weakness : {10, 40, 70, 100, 130, 200}) {
      tm_quorvane_settings settings = {};
      settings.strength = static_cast<float>(-weakness);
      settings.white_clip = 2000.0f;
      settings.black_clip = 100.0f;
      const std::string name = "fallback-" + std::to_string(inputBits) + "-" + std::to_string(weakness);
      HashCall(pTable, name, HostImage(203, 91, inputBits, 16), 0, settings);
    }
  }
}

/// Each slider far out of range, alone and beside another. Finer cells than sliders ask for would take a
/// large part of the machine's memory.
void HashFarOut(tTable& pTable) {
  constexpr float kFar = 1e6f, kFarther = 1e30f;
  const sSliders kSliders[] = {{"strength", {1000, 0, 0, 0, 0, 0, {}, 0, {}, 0}},
                               {"strength-negative", {-1000, 0, 0, 0, 0, 0, {}, 0, {}, 0}},
                               {"lighting", {0, kFar, 0, 0, 0, 0, {}, 0, {}, 0}},
                               {"lighting-negative", {0, -kFarther, 0, 0, 0, 0, {}, 0, {}, 0}},
                               {"compression", {-100, 0, kFarther, 0, 0, 0, {}, 0, {}, 0}},
                               {"compression-negative", {100, 0, -kFar, 0, 0, 0, {}, 0, {}, 0}},
                               {"white", {-70, 0, 0, kFarther, 0, 0, {}, 0, {}, 0}},
                               {"white-negative", {0, 0, 0, -kFar, 0, 0, {}, 0, {}, 1}},
                               {"black", {-40, 0, 0, 0, kFar, 0, {}, 0, {}, 0}},
                               {"black-negative", {0, 0, 5, 0, -kFarther, 0, {}, 0, {}, 1}},
                               {"microcontrast-negative", {0, 0, 0, 0, 0, -kFar, {}, 0, {}, 0}},
                               {"points", {-kFar, 8, 0, kFar, kFar, 0, {}, 0, {}, 0}},
                               {"cells", {50, -kFar, 0, 5, 1, -kFarther, {}, 0, {}, 0}}};
  for (const sSliders& sliders : kSliders) {
    HashCall(pTable, std::string("far-") + sliders.fName, HostImage(97, 61, 32, 16), 0, sliders.fSettings);
  }
}

/// Odd sizes, four samples per pixel, both channel orders.
void HashShapes(tTable& pTable) {
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 700}, {700, 1}, {17, 33}, {640, 360}, {2500, 3}}) {
    for (const int reversed : {0, 1}) {
      tm_quorvane_image image = HostImage(width, height, 32, 16);
      image.reversed_order = reversed;
      const std::string name = "shape-" + std::to_string(width) + "x" + std::to_string(height) + "-";
      HashCall(pTable, name + std::to_string(reversed), image, 0,
               {90, 2, 5, 5, 0.2f, 3, {}, 0, {}, static_cast<float>(reversed)});
    }
  }
}

void FillWithNoise(float* pSamples, int pCount) {
  cRandom random(11);
  for (int i = 0; i < pCount; ++i) {
    const auto scale = static_cast<float>(1 << random.Below(12));
    pSamples[i] = scale * random.Unit();
  }
}

/// What a host cannot choose: smoothing of the base layer, contrast, exposure, hue curves.
void HashRenderer(tTable& pTable) {
  cBitmapXYZ32 input(120, 80);
  FillWithNoise(input.GetBitmapData(), 3 * 120 * 80);
  cBitmapBGR16 output(120, 80, eColorSpaceID_AdobeRGB98);
  for (const float amount : {0.0f, 30.0f, 100.0f}) {
    const auto renderer = std::make_unique<cTmRenderer>();
    renderer->SetInput(&input);
    renderer->SetOutput(&output);
    renderer->SetToneParameters(
        amount, amount / 9,
        amount<50, amount - 60, true, amount / 50, 180 - amount, amount, amount, amount> 20, false, false,
        amount / 70, amount / 200);
    renderer->Render();
    pTable["renderer-" + std::to_string(static_cast<int>(amount))] =
        Hash(output.GetBitmapData(), std::size_t{720} * 80);
  }
}

tImage NoisyImage(int pDepth, eColorSpaceID pSpace) {
  tImage image;
  if (pDepth == 8) {
    image = std::make_unique<cBitmapBGR8>(120, 80, pSpace);
  } else {
    image = std::make_unique<cBitmapBGR16>(120, 80, pSpace);
  }
  cRandom random(3);
  for (int i = 0; i < image->GetStride() * 80; ++i)
    image->GetBitmapData()[i] = static_cast<unsigned char>(random.Next());
  return image;
}

/// Colours that keep hue and purity, in each space and depth, and of other saturation.
void HashColorRendering(tTable& pTable) {
  cBitmapXYZ32 input(120, 80);
  FillWithNoise(input.GetBitmapData(), 3 * 120 * 80);
  const sControlPoint points[] = {{{0.0f, 0.7f}, {0.1f, 0.2f}, {0.2f, 0.1f}},
                                  {{1.0f, 0.4f}, {0.2f, -0.3f}, {0.1f, 0.0f}}};
  cHermiteSpline curve;
  curve.SetControlPoints(eSplineInterpolationMode_Supplied, 2, points);
  for (int space = 0; space < 3; ++space) {
    const auto id = static_cast<eColorSpaceID>(space);
    for (const int depth : {8, 16}) {
      const tImage output = NoisyImage(depth, id);
      const auto renderer = std::make_unique<cTmRenderer>();
      renderer->SetRendering(eRendering_Colors);
      renderer->SetInput(&input);
      renderer->SetOutput(output.get());
      if (space == 2) renderer->SetHueCurves(&curve, &curve, &curve);
      renderer->SetToneParameters(60.0f, 0.5f, true, 20.0f, true, 0.0f, 90.0f, 50.0f, 0.0f, false, false,
                                  false, 0.5f, 0.3f);
      renderer->Render();
      pTable["colors-" + std::to_string(depth) + "-" + std::to_string(space)] =
          Hash(output->GetBitmapData(), static_cast<std::size_t>(output->GetStride()) * 80);
    }
  }
}

void HashEqualiser(tTable& pTable) {
  const sControlPoint points[] = {{{0.0f, 0.4f}, {0.1f, 0.2f}, {0.2f, 0.1f}},
                                  {{0.3f, 0.7f}, {0.1f, 0.0f}, {0.3f, 0.3f}},
                                  {{1.0f, 0.55f}, {0.2f, -0.3f}, {0.1f, 0.0f}}};
  for (const int depth : {8, 16}) {
    for (int space = 0; space < 3; ++space) {
      for (const int mode : {0, 1, 2, 3}) {
        cHermiteSpline curve;
        curve.SetControlPoints(static_cast<eSplineInterpolationMode>(mode), 3, points);
        const auto id = static_cast<eColorSpaceID>(space);
        const tImage input = NoisyImage(depth, id), output = NoisyImage(24 - depth, id);
        const auto renderer = std::make_unique<cColorEqRenderer>();
        renderer->SetInput(input.get());
        renderer->SetOutput(output.get());
        renderer->SetHueCurves(&curve, &curve, &curve);
        renderer->Render();
        const std::string name = "equaliser-" + std::to_string(depth) + "-" + std::to_string(space) + "-";
        pTable[name + std::to_string(mode)] =
            Hash(output->GetBitmapData(), static_cast<std::size_t>(output->GetStride()) * 80);
      }
    }
  }
}

int Update(const tTable& pTable, const char* pPath) {
  std::ofstream file(pPath);
  for (const auto& [name, hash] : pTable) file << name << " " << hash << "\n";
  file.close();
  return file ? 0 : 2;
}

int Compare(const tTable& pTable, const char* pPath) {
  tTable golden;
  std::ifstream file(pPath);
  for (std::string name, hash; file >> name >> hash;) golden[name] = hash;
  int differing = 0;
  for (const auto& [name, hash] : pTable) {
    if (golden[name] == hash) continue;
    std::printf("%s: %s, golden %s\n", name.c_str(), hash.c_str(), golden[name].c_str());
    ++differing;
  }
  std::printf("%d of %zu hashes differ\n", differing, pTable.size());
  return differing == 0 && golden.size() == pTable.size() ? 0 : 1;
}

}  // namespace

int main(int pCount, char** pArguments) {
  const bool update = pCount == 3 && std::string(pArguments[1]) == "--update";
  if (pCount != 2 && !update) {
    std::fprintf(stderr, "usage: golden-hashes [--update] hashes.txt\n");
    return 2;
  }
  tTable table;
  HashCalls(table);
  HashFallback(table);
  HashFarOut(table);
  HashShapes(table);
  HashRenderer(table);
  HashColorRendering(table);
  HashEqualiser(table);
  HashArithmetic(table);
  return update ? Update(table, pArguments[2]) : Compare(table, pArguments[1]);
}
