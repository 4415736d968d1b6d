# The names in FuzzTargets.h allTargets, one libFuzzer binary each.
set(QUILLBAY_FUZZ_TARGET_NAMES version_text)
