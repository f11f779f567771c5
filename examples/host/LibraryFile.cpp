#include "LibraryFile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QtEndian>

#include <algorithm>

namespace {

QString text(const char *source)
{
    return QCoreApplication::translate("LibraryFile", source);
}

/// Little-endian numbers of a file; 0 beyond its end.
class Numbers
{
public:
    explicit Numbers(QFile &file)
        : m_file(file)
    {
    }

    template <typename Number>
    qint64 at(qint64 position) const
    {
        uchar bytes[sizeof(Number)] = {};
        if (m_file.seek(position))
            m_file.read(reinterpret_cast<char *>(bytes), sizeof bytes);
        return static_cast<qint64>(qFromLittleEndian<Number>(bytes));
    }

private:
    QFile &m_file;
};

/// How long a 64-bit ELF file must be: as far as its segments and its table of sections reach.
qint64 elfLength(const Numbers &number)
{
    const qint64 segments = number.at<quint64>(32);
    const qint64 sections = number.at<quint64>(40);
    const qint64 segmentSize = number.at<quint16>(54);
    const qint64 segmentCount = number.at<quint16>(56);
    qint64 length = sections + number.at<quint16>(58) * number.at<quint16>(60);
    for (qint64 i = 0; i < segmentCount; ++i) {
        const qint64 segment = segments + i * segmentSize;
        length = std::max(length, number.at<quint64>(segment + 8) + number.at<quint64>(segment + 32));
    }
    return length;
}

/// How far the table of symbols in a PE file reaches, with the texts behind it, which begin with their
/// length.
qint64 peSymbolsEnd(const Numbers &number, qint64 header)
{
    constexpr qint64 symbolSize = 18;
    constexpr qint64 leastLengthOfTexts = 4;
    const qint64 symbols = number.at<quint32>(header + 12);
    if (symbols == 0)
        return 0;
    const qint64 texts = symbols + symbolSize * number.at<quint32>(header + 16);
    return texts + std::max(leastLengthOfTexts, number.at<quint32>(texts));
}

/// The same for a PE file, by the raw data of its sections and its symbols.
qint64 peLength(const Numbers &number)
{
    const qint64 header = number.at<quint32>(60);
    const qint64 sections = header + 24 + number.at<quint16>(header + 20);
    const qint64 sectionCount = number.at<quint16>(header + 6);
    qint64 length = std::max(sections + 40 * sectionCount, peSymbolsEnd(number, header));
    for (qint64 i = 0; i < sectionCount; ++i) {
        const qint64 section = sections + 40 * i;
        length = std::max(length, number.at<quint32>(section + 16) + number.at<quint32>(section + 20));
    }
    return length;
}

}

QString LibraryFile::damage(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return text("The file cannot be read: %1.").arg(file.errorString());
    const QByteArray start = file.read(6);
    qint64 expected = 0;
    if (start.startsWith("\x7f"
                         "ELF")) {
        constexpr char sixtyFourBits = 2;
        expected = start.size() > 4 && start.at(4) == sixtyFourBits ? elfLength(Numbers(file)) : 0;
    } else if (start.startsWith("MZ")) {
        expected = peLength(Numbers(file));
    } else {
        return text("The file is no library.");
    }
    const QLocale locale;
    if (file.size() >= expected)
        return {};
    return text("The file is cut off: it has %1 of %2 bytes.")
        .arg(locale.toString(file.size()), locale.toString(expected));
}
