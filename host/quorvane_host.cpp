#include "quorvane_host.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <typeinfo>

#if defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

#include "host/OwnLog.h"
#include "host/Reason.h"
#include "quorvane.hpp"

namespace {

struct sReason {
  char* fText;
  std::size_t fSize;
};

struct sLog {
  std::int32_t fTo;
  quorvane_host_line fLine;
  void* fUser;
};

struct sPixels {
  const void* fInput;
  std::size_t fInputSize;
  void* fOutput;
  std::size_t fOutputSize;
};

struct sCall {
  tm_quorvane_image fImage;
  tm_quorvane_settings fSettings;
  std::int32_t fColorSpace;
  sPixels fPixels;
};

std::int32_t End(const sReason& pReason, std::int32_t pResult, const char* pText) {
  WriteReason(pText, pReason.fText, pReason.fSize);
  return pResult;
}

/// The library's errors have classes of its own, which a host sees by their names alone.
std::int32_t ResultOf(const std::exception& pError) {
  const char* const name = typeid(pError).name();
  const auto is = [=](const char* pClass) { return std::strstr(name, pClass) != nullptr; };
  if (is("cOutOfMemoryException")) return QUORVANE_HOST_OUT_OF_MEMORY;
  if (is("cArgument") || is("cInvalidOperationException")) return QUORVANE_HOST_INVALID_ARGUMENT;
  return QUORVANE_HOST_FAILED;
}

/// What pWork returns, or the result that its exception stands for. The end of a thread is a reference to
/// nothing.
template <class tWork>
__attribute__((no_sanitize("undefined"))) std::int32_t Guard(const sReason& pReason, const tWork& pWork) {
  try {
    return pWork();
#if defined(__GLIBCXX__)
  } catch (const abi::__forced_unwind&) {
    throw;  // the thread ends
#endif
  } catch (const cLogRefused& error) {
    return End(pReason, QUORVANE_HOST_LOG_REFUSED, error.what());
  } catch (const quorvane::unsupported_error& error) {
    return End(pReason, QUORVANE_HOST_UNSUPPORTED, error.what());
  } catch (const std::invalid_argument& error) {
    return End(pReason, QUORVANE_HOST_INVALID_ARGUMENT, error.what());
  } catch (const std::bad_alloc&) {
    return End(pReason, QUORVANE_HOST_OUT_OF_MEMORY, "Out of memory.");
  } catch (const std::exception& error) {
    return End(pReason, ResultOf(error), error.what());
  } catch (...) {
    return End(pReason, QUORVANE_HOST_FAILED, "An exception that is not derived from std::exception.");
  }
}

std::int32_t Tonemap(const sCall& pCall, const sReason& pReason) {
  return Guard(pReason, [&] {
    const sPixels& pixels = pCall.fPixels;
    quorvane::tonemap(pCall.fImage, pCall.fColorSpace, pCall.fSettings, pixels.fInput, pixels.fInputSize,
                      pixels.fOutput, pixels.fOutputSize);
    return QUORVANE_HOST_DONE;
  });
}

/// Whether the callback took all lines. One that throws gets no more of them.
bool HandOver(std::string& pText, const sLog& pLog) {
  for (std::size_t start = 0, end = 0; start < pText.size(); start = end + 1) {
    end = pText.find('\n', start);
    if (end == std::string::npos) end = pText.size();
    pText[end] = '\0';
    const auto handLine = [&] {
      pLog.fLine(pLog.fUser, &pText[start]);
      return QUORVANE_HOST_DONE;
    };
    if (Guard({nullptr, 0}, handLine) != QUORVANE_HOST_DONE) return false;
  }
  return true;
}

std::int32_t TonemapWithOwnLog(const sCall& pCall, const sLog& pLog, const sReason& pReason) {
  std::int32_t result = QUORVANE_HOST_FAILED;
  sOwnLog log = RunWithOwnLog([&] { result = Tonemap(pCall, pReason); });
  if (pLog.fTo == QUORVANE_HOST_LOG_NONE) return result;
  const bool areTaken = HandOver(log.fText, pLog) && log.fIsWhole;
  if (areTaken || result != QUORVANE_HOST_DONE) return result;
  return End(pReason, QUORVANE_HOST_LOG_LOST, "The picture is done, but lines of its log were lost.");
}

void CheckArguments(const tm_quorvane_image* pImage, const tm_quorvane_settings* pSettings,
                    const sLog& pLog) {
  if (pImage == nullptr) throw std::invalid_argument("The image is NULL.");
  if (pSettings == nullptr) throw std::invalid_argument("The settings are NULL.");
  if (pLog.fTo < QUORVANE_HOST_LOG_STDERR || pLog.fTo > QUORVANE_HOST_LOG_CALLBACK)
    throw std::invalid_argument("The log must be 0, 1 or 2.");
  if (pLog.fTo == QUORVANE_HOST_LOG_CALLBACK && pLog.fLine == nullptr)
    throw std::invalid_argument("The log's callback is NULL.");
}

/// Hosts may keep the record unaligned.
tm_quorvane_image Aligned(const tm_quorvane_image* pImage) {
  tm_quorvane_image image;
  std::memcpy(&image, static_cast<const void*>(pImage), sizeof image);
  return image;
}

}  // namespace

int32_t quorvane_host_tonemap(const tm_quorvane_image* pImage, int32_t pColorSpace,
                              const tm_quorvane_settings* pSettings, const void* pInput, size_t pInputSize,
                              void* pOutput, size_t pOutputSize, int32_t pLogTo, quorvane_host_line pLine,
                              void* pUser, char* pReason, size_t pReasonSize) {
  const sReason reason = {pReason, pReasonSize};
  const sLog log = {pLogTo, pLine, pUser};
  WriteReason("", pReason, pReasonSize);
  return Guard(reason, [&] {
    CheckArguments(pImage, pSettings, log);
    sCall call = {Aligned(pImage), {}, pColorSpace, {pInput, pInputSize, pOutput, pOutputSize}};
    std::memcpy(&call.fSettings, static_cast<const void*>(pSettings), sizeof call.fSettings);
    if (log.fTo == QUORVANE_HOST_LOG_STDERR) return Tonemap(call, reason);
    return TonemapWithOwnLog(call, log, reason);
  });
}

uint64_t quorvane_host_input_size(const tm_quorvane_image* pImage) {
  return quorvane::input_size(Aligned(pImage));
}

uint64_t quorvane_host_output_size(const tm_quorvane_image* pImage) {
  return quorvane::output_size(Aligned(pImage));
}
