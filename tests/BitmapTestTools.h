#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/ExceptionCheck.h"

/// An allocation that cannot be had is null under the address sanitizer too. Once in a test program.
#define TM_TEST_NULL_ON_HUGE_ALLOCATION                                                    \
  extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() { \
    return "allocator_may_return_null=1";                                                  \
  }

/// One row of a table of checks: a call that breaks this check and, as far as it can, all later ones.
struct sCheckRow {
  std::function<std::string(const std::string&)> fExpect;  ///< Makes the call; takes the text.
  std::string fText;
};

template <class tException, class tCall>
sCheckRow CheckRow(const std::string& pText, const tCall& pCall) {
  return {[pCall](const std::string& pExpected) { return ExpectThrow<tException>(pCall, pExpected); }, pText};
}

// Rows, by the exception's class.
#define TM_ARG(pText, ...) CheckRow<cArgumentException>(pText, [&] { __VA_ARGS__; })
#define TM_NULL(pText, ...) CheckRow<cArgumentNullException>(pText, [&] { __VA_ARGS__; })
#define TM_STATE(pText, ...) CheckRow<cInvalidOperationException>(pText, [&] { __VA_ARGS__; })
#define TM_MEMORY(pText, ...) CheckRow<cOutOfMemoryException>(pText, [&] { __VA_ARGS__; })

/// Every row throws its class and text in the name of pSignature.
inline void ExpectChecks(const std::string& pSignature, const std::vector<sCheckRow>& pRows) {
  for (const sCheckRow& row : pRows) EXPECT_EQ(row.fExpect(row.fText), pSignature) << row.fText;
}

/// The checks of a partner that must not be null and must have the size of pOther; pCall takes the partner.
/// pNarrowLow differs in both sizes, pLow in the height.
template <class tPartner, class tCall>
void ExpectPartnerChecks(const std::string& pSignature, const std::string& pName, const std::string& pOther,
                         tPartner& pNarrowLow, tPartner& pLow, const tCall& pCall) {
  using namespace TmEngine;
  const std::string name = "Argument " + pName, equal = " must be equal to " + pOther;
  ExpectChecks(pSignature, {TM_NULL(name + " cannot be null.", pCall(nullptr)),
                            TM_ARG(name + "->fWidth" + equal + "->fWidth.", pCall(&pNarrowLow)),
                            TM_ARG(name + "->fHeight" + equal + "->fHeight.", pCall(&pLow))});
}
