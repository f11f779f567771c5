#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <functional>
#include <optional>
#include <string_view>

namespace PluginCheck {

using LineReceiver = std::function<void(std::string_view line)>;

/// Makes lines of what comes in pieces. A line that does not end is handed on in parts, so that it cannot
/// fill memory.
class LineSplitter
{
public:
    void feed(std::string_view piece, const LineReceiver &receiver);
    /// The last line, which may lack its end.
    void finish(const LineReceiver &receiver);

private:
    QByteArray m_rest;
};

/// Takes lines from a device one by one. A line that does not end comes in parts, as above.
class LineReader
{
public:
    explicit LineReader(QIODevice &device);

    /// Valid until the next call. Nothing at the end, or when reading fails.
    std::optional<std::string_view> next();
    bool hasFailed() const { return m_hasFailed; }

private:
    bool readMore();

    QIODevice &m_device;
    QByteArray m_bytes;
    int m_at = 0;
    bool m_hasFailed = false;
};

/// Hands on all lines of a device. False when reading failed.
bool readLines(QIODevice &device, const LineReceiver &receiver);

/**
 * A file that grows while it is read.
 *
 * It may be made shorter, as a host does that starts its log anew, or be renamed and replaced by another one,
 * as tools do that keep logs small. In both cases reading goes on with the new content.
 */
class FollowedFile
{
public:
    explicit FollowedFile(const QString &name);

    bool open();
    QString error() const { return m_file.errorString(); }
    /// Hands on the lines that have come since the last call. True when there were any.
    bool poll(const LineReceiver &receiver);
    /// The line that lacks its end.
    void finish(const LineReceiver &receiver);

private:
    bool readMore(const LineReceiver &receiver);
    bool isOtherContent();
    bool isOtherFile() const;
    void remember(std::string_view piece);

    QFile m_file;
    LineSplitter m_splitter;
    qint64 m_position = 0;
    /// What was read last. It stands there no more when the file was written anew.
    QByteArray m_tail;
};

}
