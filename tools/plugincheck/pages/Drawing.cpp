#include "Drawing.h"

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QStringList>
#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>

using namespace PluginCheck;

namespace {

/// Of what Graphviz writes, a page takes shapes and texts; nothing that loads, links or runs.
const QStringList &elements()
{
    static const QStringList names{QStringLiteral("svg"),     QStringLiteral("g"),
                                   QStringLiteral("path"),    QStringLiteral("polygon"),
                                   QStringLiteral("ellipse"), QStringLiteral("polyline"),
                                   QStringLiteral("text")};
    return names;
}

const QStringList &attributes()
{
    static const QStringList names{QStringLiteral("viewBox"),
                                   QStringLiteral("class"),
                                   QStringLiteral("transform"),
                                   QStringLiteral("points"),
                                   QStringLiteral("d"),
                                   QStringLiteral("x"),
                                   QStringLiteral("y"),
                                   QStringLiteral("cx"),
                                   QStringLiteral("cy"),
                                   QStringLiteral("rx"),
                                   QStringLiteral("ry"),
                                   QStringLiteral("text-anchor"),
                                   QStringLiteral("font-size"),
                                   QStringLiteral("fill"),
                                   QStringLiteral("stroke"),
                                   QStringLiteral("stroke-width"),
                                   QStringLiteral("stroke-dasharray")};
    return names;
}

class Rewriter
{
public:
    explicit Rewriter(const QByteArray &svg)
        : m_reader(svg)
        , m_writer(&m_result)
    {
        m_reader.setNamespaceProcessing(false);
    }

    /// Empty when the drawing is not well formed.
    QByteArray rewritten()
    {
        while (!m_reader.atEnd()) {
            switch (m_reader.readNext()) {
            case QXmlStreamReader::StartElement:
                startElement();
                break;
            case QXmlStreamReader::EndElement:
                if (elements().contains(m_reader.name().toString()))
                    m_writer.writeEndElement();
                break;
            case QXmlStreamReader::Characters:
                m_writer.writeCharacters(m_reader.text().toString());
                break;
            default:
                break;
            }
        }
        return m_reader.hasError() ? QByteArray() : m_result;
    }

private:
    void startElement()
    {
        const QString name = m_reader.name().toString();
        if (name == QLatin1String("title")) {
            // Graphviz puts its own names there; what people read comes with the link.
            m_reader.skipCurrentElement();
            return;
        }
        if (name == QLatin1String("a")) {
            const QString tooltip = m_reader.attributes().value(QLatin1String("xlink:title")).toString();
            if (!tooltip.isEmpty())
                m_writer.writeTextElement(QStringLiteral("title"), tooltip);
            return;
        }
        if (!elements().contains(name))
            return;
        m_writer.writeStartElement(name);
        if (name == QLatin1String("svg"))
            writeSize();
        for (const QXmlStreamAttribute &attribute : m_reader.attributes()) {
            if (attributes().contains(attribute.qualifiedName().toString()))
                m_writer.writeAttribute(attribute.qualifiedName().toString(), attribute.value().toString());
        }
    }

    void writeSize()
    {
        const QStringList box =
            m_reader.attributes().value(QLatin1String("viewBox")).toString().split(QLatin1Char(' '));
        m_writer.writeAttribute(QStringLiteral("xmlns"), QStringLiteral("http://www.w3.org/2000/svg"));
        m_writer.writeAttribute(QStringLiteral("role"), QStringLiteral("img"));
        m_writer.writeAttribute(QStringLiteral("aria-label"), QStringLiteral("Which plug-in needs which"));
        m_writer.writeAttribute(QStringLiteral("width"),
                                QString::number(qRound(box.value(2).toDouble() * 4 / 3)));
        m_writer.writeAttribute(QStringLiteral("height"),
                                QString::number(qRound(box.value(3).toDouble() * 4 / 3)));
    }

    QByteArray m_result;
    QXmlStreamReader m_reader;
    QXmlStreamWriter m_writer;
};

}

Drawing PluginCheck::drawGraph(const QByteArray &dot, int timeLimitInMilliseconds)
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("dot"));
    if (program.isEmpty())
        return {{},
                QStringLiteral(
                    "The graph is not drawn: Graphviz is not installed here. The tables have all that it "
                    "would show.")};
    QProcess process;
    process.start(program, {QStringLiteral("-Tsvg")});
    process.write(dot);
    process.closeWriteChannel();
    if (!process.waitForFinished(timeLimitInMilliseconds)) {
        process.kill();
        process.waitForFinished();
        return {{},
                QStringLiteral(
                    "The graph is not drawn: Graphviz took too long. The tables have all that it would "
                    "show.")};
    }
    const QByteArray svg = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0
                               ? Rewriter(process.readAllStandardOutput()).rewritten()
                               : QByteArray();
    if (svg.isEmpty())
        return {{},
                QStringLiteral(
                    "The graph is not drawn: Graphviz failed. The tables have all that it would show.")};
    return {svg, {}};
}
