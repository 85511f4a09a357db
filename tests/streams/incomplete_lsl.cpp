// The declaration prevents a warning.
extern "C" int lsl_library_version();
extern "C" int lsl_library_version() {
    return 117;
}
