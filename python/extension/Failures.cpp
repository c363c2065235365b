#include "python/extension/Failures.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <utility>

#include "engine/base/cException.h"
#include "photo/base/Failure.h"

namespace Python {
namespace {

namespace py = pybind11;

py::object FindError(const char* pName) {
  return py::module_::import("quorvane._errors").attr(pName);
}

/// Names of files, and texts in files, may hold anything.
py::str ToText(const std::string& pText) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(pText.data(), static_cast<Py_ssize_t>(pText.size()), "backslashreplace"));
}

void Raise(const py::object& pType, const std::string& pText) {
  PyErr_SetObject(pType.ptr(), ToText(pText).ptr());
}

/// The system's reason for not opening a file, or 0.
int FindReadError(const std::string& pFile) {
  const int handle = open(pFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (handle < 0) return errno;
  struct stat status = {};
  const bool isFolder = fstat(handle, &status) == 0 && S_ISDIR(status.st_mode);
  close(handle);
  return isFolder ? EISDIR : 0;
}

/// The system's reason for not writing a file, as far as it shows by its place.
int FindWriteError(const std::string& pFile, const std::string& pReason) {
  if (pReason.starts_with("exists already")) return EEXIST;
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::file_status status = fs::status(pFile, error);
  const fs::path folder = fs::absolute(pFile, error).parent_path();
  if (fs::is_directory(status)) return EISDIR;
  if (!fs::exists(folder, error)) return ENOENT;
  if (access(folder.c_str(), W_OK) != 0) return errno;
  return fs::exists(status) && access(pFile.c_str(), W_OK) != 0 ? errno : EIO;
}

/// OSError chooses the class by the number: FileNotFoundError and the like.
void RaiseOSError(int pNumber, const std::string& pReason, const std::string& pFile) {
  const auto type = py::reinterpret_borrow<py::object>(PyExc_OSError);
  const auto name = py::reinterpret_steal<py::object>(
      PyUnicode_DecodeFSDefaultAndSize(pFile.data(), static_cast<Py_ssize_t>(pFile.size())));
  const py::object error = type(pNumber, ToText(pReason), name);
  PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
}

/// Parameters under the names of keywords.
std::string NameKeywords(const std::string& pReason) {
  std::string text = pReason;
  for (const auto& [name, keyword] : {std::pair<std::string, const char*>{"{skip-existing}", "skip_existing"},
                                      {"{list-presets}", "quorvane.presets"}}) {
    const std::size_t at = text.find(name);
    if (at != std::string::npos) text.replace(at, name.size(), keyword);
  }
  return Photo::NameParameters(text);
}

void RaiseFailure(const Photo::cFailure& pFailure) {
  using Photo::eFailure;
  const std::string reason = NameKeywords(pFailure.GetReason());
  const std::string& file = pFailure.GetFile();
  const std::string text = file.empty() ? reason : file + ": " + reason;
  if (dynamic_cast<const Photo::cMemoryFailure*>(&pFailure) != nullptr) {
    return Raise(py::reinterpret_borrow<py::object>(PyExc_MemoryError), text);
  }
  switch (pFailure.GetKind()) {
    case eFailure::kUsage:
      return Raise(py::reinterpret_borrow<py::object>(PyExc_ValueError), text);
    case eFailure::kCannotWrite:
      return RaiseOSError(FindWriteError(file, reason), reason, file);
    case eFailure::kCannotRead:
      if (const int number = FindReadError(file); !file.empty() && number != 0) {
        return RaiseOSError(number, reason, file);
      }
      break;
    default:
      break;
  }
  Raise(FindError("Error"), text);
}

void Translate(std::exception_ptr pException) {
  try {
    std::rethrow_exception(std::move(pException));
  } catch (const Photo::cFailure& failure) {
    RaiseFailure(failure);
  } catch (const TmEngine::cOutOfMemoryException& exception) {
    Raise(py::reinterpret_borrow<py::object>(PyExc_MemoryError), exception.what());
  } catch (const TmEngine::cException& exception) {
    Raise(FindError("Error"), exception.what());
  }
}

}  // namespace

void RegisterFailures(py::module_& /*pModule*/) {
  py::register_local_exception_translator(Translate);
}

void RaiseCancelled() {
  Raise(FindError("Cancelled"), "the work was cancelled");
  throw py::error_already_set();
}

}  // namespace Python
