#include "fuzz/fuzz_support.h"
#include "http/byte_text.h"
#include "http/url_encoding.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view text = fuzz::Input(data, size).rest();
    const QByteArray decoded = url_encoding::decode(text);
    fuzz::require(decoded.size() <= static_cast<int>(size), "longer than the text");
    fuzz::require(byte_text::view(decoded) == text || text.find_first_of("+%") != std::string_view::npos,
                  "changed without an escape");

    fuzz::require(url_encoding::parseParameters(text).size() <= byte_text::copy(text).count('&') + 1,
                  "more parameters than pairs");
    return 0;
}
