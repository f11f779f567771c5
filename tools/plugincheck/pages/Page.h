#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace PluginCheck {

/// A table of a page. Its rows can be filtered: by their text, by their severity, and by the names that they
/// are about.
struct Table
{
    struct Row
    {
        QVector<QByteArray> cells;
        QString severity;
        QStringList names;
    };

    QByteArray id;
    QString caption;
    QVector<QByteArray> headers;
    QVector<Row> rows;

    /// Rows beyond this many are left out of a page, which says so.
    static constexpr int mostRows = 5000;

    QByteArray toMarkup() const;
};

/**
 * A page that needs nothing but itself: no network, no other file.
 *
 * What comes from configurations, libraries and logs is put in by markup() alone. Beside that the page's own
 * policy forbids every script and style but the two that it brings.
 */
class Page
{
public:
    Page(QString title, QString subtitle);

    void add(const QByteArray &markup);
    void addHeading(const QString &text);
    void addParagraph(const QString &text);
    /// Figures with what they count. A severity gives a figure above zero its colour.
    struct Figure
    {
        qint64 value;
        QString what;
        QByteArray severity;
    };
    void addFigures(const QVector<Figure> &figures);
    /// The fields that filter the tables. Without severities there is no field for them.
    void addFilter(const QStringList &severities, const QString &nameLabel, const QStringList &names);

    QByteArray toHtml() const;

private:
    QString m_title;
    QString m_subtitle;
    QByteArray m_body;
};

/// "error" and the like with its sign, as markup.
QByteArray badge(const QString &severity);

}
