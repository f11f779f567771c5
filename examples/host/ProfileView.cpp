#include "ProfileView.h"

#include "StartProfile.h"

#include <QtCore/QLocale>
#include <QtGui/QPainter>

#include <algorithm>

namespace {

QString milliseconds(double time)
{
    return ProfileView::tr("%1 ms").arg(QLocale().toString(time, 'f', time < 10 ? 1 : 0));
}

}

ProfileView::ProfileView(const StartProfile &profile)
    : m_profile(profile)
{
}

QSize ProfileView::minimumSizeHint() const
{
    return {50 * fontMetrics().averageCharWidth(),
            (m_profile.phases().size() + 4) * 2 * fontMetrics().height()};
}

/// Bars begin where the phase before them ended, so that together they show the course of starting.
void ProfileView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int line = fontMetrics().height();
    const int margin = line;
    QFont heading = font();
    heading.setPointSizeF(heading.pointSizeF() * 1.25);
    painter.setFont(heading);
    painter.drawText(QRect(margin, margin, width() - 2 * margin, 2 * line), Qt::AlignLeft | Qt::AlignTop,
                     tr("Started in %1").arg(milliseconds(m_profile.total())));
    painter.setFont(font());

    int nameWidth = 0;
    for (const StartProfile::Phase &phase : m_profile.phases())
        nameWidth = std::max(nameWidth, fontMetrics().horizontalAdvance(phase.name));
    const int valueWidth = fontMetrics().horizontalAdvance(QStringLiteral("0000.0 ms"));
    const int left = 2 * margin + nameWidth;
    const double scale = (width() - left - valueWidth - 2 * margin) / std::max(1.0, m_profile.total());

    const int rowHeight = 2 * line;
    int top = 3 * line + margin;
    double start = 0;
    for (const StartProfile::Phase &phase : m_profile.phases()) {
        const QRect row(margin, top, width() - 2 * margin, rowHeight);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(row.adjusted(0, 0, left - 2 * margin - row.width(), 0),
                         Qt::AlignRight | Qt::AlignVCenter, phase.name);
        const QRectF bar(left + start * scale, top + line * 0.35, std::max(2.0, phase.milliseconds * scale),
                         line * 1.3);
        painter.fillRect(QRectF(left, bar.top(), m_profile.total() * scale, bar.height()),
                         palette().color(QPalette::AlternateBase));
        painter.fillRect(bar, palette().color(QPalette::Highlight));
        const QRectF value(bar.right() + 6, top, valueWidth, rowHeight);
        painter.drawText(value, Qt::AlignLeft | Qt::AlignVCenter, milliseconds(phase.milliseconds));
        start += phase.milliseconds;
        top += rowHeight;
    }
}
