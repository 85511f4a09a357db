#pragma once

#include "http/byte_stream.h"

#include <QByteArrayList>

/// Stores the bytes that a response sends, with one list entry per write.
class RecordingOutput : public HttpOutput {
public:
    bool write(const QVector<QByteArray> &pieces) override {
        QByteArray joined;
        for (const QByteArray &piece : pieces)
            joined += piece;
        writes.append(joined);
        return true;
    }

    [[nodiscard]] bool isWritable() const override { return true; }
    void limitSendBuffer(int /*bytes*/) override {}

    QByteArrayList writes;
};
