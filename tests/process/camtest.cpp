#include "camtest.h"

#include "keptloaders.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtTest/QtTest>

#include <algorithm>

namespace {

QHash<const void *, QString> &descriptions()
{
    static QHash<const void *, QString> instance;
    return instance;
}

bool sameValue(const QVariant &left, const QVariant &right)
{
    return left.userType() == right.userType() && left == right;
}

bool sameData(const Data &left, const Data &right)
{
    return left.keys() == right.keys()
           && std::equal(left.cbegin(), left.cend(), right.cbegin(), right.cend(), sameValue);
}

QString shown(const Recorder::Delivery &delivery)
{
    QStringList parameters;
    for (auto it = delivery.message.data.cbegin(); it != delivery.message.data.cend(); ++it)
        parameters += it.key() + '=' + (it->isValid() ? it->toString() : QStringLiteral("invalid"));
    return QStringLiteral("%1(%2) %3>%4 %5 {%6} %7")
        .arg(delivery.library,
             descriptions().value(delivery.target,
                                  QStringLiteral("0x%1").arg(quintptr(delivery.target), 0, 16)),
             delivery.message.src, delivery.message.dst, QString::number(delivery.message.type),
             parameters.join(", "), QString::number(delivery.message.userData, 16));
}

}

bool Recorder::operator==(const Delivery &left, const Delivery &right)
{
    return left.library == right.library && left.target == right.target
           && left.message.src == right.message.src && left.message.dst == right.message.dst
           && left.message.type == right.message.type && left.message.userData == right.message.userData
           && sameData(left.message.data, right.message.data);
}

bool operator==(const Deliveries &left, const Deliveries &right)
{
    return left.list == right.list;
}

char *toString(const Deliveries &deliveries)
{
    QStringList lines;
    for (const Recorder::Delivery &delivery : deliveries.list)
        lines += shown(delivery);
    return QTest::toString(lines.isEmpty() ? QStringLiteral("nothing") : "\n    " + lines.join("\n    "));
}

bool isInfoBox(const MessageBoxes::Box &box, const QString &text)
{
    return box.title == "Info" && box.text == text && box.buttons == QMessageBox::Ok
           && box.icon == QMessageBox::Information && box.modal && !box.hasParent;
}

void CamTest::init()
{
    QVERIFY(QDir().mkpath(m_directory.filePath("pluginconfig")));
    qputenv("PLUGINMANGER_PATH", QFile::encodeName(m_directory.path()));
    m_boxes = std::make_unique<MessageBoxes>();
    LogLines::take();
}

void CamTest::cleanup()
{
    Recorder::setOnDelivery({});
    Recorder::setOnFactory({});
    factoryCalls();
    for (const QPointer<QObject> &made : qAsConst(m_elements))
        delete made.data();
    emptyReplaceable();

    QCOMPARE(deliveries(), Deliveries());
    QCOMPARE(log(), QList<LogLines::Line>());
    QVERIFY(m_boxes->take().isEmpty());
}

QTpluginsManger4CAM *CamTest::manager()
{
    return QTpluginsManger4CAM::instance();
}

void CamTest::load(const QStringList &names)
{
    m_loaded += names;
    TestFiles::write(m_directory.filePath("pluginconfig/pluginconfig4CAM.json"),
                     TestFiles::configOf(m_loaded));
    manager()->loadAllPlugins();
    for (const QString &name : qAsConst(m_loaded))
        QVERIFY2(manager()->plugin(name + ".dll"), qPrintable(name));
    LogLines::take();
}

void CamTest::useReplaceable(const QString &directory)
{
    m_replaceable = directory;
    emptyReplaceable();
}

void CamTest::replace(const QString &fileName, const QString &fixture)
{
    TestFiles::replace(m_replaceable + '/' + fileName, QStringLiteral(FIXTURE_DIR "/") + fixture);
    if (!m_loaded.isEmpty())
        load({});
}

void CamTest::replaceByNoLibrary(const QString &fileName)
{
    TestFiles::remove(m_replaceable + '/' + fileName);
    TestFiles::write(m_replaceable + '/' + fileName, "no library");
    const KeptLoaders kept;
    manager()->loadAllPlugins();
    QVERIFY(!manager()->plugin(fileName));
    QCOMPARE(m_boxes->take().size(), 1);
    LogLines::take();
}

QWidget *CamTest::insertRoot(const QString &name)
{
    auto *const root = new QWidget;
    m_elements.append(root);
    manager()->insertRoot(name.toStdString(), root);
    return known(root, "root " + name);
}

QWidget *CamTest::graphicFrame(const QString &name)
{
    QWidget *frame = nullptr;
    quietly([&] { frame = manager()->Ov_RegisterGraphicFramework(nullptr, name.toStdString(), false); });
    return known(frame, "graphic frame " + name);
}

QWidget *CamTest::stepFrame(const QString &job, const QString &step)
{
    QWidget *frame = nullptr;
    quietly([&] {
        frame = manager()->Ov_RegisterGraphicFramework4Quorel(nullptr, job.toStdString(), step.toStdString());
    });
    return known(frame, "step frame " + job + " | " + step);
}

