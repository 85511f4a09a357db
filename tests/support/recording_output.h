#pragma once

#include "http/http_output.h"

#include <QList>

/// Keeps what a response sends, a list entry for each write.
class RecordingOutput : public HttpOutput {
public:
    bool write(const QVector<QByteArray> &pieces) override {
        QByteArray joined;
        for (const QByteArray &piece : pieces)
            joined += piece;
        writes.append(joined);
        return true;
    }

    QList<QByteArray> writes;
};
