#pragma once

#include "http/http_input.h"

#include <QByteArray>
#include <string_view>

/// Decodes a body with the chunked transfer coding. Chunk extensions and trailers are ignored.
class ChunkedBody {
public:
    /// The last three states are final.
    enum class State { size, data, dataEnd, trailers, complete, tooLarge, invalid };

    /// The maximum length of a line with the size of a chunk, and of a trailer.
    static constexpr int maxLineBytes = 8192;

    /// `maxBytes` limits the decoded body.
    explicit ChunkedBody(qint64 maxBytes) : maxBytes_(maxBytes) {}

    /// Consumes one line or one block, but no more than `maxInputBytes`. Returns the decoded bytes, which are a part of
    /// the input. Must be called only while there is input and the state is not final.
    [[nodiscard]] std::string_view take(HttpInput &input, std::size_t maxInputBytes);
    [[nodiscard]] State state() const { return state_; }

private:
    void takeLine(HttpInput &input, std::size_t maxInputBytes);
    void readSize(std::string_view line);
    void takeDataEnd(HttpInput &input);

    const qint64 maxBytes_;
    State state_ = State::size;
    qint64 decodedBytes_ = 0;
    qint64 chunkBytesLeft_ = 0;
    QByteArray line_;  ///< the received part of an incomplete line, or of the line end after a chunk
};
