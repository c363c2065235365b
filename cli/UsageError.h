#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace Tool {

/// What is wrong with a command line that pProgram refused, with what was probably meant.
std::string DescribeUsageError(const CLI::App& pProgram, const CLI::ParseError& pError);

}  // namespace Tool
