// The texts of a thrown exception stay allocated on purpose (see cException): the leak sanitizer is told so.
// It looks the function up by name, so the function must be visible.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();  // NOLINT
extern "C" const char* __lsan_default_suppressions() {
  return "leak:CopyText\n";
}  // NOLINT
