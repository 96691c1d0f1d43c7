// For sanitized builds: what libcups keeps of a PPD for itself it does not give back, and nobody
// else can.

extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions() {
  return "leak:_ppdCacheCreateWithPPD\nleak:cupsAddOption\n";
}
