// The texts of a thrown exception stay allocated on purpose (see cException): the leak sanitizer is told so.
// libx265, by which pictures for tests are written, keeps some memory too. The function is looked up by name,
// so it must be visible.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();  // NOLINT
extern "C" const char* __lsan_default_suppressions() {
  return "leak:CopyText\nleak:libx265\n";
}  // NOLINT
