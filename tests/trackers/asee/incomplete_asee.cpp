extern "C" __attribute__((visibility("default"))) int _7i_stop() {
    return 0;
}
