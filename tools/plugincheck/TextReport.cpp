#include "TextReport.h"

#include "Readable.h"

#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

namespace PluginCheck {

namespace {

constexpr int indent = 11;
constexpr int width = 96;

/// Texts with the colours of a terminal, or without.
class Painter
{
public:
    explicit Painter(bool inColor)
        : m_inColor(inColor)
    {
    }

    QString bold(const QString &text) const { return painted("1", text); }
    QString faint(const QString &text) const { return painted("2", text); }
    QString good(const QString &text) const { return painted("32", text); }

    QString severity(Severity severity, const QString &text) const
    {
        const char *const colours[] = {"36", "33", "1;31"};
        return painted(colours[static_cast<std::size_t>(severity)], text);
    }

private:
    QString painted(const char *code, const QString &text) const
    {
        return m_inColor ? QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(code), text) : text;
    }

    const bool m_inColor;
};

/// The parts of a text between which a line may end: where one blank stands alone. Several are part of what
/// somebody has written, and would not be seen at an end.
QStringList unbrokenParts(const QString &text)
{
    static const QRegularExpression singleBlank(QStringLiteral("(?<=[^ ]) (?=[^ ])"));
    return text.split(singleBlank);
}

/// Breaks a text between words. Lines after the first are indented.
QString wrapped(const QString &text)
{
    QString result;
    int column = indent;
    for (const QString &part : unbrokenParts(inOneLine(text))) {
        if (column > indent && column + 1 + part.size() > width) {
            result += '\n' + QString(indent, ' ');
            column = indent;
        } else if (column > indent) {
            result += ' ';
            ++column;
        }
        result += part;
        column += int(part.size());
    }
    return result;
}

/// Whether a terminal shows a character in two cells, as it does the letters of East Asia and pictures.
bool isWide(uint character)
{
    static constexpr std::array<std::pair<uint, uint>, 12> ranges{{{0x1100, 0x115f},
                                                                   {0x2e80, 0x303e},
                                                                   {0x3041, 0xa4cf},
                                                                   {0xa960, 0xa97c},
                                                                   {0xac00, 0xd7a3},
                                                                   {0xf900, 0xfaff},
                                                                   {0xfe30, 0xfe6f},
                                                                   {0xff00, 0xff60},
                                                                   {0xffe0, 0xffe6},
                                                                   {0x1f300, 0x1f64f},
                                                                   {0x1f900, 0x1f9ff},
                                                                   {0x20000, 0x3fffd}}};
    return std::any_of(ranges.begin(), ranges.end(), [character](const auto &range) {
        return character >= range.first && character <= range.second;
    });
}

/// How many cells a terminal shows a text in.
int cellsOf(const QString &text)
{
    int cells = 0;
    for (const uint character : text.toUcs4()) {
        const QChar::Category category = QChar::category(character);
        if (category != QChar::Mark_NonSpacing && category != QChar::Mark_Enclosing)
            cells += isWide(character) ? 2 : 1;
    }
    return cells;
}

QString placeText(const Finding &finding)
{
    QString place = inOneLine(finding.file);
    if (finding.place.line > 0)
        place += QStringLiteral(":%1:%2").arg(finding.place.line).arg(finding.place.column);
    return place;
}

QString findingText(const Finding &finding, const Painter &paint)
{
    const Check &check = checkOf(finding.code);
    const QString margin(indent, ' ');
    const QString severity = nameOf(check.severity);
    QString text =
        QStringLiteral("  %1%2%3 %4\n")
            .arg(paint.severity(check.severity, severity), QString(indent - 2 - severity.size(), ' '),
                 wrapped(finding.message), paint.faint('[' + QLatin1String(check.name) + ']'));
    if (finding.sourceColumn > 0) {
        const QString source = inOneLine(finding.source);
        text += margin + QStringLiteral("| ") + source + '\n';
        text += margin + QStringLiteral("| ") + QString(cellsOf(source.left(finding.sourceColumn - 1)), ' ')
                + paint.severity(check.severity, QStringLiteral("^")) + '\n';
    }
    text += margin + paint.faint(placeText(finding)) + '\n';
    text += margin + wrapped(finding.consequence) + '\n';
    text += margin + paint.bold(QStringLiteral("-> ")) + wrapped(finding.advice) + '\n';
    return text;
}

QString summary(const Report &report, const Painter &paint)
{
    const int errors = report.count(Severity::Error);
    const int warnings = report.count(Severity::Warning);
    const int notes = report.count(Severity::Note);
    const QString plugins = counted(report.pluginCount(), "plug-in", "plug-ins");
    const QString configurations =
        counted(int(report.configurations.size()), "configuration file", "configuration files");
    if (errors + warnings + notes == 0)
        return paint.good(QStringLiteral("Nothing wrong"))
               + QStringLiteral(" with %1 in %2.\n").arg(plugins, configurations);
    QStringList parts{
        paint.severity(errors ? Severity::Error : Severity::Note, counted(errors, "error", "errors")),
        counted(warnings, "warning", "warnings")};
    if (notes > 0)
        parts.append(counted(notes, "note", "notes"));
    return QStringLiteral("%1; %2 checked. plugincheck --explain CODE tells more.\n")
        .arg(parts.join(QStringLiteral(", ")), plugins);
}

}

QString inOneLine(const QString &text)
{
    constexpr ushort pictureOfTab = 0x2409;
    return readable(text).replace('\t', QChar(pictureOfTab));
}

QString textReport(const Report &report, bool inColor)
{
    const Painter paint(inColor);
    // In the order in which they were found first: by configuration file, then by plug-in.
    QVector<QPair<QString, QString>> order;
    QHash<QPair<QString, QString>, QVector<const Finding *>> groups;
    for (const Finding &finding : report.findings()) {
        const QPair<QString, QString> group(finding.configuration, finding.plugin);
        if (!groups.contains(group))
            order.append(group);
        groups[group].append(&finding);
    }
    std::stable_sort(order.begin(), order.end(), [&](const auto &left, const auto &right) {
        return left.first == right.first && left.second.isEmpty() && !right.second.isEmpty();
    });

    QString text;
    QString configuration;
    for (const QPair<QString, QString> &group : qAsConst(order)) {
        if (group.first != configuration) {
            configuration = group.first;
            text += paint.bold(inOneLine(configuration)) + '\n';
        }
        if (!group.second.isEmpty())
            text += ' ' + paint.bold(inOneLine(group.second)) + '\n';
        for (const Finding *const finding : groups.value(group))
            text += findingText(*finding, paint);
        text += '\n';
    }
    for (const QString &leftOut : report.leftOut())
        text += QStringLiteral("Left out: ") + inOneLine(leftOut) + '\n';
    return text + summary(report, paint);
}

}
