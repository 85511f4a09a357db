extern "C" __attribute__((visibility("default"))) int sampleSum(int one, int other) {
    return one + other;
}
