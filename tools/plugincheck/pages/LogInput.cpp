#include "LogInput.h"

#include <QtCore/QDateTime>
#include <QtCore/QFileInfo>

#ifdef Q_OS_UNIX
#    include <sys/stat.h>
#endif

#include <vector>

using namespace PluginCheck;

namespace {

constexpr int pieceSize = 64 * 1024;
constexpr int mostBytesOfLine = 1024 * 1024;
constexpr int tailSize = 128;

std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), size_t(bytes.size())};
}

std::string_view withoutCarriageReturn(std::string_view line)
{
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

}

void LineSplitter::feed(std::string_view piece, const LineReceiver &receiver)
{
    size_t at = 0;
    for (size_t end = piece.find('\n'); end != std::string_view::npos; end = piece.find('\n', at)) {
        const std::string_view line = piece.substr(at, end - at);
        at = end + 1;
        if (m_rest.isEmpty()) {
            receiver(withoutCarriageReturn(line));
            continue;
        }
        m_rest.append(line.data(), int(line.size()));
        receiver(withoutCarriageReturn(view(m_rest)));
        m_rest.clear();
    }
    m_rest.append(piece.data() + at, int(piece.size() - at));
    if (m_rest.size() > mostBytesOfLine)
        finish(receiver);
}

void LineSplitter::finish(const LineReceiver &receiver)
{
    if (m_rest.isEmpty())
        return;
    receiver(withoutCarriageReturn(view(m_rest)));
    m_rest.clear();
}

LineReader::LineReader(QIODevice &device)
    : m_device(device)
{
}

std::optional<std::string_view> LineReader::next()
{
    for (;;) {
        const std::string_view pending = view(m_bytes).substr(size_t(m_at));
        const size_t end = pending.find('\n');
        if (end != std::string_view::npos) {
            m_at += int(end) + 1;
            return withoutCarriageReturn(pending.substr(0, end));
        }
        if (pending.size() <= mostBytesOfLine && readMore())
            continue;
        // Reading may have moved the bytes, also at the end.
        const std::string_view last = view(m_bytes).substr(size_t(m_at));
        if (last.empty())
            return {};
        m_at = m_bytes.size();
        return withoutCarriageReturn(last);
    }
}

bool LineReader::readMore()
{
    m_bytes.remove(0, m_at);
    m_at = 0;
    const int before = m_bytes.size();
    m_bytes.resize(before + pieceSize);
    const qint64 size = m_device.read(m_bytes.data() + before, pieceSize);
    m_bytes.resize(before + int(qMax(size, qint64(0))));
    m_hasFailed = size < 0;
    return size > 0;
}

bool PluginCheck::readLines(QIODevice &device, const LineReceiver &receiver)
{
    LineReader reader(device);
    while (const auto line = reader.next())
        receiver(*line);
    return !reader.hasFailed();
}

FollowedFile::FollowedFile(const QString &name)
    : m_file(name)
{
}

bool FollowedFile::open()
{
    m_position = 0;
    m_tail.clear();
    return m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool FollowedFile::poll(const LineReceiver &receiver)
{
    if (!m_file.isOpen())
        return open() && readMore(receiver);
    if (isOtherContent()) {
        finish(receiver);
        m_position = 0;
        m_tail.clear();
    }
    const bool isReplaced = isOtherFile();
    const bool hasRead = readMore(receiver);
    if (!isReplaced)
        return hasRead;
    finish(receiver);
    m_file.close();
    return (open() && readMore(receiver)) || hasRead;
}

void FollowedFile::finish(const LineReceiver &receiver)
{
    m_splitter.finish(receiver);
}

bool FollowedFile::readMore(const LineReceiver &receiver)
{
    std::vector<char> buffer(pieceSize);
    bool hasRead = false;
    for (;;) {
        m_file.seek(m_position);
        const qint64 size = m_file.read(buffer.data(), pieceSize);
        if (size <= 0)
            return hasRead;
        hasRead = true;
        m_position += size;
        const std::string_view piece(buffer.data(), size_t(size));
        remember(piece);
        m_splitter.feed(piece, receiver);
    }
}

bool FollowedFile::isOtherContent()
{
    if (m_file.size() < m_position)
        return true;
    if (m_file.size() == m_position)
        return false;
    m_file.seek(m_position - m_tail.size());
    return m_file.read(m_tail.size()) != m_tail;
}

/// While there is no file of the name, the one that is open may still grow.
bool FollowedFile::isOtherFile() const
{
#ifdef Q_OS_UNIX
    struct stat opened = {};
    struct stat named = {};
    if (fstat(m_file.handle(), &opened) != 0
        || stat(QFile::encodeName(m_file.fileName()).constData(), &named) != 0)
        return false;
    return opened.st_dev != named.st_dev || opened.st_ino != named.st_ino;
#else
    // Windows renames no file that another program reads, unless that program allows it, and Qt does not.
    return false;
#endif
}

void FollowedFile::remember(std::string_view piece)
{
    m_tail.append(piece.data(), int(piece.size()));
    m_tail = m_tail.right(tailSize);
}
