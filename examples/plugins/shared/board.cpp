#include "board.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>

namespace {

QString text(const char *source)
{
    return QCoreApplication::translate("Board", source);
}

QVector<QPointF> readPoints(const QJsonArray &points)
{
    QVector<QPointF> read;
    for (const QJsonValue &point : points)
        read.append({point[0].toDouble(), point[1].toDouble()});
    return read;
}

Track readTrack(const QJsonArray &row)
{
    Track track;
    track.width = row.at(0).toDouble();
    for (int i = 2; i < row.size(); i += 2)
        track.points.append({row.at(i - 1).toDouble(), row.at(i).toDouble()});
    return track;
}

Pad readPad(const QJsonArray &row)
{
    return {{row.at(0).toDouble(), row.at(1).toDouble()},
            {row.at(2).toDouble(), row.at(3).toDouble()},
            row.at(4).toInt() != 0};
}

Drill readDrill(const QJsonArray &row)
{
    return {{row.at(0).toDouble(), row.at(1).toDouble()}, row.at(2).toDouble(), row.at(3).toInt() != 0};
}

template <typename Feature>
QVector<Feature> readRows(const QJsonValue &rows, Feature (*read)(const QJsonArray &))
{
    QVector<Feature> features;
    const QJsonArray array = rows.toArray();
    features.reserve(array.size());
    for (const QJsonValue &row : array)
        features.append(read(row.toArray()));
    return features;
}

Layer readLayer(const QJsonValue &layer)
{
    return {layer["name"].toString(),          layer["kind"].toString(),
            QColor(layer["color"].toString()), readRows(layer["tracks"], readTrack),
            readRows(layer["pads"], readPad),  readRows(layer["drills"], readDrill)};
}

Step readStep(const QJsonValue &step, const QRectF &board)
{
    const QJsonArray area = step["area"].toArray();
    const QVector<QPointF> boards = readPoints(step["boards"].toArray());
    if (boards.isEmpty() || area.size() != 4)
        return {step["name"].toString(), {{0, 0}}, board};
    return {
        step["name"].toString(), boards,
        QRectF(area.at(0).toDouble(), area.at(1).toDouble(), area.at(2).toDouble(), area.at(3).toDouble())};
}

Part readPart(const QJsonObject &job, const QString &file, const QVector<Layer> &layers)
{
    const QJsonValue part = job["part"];
    const auto isSignal = [](const Layer &layer) { return layer.kind == QLatin1String("signal"); };
    return {part["number"].toString(),
            part["revision"].toString(),
            part["customer"].toString(),
            job["name"].toString(),
            file,
            static_cast<int>(std::count_if(layers.begin(), layers.end(), isSignal)),
            part["thickness"].toDouble(),
            part["finish"].toString()};
}

}

QRectF Pad::area() const
{
    return {center - QPointF(size.width() / 2, size.height() / 2), size};
}

const Layer *Job::layer(const QString &name) const
{
    const auto found = std::find_if(layers.constBegin(), layers.constEnd(),
                                    [&name](const Layer &candidate) { return candidate.name == name; });
    return found == layers.constEnd() ? nullptr : &*found;
}

Step Job::step(const QString &name) const
{
    for (const Step &candidate : steps) {
        if (candidate.name == name)
            return candidate;
    }
    return {name, {{0, 0}}, outline.boundingRect()};
}

int Job::featureCount() const
{
    int count = 0;
    for (const Layer &layer : layers)
        count += layer.featureCount();
    return count;
}

Job readJob(const QString &file, QString *error)
{
    QString ignored;
    QString &wrong = error ? *error : ignored;
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        wrong = text("Cannot open %1: %2").arg(QDir::toNativeSeparators(file), source.errorString());
        return {};
    }
    QJsonParseError parseError;
    const QJsonObject object = QJsonDocument::fromJson(source.readAll(), &parseError).object();
    if (object["format"].toInt() != 1) {
        wrong = text("%1 is not a board of format 1: %2")
                    .arg(QDir::toNativeSeparators(file), parseError.errorString());
        return {};
    }

    Job job;
    job.outline = readPoints(object["outline"].toArray());
    const QJsonArray layers = object["layers"].toArray();
    for (const QJsonValue &layer : layers)
        job.layers.append(readLayer(layer));
    const QJsonArray steps = object["steps"].toArray();
    for (const QJsonValue &step : steps)
        job.steps.append(readStep(step, job.outline.boundingRect()));
    job.part = readPart(object, file, job.layers);
    return job;
}

QVector<Part> readParts(const QString &folder)
{
    const QDir jobs(folder);
    QVector<Part> parts;
    const QStringList files = jobs.entryList({QLatin1String("*.json")}, QDir::Files);
    for (const QString &file : files) {
        const Job job = readJob(jobs.absoluteFilePath(file));
        if (!job.isEmpty())
            parts.append(job.part);
    }
    std::sort(parts.begin(), parts.end(),
              [](const Part &left, const Part &right) { return left.number < right.number; });
    return parts;
}

QString layerKindText(const QString &kind)
{
    if (kind == QLatin1String("silk"))
        return text("Silk screen");
    if (kind == QLatin1String("mask"))
        return text("Solder mask");
    if (kind == QLatin1String("signal"))
        return text("Signal");
    if (kind == QLatin1String("drill"))
        return text("Drill");
    return text("Rout");
}
