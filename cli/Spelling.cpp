#include "cli/Spelling.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Tool {
namespace {

std::size_t CountMistakes(const std::string& pA, const std::string& pB) {
  using tRow = std::vector<std::size_t>;
  std::array<tRow, 3> rows;  // of the present letter of pA, and of the two before it
  rows.fill(tRow(pB.size() + 1));
  auto& [row, last, before] = rows;
  for (std::size_t k = 0; k <= pB.size(); ++k) row[k] = k;
  for (std::size_t i = 1; i <= pA.size(); ++i) {
    std::swap(last, before);
    std::swap(row, last);
    row[0] = i;
    for (std::size_t k = 1; k <= pB.size(); ++k) {
      const bool isSame = pA[i - 1] == pB[k - 1];
      row[k] = std::min({last[k] + 1, row[k - 1] + 1, last[k - 1] + (isSame ? 0 : 1)});
      const bool isSwapped = i > 1 && k > 1 && pA[i - 1] == pB[k - 2] && pA[i - 2] == pB[k - 1];
      if (isSwapped) row[k] = std::min(row[k], before[k - 2] + 1);
    }
  }
  return row[pB.size()];
}

}  // namespace

std::string FindNearest(const std::string& pTyped, const std::vector<std::string>& pWords) {
  constexpr std::size_t kLongest = 40;  // of what may be a word
  std::size_t fewest = std::min<std::size_t>(2, pTyped.size() / 3) + 1;
  std::string nearest;
  if (pTyped.size() > kLongest) return nearest;
  for (const std::string& word : pWords) {
    const std::size_t mistakes = CountMistakes(pTyped, word);
    if (mistakes >= fewest) continue;
    fewest = mistakes;
    nearest = word;
  }
  return nearest;
}

}  // namespace Tool
