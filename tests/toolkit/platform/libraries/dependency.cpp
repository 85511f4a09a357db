extern "C" __attribute__((visibility("default"))) int dependencyAnswer();
extern "C" int dependencyAnswer() {
    return 42;
}
