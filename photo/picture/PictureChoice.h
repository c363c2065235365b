#pragma once

#include <string>
#include <vector>

namespace Photo {

/// What is taken of a file that holds more than one picture.
struct sPictureChoice {
  /// Of OpenEXR, by its number from 0 on, or its name; "" for the first one with colours.
  std::string fPart = {};
  std::string fLayer = {};     ///< Of OpenEXR; "" for the channels without a layer's name.
  int fPage = 0;               ///< Of other formats, counted from 1; 0 for the first or main one.
  bool fTakesSingle = false;   ///< Files of a single picture are taken whatever fPage is.
  bool fIgnoresAlpha = false;  ///< The stored colours are the picture, whatever alpha says.

  bool IsDefault() const { return fPart.empty() && fLayer.empty(); }
};

/// A part of a file, and the names in it.
struct sPicturePart {
  std::string fName;
  std::vector<std::string> fChannels;
  std::vector<std::string> fLayers;  ///< Those with colours; "" for the channels without a layer's name.
};

}  // namespace Photo
