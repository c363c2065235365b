// The options of the leak sanitizer. The functions are looked up by name, so they must be visible.

// The texts of a thrown exception stay allocated on purpose (see cException). libx265, by which pictures for
// tests are written, keeps some memory too.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();  // NOLINT
extern "C" const char* __lsan_default_suppressions() {                                        // NOLINT
  return "leak:CopyText\nleak:libx265\n";
}

// It guesses where the thread-local data of libraries lie that were loaded late, and its search crashes where
// it guesses wrong. Weak: tests with options of their own load none.
extern "C" __attribute__((visibility("default"), weak)) const char* __asan_default_options();  // NOLINT
extern "C" const char* __asan_default_options() {                                              // NOLINT
  return "intercept_tls_get_addr=0";
}
