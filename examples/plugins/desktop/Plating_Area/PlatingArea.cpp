#include "DesktopPlugin.h"
#include "board.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>
#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

constexpr const char *copperLayers[] = {"top", "bottom"};
constexpr int bandCount = 25;
constexpr int pixelsPerMillimetre = 100;

void paintCopper(QPainter &painter, const Layer &copper, const Layer &drills)
{
    painter.setBrush(Qt::NoBrush);
    for (const Track &track : copper.tracks) {
        painter.setPen(QPen(Qt::white, track.width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(track.points.constData(), track.points.size());
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    for (const Pad &pad : copper.pads) {
        const QRectF shape(pad.center - QPointF(pad.size.width() / 2, pad.size.height() / 2), pad.size);
        pad.round ? painter.drawEllipse(shape) : painter.drawRect(shape);
    }
    painter.setBrush(Qt::black);
    for (const Drill &drill : drills.drills)
        painter.drawEllipse(drill.center, drill.diameter / 2, drill.diameter / 2);
}

/// An empty layer when the job has none of this name.
Layer layerOf(const Job &job, const char *name)
{
    const Layer *const layer = job.layer(QLatin1String(name));
    return layer ? *layer : Layer();
}

/// How much of the band is copper, in square millimetres.
double copperIn(const QRectF &band, const Layer &copper, const Layer &drills)
{
    QImage image((band.size() * pixelsPerMillimetre).toSize(), QImage::Format_Grayscale8);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.scale(pixelsPerMillimetre, pixelsPerMillimetre);
    painter.translate(-band.topLeft());
    paintCopper(painter, copper, drills);
    painter.end();

    qint64 pixels = 0;
    for (int row = 0; row < image.height(); ++row) {
        const uchar *const line = image.constScanLine(row);
        pixels += std::count_if(line, line + image.width(), [](uchar pixel) { return pixel != 0; });
    }
    return static_cast<double>(pixels) / (pixelsPerMillimetre * pixelsPerMillimetre);
}

}

/**
 * Finds how much copper the outer layers of a part have, which decides the current for plating.
 *
 * None of the ten tools, but it talks to them: it counts on a thread of its own, which sends its messages
 * itself.
 */
class PlatingArea : public DesktopPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")

public:
    PlatingArea();
    ~PlatingArea() override;

    void recMsgFromManager(PluginMetaData message) override;

private:
    void start();
    void stop();
    void tell(const QString &text);

    // These run on the worker thread.
    void count(const QString &part, const QString &file);
    void showProgress(int percent);

    QString m_part;
    QString m_file;
    std::unique_ptr<QThread> m_worker;
};

PlatingArea::PlatingArea()
    : DesktopPlugin("Plating_Area")
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &PlatingArea::stop);
}

PlatingArea::~PlatingArea()
{
    stop();
}

void PlatingArea::recMsgFromManager(PluginMetaData message)
{
    const QString command = textParameter(message, "Command");
    if (message.type == MessageType::SelectPart) {
        stop();
        m_part = textParameter(message, "Part");
        m_file = textParameter(message, "File");
    } else if (message.type == MessageType::RunCommand && command == QLatin1String("platingArea")) {
        start();
    } else if (message.type == MessageType::RunCommand && command == QLatin1String("introduce")) {
        tell(tr("Select a part. Plating area then counts its copper."));
    }
}

void PlatingArea::start()
{
    stop();
    if (m_part.isEmpty()) {
        tell(tr("No part is selected"));
        return;
    }
    tell(tr("Counting the copper of %1").arg(m_part));
    m_worker.reset(QThread::create([this, part = m_part, file = m_file] { count(part, file); }));
    m_worker->start();
}

void PlatingArea::stop()
{
    if (!m_worker)
        return;
    m_worker->requestInterruption();
    m_worker->wait();
    m_worker.reset();
}

void PlatingArea::tell(const QString &text)
{
    send("Viewbar_Status", MessageType::ShowText, {{"Text", text}});
}

void PlatingArea::count(const QString &part, const QString &file)
{
    const Job job = readJob(file);
    const QRectF board = job.outline.boundingRect();
    const double bandHeight = board.height() / bandCount;
    QStringList results;
    int percent = 0;
    showProgress(percent);
    for (const char *const layer : copperLayers) {
        const Layer copper = layerOf(job, layer);
        const Layer drills = layerOf(job, "drill");
        double area = 0;
        for (int band = 1; band <= bandCount; ++band) {
            if (QThread::currentThread()->isInterruptionRequested()) {
                showProgress(0);
                return;
            }
            const QRectF lines(board.left(), board.bottom() - band * bandHeight, board.width(), bandHeight);
            area += copperIn(lines, copper, drills);
            percent += 100 / (bandCount * static_cast<int>(std::size(copperLayers)));
            send("Viewbar_View", MessageType::AreaCounted,
                 {{"Part", part}, {"Layer", layer}, {"Area", lines}});
            showProgress(percent);
        }
        results.append(tr("%1 %2 mm\u00b2").arg(QLatin1String(layer)).arg(area, 0, 'f', 1));
    }
    send("Viewbar_View", MessageType::ShowText,
         {{"Part", part}, {"Text", tr("Copper: %1").arg(results.join(QLatin1String(", ")))}});
    tell(tr("%1 counted").arg(part));
}

void PlatingArea::showProgress(int percent)
{
    send("ProcessBar_Process", MessageType::ShowProgress, {{"Percent", percent}});
}

#include "PlatingArea.moc"
