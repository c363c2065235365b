#pragma once

#include <string>
#include <vector>

namespace Photo {

/// What is taken of a file that holds more than one picture.
struct sPictureChoice {
  /// Part of an OpenEXR file, by number from 0 or by name; "" for the first part with colours.
  std::string fPart = {};
  std::string fLayer = {};     ///< Layer of an OpenEXR file; "" for channels without a layer's name.
  int fPage = 0;               ///< Page of other formats, counted from 1; 0 for the first or main one.
  bool fTakesSingle = false;   ///< fPage does not matter for files of a single picture.
  bool fIgnoresAlpha = false;  ///< The stored colours are the picture, without alpha.

  bool IsDefault() const { return fPart.empty() && fLayer.empty(); }
};

/// A part of a file, and the names in it.
struct sPicturePart {
  std::string fName;
  std::vector<std::string> fChannels;
  std::vector<std::string> fLayers;  ///< Layers with colours; "" for channels without a layer's name.
};

}  // namespace Photo