QWidget *CamTest::dfmFrame(const QString &job, const QString &step)
{
    QWidget *frame = nullptr;
    quietly([&] {
        frame =
            manager()->Ov_RegisterDFMGraphicFramework4Quorel(nullptr, job.toStdString(), step.toStdString());
    });
    return known(frame, "DFM frame " + job + " | " + step);
}

QWidget *CamTest::matrixFrame(const QString &job)
{
    QWidget *frame = nullptr;
    quietly([&] { frame = manager()->Ov_RegisterMatrixFramework(nullptr, job.toStdString()); });
    return known(frame, "matrix frame " + job);
}

QWidget *CamTest::guideFrame(const QString &job)
{
    QWidget *frame = nullptr;
    quietly([&] { frame = manager()->Ov_RegisterGuideFramework(nullptr, job.toStdString()); });
    return known(frame, "guide frame " + job);
}

// The guide's registration takes any name, so it makes the elements of every name.
QWidget *CamTest::element(const QString &name, QWidget *parent)
{
    QWidget *made = nullptr;
    quietly([&] { made = manager()->Ov_Register_CamGuide(name.toStdString(), parent, "job"); });
    return known(made, name + " in " + descriptions().value(parent, QStringLiteral("an unknown parent")));
}

// Registered again from within its own factory, an element has not been recorded yet.
std::pair<QWidget *, QWidget *> CamTest::twins(const QString &name, QWidget *parent)
{
    QWidget *first = nullptr;
    Recorder::setOnFactory([&](const QString &, QWidget *) {
        Recorder::setOnFactory({});
        first = element(name, parent);
    });
    QWidget *const second = element(name, parent);
    known(first, "first " + name);
    known(second, "second " + name);
    return {first, second};
}

// The only operation that tells is one that logs an error.
bool CamTest::isRegistered(void *object)
{
    m_lines += LogLines::take();
    manager()->recMegToPlugin(object, message("Nobody.dll"));
    return LogLines::take().isEmpty();
}

PluginMetaData CamTest::message(const QString &dst, const Data &data, qint32 type, const QString &src)
{
    return {src, dst, type, data, 0xfedcba9876543210};
}

PluginMetaData CamTest::withMissing(PluginMetaData message, const QStringList &keys)
{
    for (const QString &key : keys)
        message.data.insert(key, QVariant());
    return message;
}

PluginMetaData CamTest::note(const QString &src, const QString &dst, qint32 type, const Data &data)
{
    return {src, dst, type, data, 0};
}

Recorder::Delivery CamTest::to(void *target, const PluginMetaData &message)
{
    return by(message.dst, target, message);
}

Recorder::Delivery CamTest::by(const QString &library, void *target, const PluginMetaData &message)
{
    return {library, target, message};
}

void CamTest::onNextDelivery(std::function<void()> action)
{
    Recorder::setOnDelivery([action = std::move(action)](const Recorder::Delivery &) {
        Recorder::setOnDelivery({});
        action();
    });
}

void CamTest::onDeliveryTo(void *target, std::function<void()> action)
{
    Recorder::setOnDelivery([target, action = std::move(action)](const Recorder::Delivery &delivery) {
        if (delivery.target != target)
            return;
        Recorder::setOnDelivery({});
        action();
    });
}

Deliveries CamTest::deliveries()
{
    Deliveries taken;
    taken.list = std::exchange(m_deliveries, {}) + Recorder::takeDeliveries();
    return taken;
}

QList<Recorder::FactoryCall> CamTest::factoryCalls()
{
    const QList<Recorder::FactoryCall> calls = Recorder::takeFactoryCalls();
    for (const Recorder::FactoryCall &call : calls)
        m_elements.append(static_cast<QObject *>(call.element));
    return calls;
}

QList<LogLines::Line> CamTest::log()
{
    return std::exchange(m_lines, {}) + LogLines::take();
}

QList<MessageBoxes::Box> CamTest::boxes()
{
    return m_boxes->take();
}

LogLines::Line CamTest::info(const QByteArray &text)
{
    return {'I', "pluginManger4CAM", text};
}

LogLines::Line CamTest::error(const QByteArray &text)
{
    return {'E', "pluginManger4CAM", text};
}

// What an action that only prepares a test does in the plug-ins is not what the test looks at.
void CamTest::quietly(const std::function<void()> &action)
{
    m_deliveries += Recorder::takeDeliveries();
    action();
    Recorder::takeDeliveries();
    factoryCalls();
}

void CamTest::emptyReplaceable()
{
    if (m_replaceable.isEmpty())
        return;
    TestFiles::removeLeftovers(m_replaceable);
    const QDir directory(m_replaceable, QStringLiteral("*.dll"));
    for (const QString &file : directory.entryList(QDir::Files))
        TestFiles::remove(directory.filePath(file));
}

QWidget *CamTest::known(QWidget *widget, const QString &description)
{
    if (widget)
        descriptions().insert(widget, description);
    return widget;
}
