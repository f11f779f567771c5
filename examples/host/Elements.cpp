#include "Elements.h"

#include "Account.h"
#include "Post.h"

#include <QtWidgets/QWidget>

#include <algorithm>

Elements::Elements(Post &post)
    : m_post(post)
{
    for (const ElementRegistration &registration : elementRegistrations())
        m_tallies.push_back({registration});
}

QVector<Element> Elements::registerFor(FrameKind kind, QWidget *frame, const QString &job)
{
    QVector<Element> elements;
    for (Tally &tally : m_tallies) {
        const ElementRegistration &registration = tally.registration;
        const bool isWanted =
            registration.frame == kind || (kind == FrameKind::Preview && isInPreview(registration));
        if (!isWanted)
            continue;
        QObject *object = nullptr;
        QObject *again = nullptr;
        m_post.guard(registration.operation, QLatin1String(registration.library), [&] {
            object = registration.call(m_post.manager(), frame, job.toStdString());
            again = registration.call(m_post.manager(), frame, job.toStdString());
        });

        ++tally.frames;
        if (!object || !object->metaObject()->inherits(registration.elementType))
            continue;
        ++tally.made;
        tally.madeOnce += again == object ? 1 : 0;
        elements.append({QString::fromLatin1(registration.library), object, registration.place});
    }
    return elements;
}

int Elements::count() const
{
    int count = 0;
    for (const Tally &tally : m_tallies)
        count += tally.made;
    return count;
}

bool Elements::areMadeOnce() const
{
    return std::all_of(m_tallies.begin(), m_tallies.end(), std::mem_fn(&Tally::isGood));
}

void Elements::tell(Account &account) const
{
    const QVector<int> widths{4, 38, 30, 13, 8, 6, 9};
    account.heading(QStringLiteral("Elements, each operation called twice in every frame of its kind"));
    account.row({"", "operation", "library", "element", "frames", "made", "made once"}, widths);

    int number = 0;
    for (const Tally &tally : m_tallies) {
        const bool good = tally.isGood();
        account.row({QString::number(++number), tally.registration.operation, tally.registration.library,
                     tally.made ? tally.registration.elementType->className() : "none",
                     QString::number(tally.frames), QString::number(tally.made), good ? "yes" : "no"},
                    widths, good);
    }
}
