#include "fuzz/fuzz_support.h"
#include "http/byte_text.h"
#include "http/memory_budget.h"
#include "http/multipart_form.h"

#include <QBuffer>

// The first byte is the length of the boundary. The boundary follows, and then the body.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    const QByteArray boundary = byte_text::copy(input.text(input.byte() % 16 + 1));
    MemoryShare memory(nullptr);
    MultipartParser parser(boundary.isEmpty() ? "x" : boundary, memory);
    QByteArray body = byte_text::copy(input.rest());
    QBuffer device(&body);
    if (!device.open(QIODevice::ReadOnly) || parser.parse(device) != MultipartParser::Result::complete)
        return 0;

    std::size_t total = 0;
    const auto found = [&](const QByteArray &bytes) {
        total += std::size_t(bytes.size());
        return byte_text::contains(input.rest(), byte_text::view(bytes));
    };
    const MultipartForm &form = parser.form();
    for (auto parameter = form.parameters.begin(); parameter != form.parameters.end(); ++parameter)
        fuzz::require(found(parameter.key()) && found(parameter.value()), "a parameter that is not in the body");
    for (const auto &[name, file] : form.files)
        fuzz::require(form.parameters.contains(name) && found(file->readAll()), "a file that is not in the body");
    fuzz::require(total <= input.rest().size(), "parts that overlap");
    return 0;
}
