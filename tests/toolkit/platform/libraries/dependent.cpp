extern "C" int dependencyAnswer();
extern "C" __attribute__((visibility("default"))) int dependentAnswer();
extern "C" int dependentAnswer() {
    return dependencyAnswer();
}
