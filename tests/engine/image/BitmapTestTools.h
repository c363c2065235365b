#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/ExceptionCheck.h"

/// Makes a failed allocation return null under the address sanitizer too. Once in a test program.
#define TM_TEST_NULL_ON_HUGE_ALLOCATION                                                    \
  extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() { \
    return "allocator_may_return_null=1";                                                  \
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
