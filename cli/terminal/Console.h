#pragma once

#include <string>

namespace Tool {

// All that people and other programs read of this program, but for pictures.

/// Opens the standard streams that are closed, so that no file takes their numbers. Writing to such an output
/// and reading from such an input fails.
void OpenMissingStreams();

/// Thrown where nobody reads the standard output any more: the program ends without a message.
struct sOutputClosed {};

/// Writes pText to standard output. Throws cFailure (cannot write) where not all of it arrives, and
/// sOutputClosed.
void Print(const std::string& pText);

/// A name as Print should get it: printable for a terminal, byte for byte for a file and another program.
std::string NameForOutput(const std::string& pName);

/// Writes a line to standard error, printable whatever it holds. pColour: what a terminal takes for one.
void PrintMessage(const std::string& pLine, const char* pColour = "");

}  // namespace Tool
