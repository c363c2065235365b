#pragma once

namespace Tool {

/// What standard output can show.
struct sTerminal {
  int fWidth = 80;       ///< Columns.
  bool fIsUtf8 = false;  ///< By the environment's locale.
  bool fHasColor = false;
};

/// A file or a pipe has 80 columns, unless COLUMNS says otherwise, and no colour. NO_COLOR is honoured.
sTerminal GetTerminal();

}  // namespace Tool
