#include "http/byte_stream.h"

#include <QFile>
#include <algorithm>

bool HttpOutput::writeFile(const QByteArray &head, QFile &file, qint64 offset, qint64 sizeBytes) {
    constexpr qint64 blockBytes = 65536;
    if (!write({head}) || !file.seek(offset))
        return false;
    while (sizeBytes > 0) {
        const QByteArray block = file.read(std::min(sizeBytes, blockBytes));
        if (block.isEmpty() || !write({block}))
            return false;
        sizeBytes -= block.size();
    }
    return true;
}

bool ByteStream::writeFile(const QByteArray &head, QFile &file, qint64 offset, qint64 sizeBytes) {
    failed_ = !HttpOutput::writeFile(head, file, offset, sizeBytes);
    return !failed_;
}

void ByteStream::addWait(TransferRate::Clock::time_point begin, qint64 writtenBytes, tSocketDescriptor socket) {
    writtenBytes_ += writtenBytes;
    readingRate_.addWait(begin, [&] {
        const qint64 acknowledged = system_calls::acknowledgedBytes(socket);
        return acknowledged >= 0 ? acknowledged : writtenBytes_;
    });
}
