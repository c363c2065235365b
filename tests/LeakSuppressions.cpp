// The texts of a thrown exception stay allocated on purpose (see cException): the leak sanitizer is told so.
extern "C" const char* __lsan_default_suppressions();  // NOLINT: the sanitizer's name
extern "C" const char* __lsan_default_suppressions() {
  return "leak:CopyText\n";
}  // NOLINT
