#pragma once

#include "loglines.h"
#include "messageboxes.h"
#include "pluginManger4CAM.h"
#include "recorder.h"
#include "testfiles.h"

#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QWidget>

#include <functional>
#include <initializer_list>
#include <memory>
#include <utility>

namespace Recorder {

/// True when the two agree in every field, types and validity of the parameters included.
bool operator==(const Delivery &left, const Delivery &right);

}

/// Deliveries in their order, as QCOMPARE compares and shows them.
struct Deliveries
{
    Deliveries() = default;
    Deliveries(std::initializer_list<Recorder::Delivery> deliveries)
        : list(deliveries)
    {
    }

    QList<Recorder::Delivery> list;
};

bool operator==(const Deliveries &left, const Deliveries &right);
char *toString(const Deliveries &deliveries);

using Data = QMap<QString, QVariant>;

/// What the tests of the CAM manager share: a directory for its configuration, a loaded set, frames with
/// elements in them, and what happens in the plug-ins. Functions each run in a process of their own, so each
/// begins with a new manager.
///
/// A test ends with an error when a delivery, a log line or a message box is left that it has not looked at.
class CamTest : public QObject
{
    Q_OBJECT

protected slots:
    void init();
    void cleanup();

protected:
    static inline const QString graphicEditor = QStringLiteral("ORVIK-GraphicEditor.dll");
    static inline const QString matrixEditor = QStringLiteral("ORVIK-Matrix.dll");
    static inline const QString guide = QStringLiteral("Graphic_CamGuide.dll");
    static inline const QString view = QStringLiteral("Graphic_View.dll");
    static inline const QString tips = QStringLiteral("Graphic_Tips.dll");
    static inline const QString jobList = QStringLiteral("Graphic_JobList.dll");
    static inline const QString matrixTable = QStringLiteral("Matrix.dll");

    static inline const QString wildcard = QStringLiteral("!$*!OV?*? | !*$!DFM?*?");

    static QTpluginsManger4CAM *manager();

    /// What PLUGINMANGER_PATH says.
    QString directory() const { return m_directory.path(); }

    /// Loads libraries, named without ".dll", beside those that are loaded already. All of the above by
    /// default.
    void load(const QStringList &names = {"ORVIK-GraphicEditor", "ORVIK-Matrix", "Graphic_CamGuide",
                                          "Graphic_View", "Graphic_Tips", "Graphic_JobList", "Matrix"});

    /// Libraries are found in this directory before the healthy ones. Empty before and after each test.
    void useReplaceable(const QString &directory);
    /// Puts a fixture there under another name, or a file that does not load, and loads all libraries anew.
    void replace(const QString &fileName, const QString &fixture);
    void replaceByNoLibrary(const QString &fileName);

    // These leave no trace in deliveries() and factoryCalls().
    QWidget *insertRoot(const QString &name = "Engineering");
    QWidget *graphicFrame(const QString &name);
    /// Frames of the other host variant, which do not belong to the root.
    QWidget *stepFrame(const QString &job, const QString &step);
    QWidget *dfmFrame(const QString &job, const QString &step);
    QWidget *matrixFrame(const QString &job);
    QWidget *guideFrame(const QString &job);
    /// An element of any name.
    QWidget *element(const QString &name, QWidget *parent);
    /// Two elements of one name in one parent, in the order of the registry.
    std::pair<QWidget *, QWidget *> twins(const QString &name, QWidget *parent);

    bool isRegistered(void *object);

    static PluginMetaData message(const QString &dst, const Data &data = {}, qint32 type = 7,
                                  const QString &src = "Sender.dll");
    /// The message with parameters added that a reader looked for in vain.
    static PluginMetaData withMissing(PluginMetaData message, const QStringList &keys);
    /// A message as the manager makes it.
    static PluginMetaData note(const QString &src, const QString &dst, qint32 type, const Data &data = {});

    static Recorder::Delivery to(void *target, const PluginMetaData &message);
    static Recorder::Delivery by(const QString &library, void *target, const PluginMetaData &message);

    static void onNextDelivery(std::function<void()> action);
    static void onDeliveryTo(void *target, std::function<void()> action);

    // Each returns what came since its last call.
    Deliveries deliveries();
    QList<Recorder::FactoryCall> factoryCalls();
    QList<LogLines::Line> log();
    QList<MessageBoxes::Box> boxes();

    static LogLines::Line info(const QByteArray &text);
    static LogLines::Line error(const QByteArray &text);

    MessageBoxes &messageBoxes() { return *m_boxes; }

private:
    void quietly(const std::function<void()> &action);
    void emptyReplaceable();
    QWidget *known(QWidget *widget, const QString &description);

    QTemporaryDir m_directory;
    QString m_replaceable;
    std::unique_ptr<MessageBoxes> m_boxes;
    QStringList m_loaded;
    QList<LogLines::Line> m_lines;
    QList<Recorder::Delivery> m_deliveries;
    QList<QPointer<QObject>> m_elements;
};

/// Compares all that a box shows.
bool isInfoBox(const MessageBoxes::Box &box, const QString &text);
