#pragma once

#include <gtest/gtest.h>

#include <string>

#include "engine/cException.h"

/// Expects that pCall throws exactly tException with the message pText, and returns the throw's signature
/// text.
template <class tException, class tCall>
std::string ExpectThrow(const tCall& pCall, const std::string& pText) {
  try {
    pCall();
  } catch (const tException& exception) {
    EXPECT_EQ(typeid(exception), typeid(tException));
    EXPECT_EQ(std::string(exception.GetMessage()), pText);
    return exception.GetFunction() == nullptr ? "" : exception.GetFunction();
  } catch (const std::exception& exception) {
    ADD_FAILURE() << "another exception: " << exception.what() << ", expected: " << pText;
    return "";
  }
  ADD_FAILURE() << "no exception, expected: " << pText;
  return "";
}
