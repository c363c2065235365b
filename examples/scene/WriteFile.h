#pragma once

#include <functional>
#include <string>

namespace Scene {

/// Lets pWrite make the file whose name it gets, beside pPath, and gives it the name pPath when it is whole;
/// a failure leaves neither behind. Throws std::runtime_error that names pPath and the reason.
void WriteWhole(const std::string& pPath, const std::function<void(const std::string&)>& pWrite);

}  // namespace Scene
