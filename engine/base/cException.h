#pragma once

#include <stdexcept>

namespace TmEngine {

/// Base of all errors that the engine throws: a message and the place of the throw.
///
/// Every text is a NUL-terminated 8-bit string and may be null, except the message (a null message becomes an
/// empty text). The constructor makes its own copies of the texts and never releases them: copies of an
/// exception share the blocks of their source, so that copying while an exception is in flight cannot fail
/// half-way. A copy for which there is no memory leaves its text null.
class cException : public std::runtime_error {
 public:
  cException(const char* const& pClassName, const char* const& pCategory, const char* const& pMessage,
             int pLine, const char* const& pFile, const char* const& pTimestamp,
             const char* const& pFunction);
  cException(const cException& pFrom) = default;
  ~cException() override;

  virtual const char* GetClassName() const;  ///< The exception's own class name.
  virtual const char* GetCategory() const;   ///< The fixed category text of the class.
  virtual const char* GetMessage() const;    ///< The same text as what().
  virtual const char* GetFile() const;       ///< Source file of the throw.
  virtual const char* GetTimestamp() const;  ///< Time of the sources' last change.
  virtual const char* GetFunction() const;   ///< Full signature of the throwing function.
  virtual int GetLine() const;               ///< Source line of the throw.

 private:
  char* fClassName;
  char* fCategory;
  char* fFunction;
  char* fFile;
  char* fTimestamp;
  int fLine;
};

/// An argument out of range, sizes that do not match, a stride too small, an unknown enumeration value.
class cArgumentException : public cException {
 public:
  cArgumentException(const char* const& pMessage, int pLine, const char* const& pFile,
                     const char* const& pTimestamp, const char* const& pFunction);
  cArgumentException(const cArgumentException& pFrom) = default;
  ~cArgumentException() override;
};

/// A required pointer argument that is null.
class cArgumentNullException : public cException {
 public:
  cArgumentNullException(const char* const& pMessage, int pLine, const char* const& pFile,
                         const char* const& pTimestamp, const char* const& pFunction);
  cArgumentNullException(const cArgumentNullException& pFrom) = default;
  ~cArgumentNullException() override;
};

/// An operation that the object's state or class does not allow.
class cInvalidOperationException : public cException {
 public:
  cInvalidOperationException(const char* const& pMessage, int pLine, const char* const& pFile,
                             const char* const& pTimestamp, const char* const& pFunction);
  cInvalidOperationException(const cInvalidOperationException& pFrom) = default;
  ~cInvalidOperationException() override;
};

/// A failed allocation of pixel memory.
class cOutOfMemoryException : public cException {
 public:
  cOutOfMemoryException(const char* const& pMessage, int pLine, const char* const& pFile,
                        const char* const& pTimestamp, const char* const& pFunction);
  cOutOfMemoryException(const cOutOfMemoryException& pFrom) = default;
  ~cOutOfMemoryException() override;
};

}  // namespace TmEngine
