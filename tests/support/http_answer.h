#pragma once

// Answers of the program's HTTP side, read as they come in.

#include <QByteArray>

namespace loadwarden::support {

// Whether `received` holds a whole answer: its head and as much body as its
// Content-Length says, none for an answer to HEAD. Every answer here says
// its length.
inline bool isWholeAnswer(const QByteArray& received, bool toHead = false) {
    const qsizetype end = received.indexOf("\r\n\r\n");
    const qsizetype at = received.indexOf("Content-Length: ");
    if (end < 0 || at < 0) {
        return false;
    }
    const qsizetype length = toHead ? 0 : received.mid(at + 16).split('\r').front().toLongLong();
    return received.size() >= end + 4 + length;
}

} // namespace loadwarden::support
