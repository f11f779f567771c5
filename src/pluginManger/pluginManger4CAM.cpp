#include "pluginManger4CAM.h"

#include "common.h"
#include "private/delivery_p.h"
#include "private/elementFactories_p.h"
#include "private/frameFactories_p.h"
#include "private/logTexts_p.h"
#include "private/messageTypes_p.h"
#include "private/nameText_p.h"
#include "private/registry_p.h"
#include "private/resolve_p.h"

#include <QtCore/QDir>
#include <QtCore/QException>
#include <QtCore/QLibrary>
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

#include <glog/logging.h>

#include <exception>

using namespace PluginMangerInternal;

namespace {

using ElementFactoryFunction = void *(QWidget *parent);
using TextElementFactoryFunction = void *(QWidget *parent, const QString &text);
using FrameFactoryFunction = void *(QWidget *parent);
using StepFrameFactoryFunction = void *(QWidget *parent, const QString &job, const QString &step);

using MessageData = QMap<QString, QVariant>;

/// The keys of a message's data that the manager reads or writes.
namespace DataKey {
QString dstType()
{
    return QStringLiteral("DstType");
}
QString jobName()
{
    return QStringLiteral("JobName");
}
QString step()
{
    return QStringLiteral("Step");
}
QString isCamAssistant()
{
    return QStringLiteral("IsCamAssistant");
}
QString oldJobName()
{
    return QStringLiteral("OldJobName");
}
QString newJobName()
{
    return QStringLiteral("NewJobName");
}
QString changeStepName()
{
    return QStringLiteral("ChangeStepName");
}
}

/// Reads a parameter, and adds an invalid one where it is missing: receivers find it in their copy. Data that
/// has it stays shared with the sender's.
QVariant valueOf(MessageData &data, const QString &key)
{
    const auto entry = qAsConst(data).constFind(key);
    return entry == data.constEnd() ? data[key] : *entry;
}

QString textOf(MessageData &data, const QString &key)
{
    return valueOf(data, key).toString();
}

/// The library of the graphic frames. Kept, as every stroke of a key is sent there.
const QString &graphicEditor()
{
    static const QString &library = *new QString(QString::fromLatin1(FrameFactories::graphicEditor.library));
    return library;
}

QString separator()
{
    return QString::fromLatin1(FrameNames::separator);
}

QString guideNameOf(const QString &job)
{
    return job + QLatin1String(FrameNames::guideSuffix);
}

bool isWildcard(const RegisterRecord &frame)
{
    return frame.name == FrameNames::wildcard;
}

PluginMetaData makeMessage(const QString &src, const QString &dst, qint32 type, const MessageData &data = {})
{
    PluginMetaData message;
    message.src = src;
    message.dst = dst;
    message.type = type;
    message.data = data;
    return message;
}

/// A message to the graphic editor, which finds its own name as the sender.
PluginMetaData makeEditorMessage(qint32 type, const MessageData &data = {})
{
    return makeMessage(graphicEditor(), graphicEditor(), type, data);
}

/// What the matrix and guide editors are told about a new frame: the job stands in the place of the receiver.
PluginMetaData makeJobMessage(const std::string &job, qint32 type)
{
    const QString jobName = QString::fromStdString(job);
    return makeMessage({}, jobName, type, {{DataKey::jobName(), jobName}});
}

bool isFrameKind(const QString &kind)
{
    return kind == QLatin1String(RecordKind::graphic) || kind == QLatin1String(RecordKind::matrix)
           || kind == QLatin1String(RecordKind::guide);
}

bool isEditor(const QString &library)
{
    return library == QLatin1String(FrameFactories::matrix.library) || library == graphicEditor()
           || library == QLatin1String(FrameFactories::camGuide.library);
}

/// The sender or receiver of a message as the log names it.
std::string withoutSuffix(QString library)
{
    return library.remove(QLatin1String(".dll")).toStdString();
}

/// Runs `operation`. Shows and logs `text` when it throws a pointer to QException, and leaves the exception
/// alone: who threw it owns it. Some operations have the text of another one: people search for it as it is.
template <typename Operation>
void showFailure(const char *text, Operation operation)
{
    try {
        operation();
    } catch (QException *) {
        QMessageBox::information(nullptr, QStringLiteral("Info"), QString::fromLatin1(text), 0, 0, 0);
        LOG(ERROR) << text;
    }
}

/// Tells by its name whether a graphic frame of the job `job` is to be updated. Reading `data` adds to it the
/// keys that it lacks, which receivers find in their copy.
std::function<bool(const std::string &)> graphicFramesToUpdate(const QString &job, MessageData &data)
{
    const QString start = job + QLatin1String(FrameNames::separator);
    const QVariant step = valueOf(data, DataKey::changeStepName());
    if (step.isValid())
        return [name = NameText(start + step.toString())](const std::string &frame) {
            return name.equals(frame);
        };
    const NameText prefix(start);
    // The second key is read, and so added, only where the first is there.
    if (valueOf(data, DataKey::oldJobName()).isValid() && valueOf(data, DataKey::newJobName()).isValid())
        return [prefix](const std::string &frame) { return !prefix.equals(frame) && prefix.isIn(frame); };
    return [prefix](const std::string &frame) { return prefix.isIn(frame); };
}

QString configFile(const QString &fileName)
{
    const QString base = QString::fromStdString(Common::getPath());
    const QString directory = QString::fromStdString(Common::getPath_pluginconfig());
    return (base.isEmpty() ? QDir::currentPath() : base) + QLatin1Char('/') + directory + QLatin1Char('/')
           + fileName;
}

}

QTpluginsManger4CAM *QTpluginsManger4CAM::m_instance4CAM = nullptr;

QTpluginsManger4CAM *QTpluginsManger4CAM::instance()
{
    if (!m_instance4CAM)
        m_instance4CAM = new QTpluginsManger4CAM;
    return m_instance4CAM;
}

bool QTpluginsManger4CAM::loadAllPlugins()
{
    readPluginConfig(m_private, configFile(QStringLiteral("pluginconfig4CAM.json")));
    loadListedLibraries(m_private);
    m_bCAMLoaded = true;
    return true;
}

bool QTpluginsManger4CAM::loadAllDFMPlugins()
{
    QTPluginsMangerPrivate description;
    readPluginConfig(description, configFile(QStringLiteral("pluginconfig4DFM.json")));
    loadListedLibraries(description);
    m_bDFMLoaded = true;
    return true;
}

bool QTpluginsManger4CAM::isCAMLoaded() const
{
    return m_bCAMLoaded;
}

bool QTpluginsManger4CAM::isDFMLoaded() const
{
    return m_bDFMLoaded;
}

QLibrary *QTpluginsManger4CAM::plugin(const QString &name) const
{
    return findLibrary(m_private, name);
}

void QTpluginsManger4CAM::insertRoot(const std::string &name, void *root)
{
    try {
        registry().appendRecord({RecordKind::engineerRoot, name, root, nullptr});
    } catch (const std::exception &) {
        LOG(ERROR) << "insertRoot error.";
    }
}

void *QTpluginsManger4CAM::getRoot()
{
    return registry().findRootRecord().object;
}

bool QTpluginsManger4CAM::Ov_isRegisterFrame(void *)
{
    return true;
}

void QTpluginsManger4CAM::Ov_RegisterClear() {}

QDockWidget *QTpluginsManger4CAM::OvDI_RegisterGraphic_JobList(QWidget *parent)
{
    return registerElement(ElementFactories::DI_Graphic_JobList, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterCAMMenuAction(QWidget *parent)
{
    return registerElement(ElementFactories::CAMMenuAction, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterCAMMenuFile(QWidget *parent)
{
    return registerElement(ElementFactories::CAMMenuFile, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterCAMMenuOptions(QWidget *parent)
{
    return registerElement(ElementFactories::CAMMenuOptions, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterCAM_Common_MenuBar_Info(QWidget *parent)
{
    return registerElement(ElementFactories::CAM_Common_MenuBar_Info, parent);
}

QVBoxLayout *QTpluginsManger4CAM::Ov_RegisterCAM_FilterAndInfo_Bar(QWidget *parent)
{
    return registerElement(ElementFactories::CAM_FilterAndInfo_Bar, parent);
}

QScrollArea *QTpluginsManger4CAM::Ov_RegisterCAM_PNDATA_VIEW(QWidget *parent)
{
    return registerElement(ElementFactories::CAM_PNDATA_VIEW, parent);
}

QObject *QTpluginsManger4CAM::Ov_RegisterCAM_Progress_Dialog(QWidget *parent)
{
    return registerElement(ElementFactories::CAM_Progress_Dialog, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterDFM_Edit_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::DFM_Edit_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterDFM_Operate_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::DFM_Operate_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterDFM_View_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::DFM_View_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_Actions_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Actions_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_Analysis_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Analysis_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_CamDI(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_CamDI, parent);
}

QHBoxLayout *QTpluginsManger4CAM::Ov_RegisterGraphic_Coordinate(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Coordinate, parent);
}

QToolBar *QTpluginsManger4CAM::Ov_RegisterGraphic_DI_Tool(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_DI_Tool, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_Edit_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Edit_Menu, parent);
}

QDockWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_JobList2(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_JobList2, parent);
}

QDockWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_JobList(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_JobList, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_MenuBar_DFM(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MenuBar_DFM, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_MenuBar_Other(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MenuBar_Other, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_MenuBar_ROUT(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MenuBar_ROUT, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_MenuBar_Step(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MenuBar_Step, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_Menu_File(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Menu_File, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_MiniMap(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MiniMap, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_Tips(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Tips, parent);
}

QGridLayout *QTpluginsManger4CAM::Ov_RegisterGraphic_Tool_Edit(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Tool_Edit, parent);
}

QGridLayout *QTpluginsManger4CAM::Ov_RegisterGraphic_Tool_move(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Tool_move, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_View(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_View, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterMatrix_Edit_Menu(QWidget *parent, const std::string &text)
{
    return registerElement(ElementFactories::Matrix_Edit_Menu, parent, text);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterMatrix_File_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Matrix_File_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterMatrix_Option_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Matrix_Option_Menu, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterMatrix_Table(QWidget *parent, const std::string &text)
{
    return registerElement(ElementFactories::Matrix_Table, parent, text);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterMatrix_ToolBar(QWidget *parent)
{
    return registerElement(ElementFactories::Matrix_ToolBar, parent);
}

QObject *QTpluginsManger4CAM::Ov_Register_Common(std::string library, QWidget *parent)
{
    return static_cast<QObject *>(registerElement(library, ElementFactories::Common.symbol, parent, nullptr));
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGraphicFramework(QWidget *parent, const std::string &name,
                                                          bool isCamAssistant)
{
    return registerGraphicFrame(parent, name, [&](void *frame, const QString &job, const QString &step) {
        const QString assistant = isCamAssistant ? QStringLiteral("true") : QStringLiteral("false");
        deliverTo(graphicEditor(), frame,
                  makeEditorMessage(MessageType::frameOpened, {{DataKey::jobName(), job},
                                                               {DataKey::step(), step},
                                                               {DataKey::isCamAssistant(), assistant}}));
    });
}

QWidget *QTpluginsManger4CAM::Ov_RegisterDFMGraphicFramework(QWidget *parent, const std::string &name, bool)
{
    return registerGraphicFrame(parent, name, [&](void *frame, const QString &, const QString &) {
        if (deliverTo(graphicEditor(), frame, makeEditorMessage(MessageType::dfmFrameOpened)))
            LOG(INFO) << "ok";
    });
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGraphicFramework4Quorel(QWidget *parent, const std::string &job,
                                                                 const std::string &step)
{
    const std::string name = job + FrameNames::separator + step;
    const QString jobName = QString::fromStdString(job);
    const QString stepName = QString::fromStdString(step);
    return registerStepFrame(
        parent, jobName, stepName, {RecordKind::graphic, name, nullptr, nullptr},
        [&] { return registry().findFrame(RecordKind::graphic, name); },
        makeEditorMessage(MessageType::frameOpened,
                          {{DataKey::jobName(), jobName}, {DataKey::step(), stepName}}));
}

QWidget *QTpluginsManger4CAM::Ov_RegisterDFMGraphicFramework4Quorel(QWidget *parent, const std::string &job,
                                                                    const std::string &step)
{
    RegisterRecord record(RecordKind::graphic, FrameNames::wildcard, nullptr, nullptr);
    record.key = job + FrameNames::separator + step;
    return registerStepFrame(
        parent, QString::fromStdString(job), QString::fromStdString(step), record,
        [&] { return registry().findGraphicFrameByKey(record.key); },
        makeEditorMessage(MessageType::dfmFrameOpened));
}

QWidget *QTpluginsManger4CAM::Ov_RegisterMatrixFramework(QWidget *parent, const std::string &job)
{
    return registerRootFrame(FrameFactories::matrix, RecordKind::matrix, parent, job,
                             MessageType::frameOpened);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGuideFramework(QWidget *parent, const std::string &job)
{
    return registerRootFrame(FrameFactories::camGuide, RecordKind::guide, parent, job,
                             MessageType::guideOpened);
}

QWidget *QTpluginsManger4CAM::Ov_Register_CamGuide(std::string name, QWidget *parent, const std::string &job)
{
    const PluginMetaData message = makeJobMessage(job, MessageType::guideOpened);
    return registerFrame(
        FrameFactories::camGuide, [&] { return registry().findRecord(name, parent); },
        [&](QFunctionPointer factory) {
            void *const element = functionAs<FrameFactoryFunction>(factory)(parent);
            registry().appendRecord({RecordKind::plugin, name, element, parent});
            deliverTo(QLatin1String(FrameFactories::camGuide.library), element, message);
            return element;
        });
}

void QTpluginsManger4CAM::Ov_UnRegisterGraphicFramework4Quorel(const std::string &job,
                                                               const std::string &step)
{
    const std::string name = job + FrameNames::separator + step;
    const RegisterRecord frame = registry().findFrame(RecordKind::graphic, name);
    if (frame.isEmpty())
        return;
    registry().eraseGraphicFramesByName(name);
    closeUnregisteredFrame(frame.object);
}

void QTpluginsManger4CAM::Ov_UnRegisterDFMGraphicFramework4Quorel(const std::string &job,
                                                                  const std::string &step)
{
    const std::string key = job + FrameNames::separator + step;
    const RegisterRecord frame = registry().findGraphicFrameByKey(key);
    if (frame.isEmpty())
        return;
    registry().eraseGraphicFramesByKey(key);
    closeUnregisteredFrame(frame.object);
}

void QTpluginsManger4CAM::recMegToPlugin(void *frame, PluginMetaData meta)
{
    if (meta.type == MessageType::invalid) {
        LOG(ERROR) << "recMegToPlugin metadate type is " << meta.type;
        return;
    }
    if (registry().findRecordByObject(frame).isEmpty()) {
        LOG(ERROR) << "recMegToPlugin metadate frame is " << frame << " src: " << meta.src.toStdString()
                   << " dst:" << meta.dst.toStdString() << "type:" << meta.type;
        return;
    }
    const RegisterRecord &element = registry().findRecord(meta.dst.toStdString(), frame);
    if (element.isEmpty() || !deliverTo(meta.dst, element.object, meta))
        return;
    if (meta.type != MessageType::quiet)
        LOG(INFO) << withoutSuffix(meta.src) << " send to " << withoutSuffix(meta.dst) << " " << meta.type;
}

void QTpluginsManger4CAM::pluginTransmitData(PluginMetaData meta)
{
    showFailure("pluginTransmitData Error.", [&] {
        void *const root = getRoot();
        const QString dstType = textOf(meta.data, DataKey::dstType());
        if (dstType == QLatin1String(RecordKind::graphic)) {
            const QString job = textOf(meta.data, DataKey::jobName());
            const QString step = textOf(meta.data, DataKey::step());
            deliverIntoFrame(registry().findRecord((job + separator() + step).toStdString(), root), meta);
        } else if (dstType == QLatin1String(RecordKind::engineerRoot)) {
            deliverToElementsNamed(root, meta);
        } else if (dstType == QLatin1String(RecordKind::matrix)) {
            const QString job = textOf(meta.data, DataKey::jobName());
            deliverIntoFrame(registry().findRecord(job.toStdString(), root), meta);
        } else if (dstType == QLatin1String(RecordKind::guide)) {
            const QString job = textOf(meta.data, DataKey::jobName());
            const RegisterRecord &frame =
                registry().findFrame(RecordKind::guide, guideNameOf(job).toStdString());
            if (!frame.isEmpty())
                deliverTo(meta.dst, frame.object, meta);
        }
    });
}

void QTpluginsManger4CAM::transmitDataToFramework(void *frame, const PluginMetaData &meta)
{
    showFailure("transmitDataToFramework Error.", [&] {
        if (isEditor(meta.dst))
            deliverTo(meta.dst, frame, meta);
    });
}

void QTpluginsManger4CAM::sendKeyBoardStatusToGraphic(void *frame, const PluginMetaData &meta)
{
    if (!registry().findRecordByObject(frame).isEmpty())
        deliverTo(graphicEditor(), frame, meta);
}

void QTpluginsManger4CAM::Eda_CAM_TransmitData(const QString &jobName, PluginMetaData meta)
{
    const QString dstType = textOf(meta.data, DataKey::dstType());
    Eda_setTransmitData(dstType, jobName, meta);
}

void QTpluginsManger4CAM::Eda_setTransmitData(const QString &dstType, const QString &jobName,
                                              PluginMetaData meta)
{
    showFailure("updateMatrix Error.", [&] {
        std::vector<RegisterRecord> frames;
        if (dstType == QLatin1String(RecordKind::graphic))
            frames = registry().collectFrames(RecordKind::graphic);
        if (frames.empty())
            deliverToElementsNamed(getRoot(), meta);
        else
            deliverToFrames(
                frames,
                [job = NameText(jobName)](const RegisterRecord &frame) {
                    return job.isStartOf(frame.name, FrameNames::separator);
                },
                meta);
    });
}

void QTpluginsManger4CAM::Ov_SetCurrentText(const QString &text, PluginMetaData meta)
{
    const QString dstType = textOf(meta.data, DataKey::dstType());
    setInterfaceTexts(dstType, text, meta);
}

void QTpluginsManger4CAM::setInterfaceTexts(const QString &dstType, const QString &text, PluginMetaData meta)
{
    showFailure("updateMatrix Error.", [&] {
        std::vector<RegisterRecord> frames;
        if (isFrameKind(dstType))
            frames = registry().collectFrames(dstType.toStdString());
        if (frames.empty())
            deliverToElementsNamed(getRoot(), meta);
        else
            deliverToFrames(
                frames,
                [job = NameText(text)](const RegisterRecord &frame) {
                    return job.isStartOf(frame.name, FrameNames::separator) || isWildcard(frame);
                },
                meta);
    });
}

void QTpluginsManger4CAM::setEngineerText(const QString &, PluginMetaData) {}

void QTpluginsManger4CAM::setGraphicText(const QString &, PluginMetaData) {}

void QTpluginsManger4CAM::setMatrixText(const QString &, PluginMetaData) {}

void QTpluginsManger4CAM::ChangeCompareJobInfo(PluginMetaData meta)
{
    showFailure("updateGraphic Error.", [&] {
        for (const RegisterRecord &frame : registry().collectFrames(RecordKind::graphic))
            deliverToElementsContaining(frame.object, meta);
    });
}

void QTpluginsManger4CAM::OV_ChangeJobNameAndUpdateJob(const QString &oldJobName, const QString &newJobName)
{
    const std::string oldName = oldJobName.toStdString();
    const std::string newName = newJobName.toStdString();
    const QString newJob = newJobName; // The caller's may change while plug-ins are told.
    registry().renameFrames(RecordKind::matrix, oldName, newName);
    registry().renameFrames(RecordKind::guide, oldName, newName);

    const MessageData newNameOnly{{DataKey::newJobName(), newJobName}};
    const MessageData bothNames{{DataKey::oldJobName(), oldJobName}, {DataKey::newJobName(), newJobName}};

    const RegisterRecord &matrix = registry().findRecord(newName, getRoot());
    if (!matrix.isEmpty()) {
        MessageData data = newNameOnly;
        data[DataKey::dstType()] = QString::fromLatin1(RecordKind::matrix);
        const QString editor = QString::fromLatin1(FrameFactories::matrix.library);
        deliverTo(editor, matrix.object, makeMessage({}, editor, MessageType::matrixRenamed, data));
    }
    updateMatrix(newJob,
                 makeMessage({}, QStringLiteral("Matrix.dll"), MessageType::matrixRenamed, newNameOnly));
    updateGraphic(newJob,
                  makeMessage({}, QStringLiteral("Graphic_JobList.dll"), MessageType::jobRenamed, bothNames));
    updateGuide(newJob, makeMessage({}, QString::fromLatin1(FrameFactories::camGuide.library),
                                    MessageType::jobRenamed, bothNames));
}

void QTpluginsManger4CAM::Ov_ChangeStepName(const QString &jobName, const QString &oldStepName,
                                            const QString &newStepName)
{
    const QString newName = jobName + separator() + newStepName;
    const QString oldName = jobName + separator() + oldStepName;
    registry().renameFrames(RecordKind::graphic, oldName.toStdString(), newName.toStdString());
}

void QTpluginsManger4CAM::Ov_DeleteTreeNode(const QString &nodeType, const QString &name)
{
    const NameText node(name);
    const auto isNamed = [&](const RegisterRecord &frame) { return node.equals(frame.name); };
    if (nodeType == QLatin1String(RecordKind::matrix)) {
        const std::vector<RegisterRecord> matrixFrames = registry().collectFrames(RecordKind::matrix);
        const std::vector<RegisterRecord> graphicFrames = registry().collectFrames(RecordKind::graphic);
        const std::vector<RegisterRecord> guideFrames = registry().collectFrames(RecordKind::guide);
        deleteFrames(matrixFrames, isNamed, FrameFactories::matrix);
        deleteFrames(
            graphicFrames,
            [&](const RegisterRecord &frame) { return node.isStartOf(frame.name, FrameNames::separator); },
            FrameFactories::graphicEditor);
        deleteFrames(
            guideFrames, [&](const RegisterRecord &frame) { return node.isStartOf(frame.name, "|"); },
            FrameFactories::camGuide);
    } else if (nodeType == QLatin1String(RecordKind::graphic)) {
        deleteFrames(registry().collectFrames(RecordKind::graphic), isNamed, FrameFactories::graphicEditor);
    }
}

void QTpluginsManger4CAM::Ov_UpdateJob(const QString &name, PluginMetaData meta)
{
    const QString dstType = textOf(meta.data, DataKey::dstType());
    if (dstType == QLatin1String(RecordKind::graphic))
        updateGraphic(name, meta);
    else if (dstType == QLatin1String(RecordKind::engineerRoot))
        updateEngieer(name, meta);
    else if (dstType == QLatin1String(RecordKind::matrix))
        updateMatrix(name, meta);
}

void QTpluginsManger4CAM::updateEngieer(const QString &, PluginMetaData meta)
{
    showFailure("updateEngieer Error.", [&] { deliverToElementsNamed(getRoot(), meta); });
}

void QTpluginsManger4CAM::updateGraphic(const QString &name, PluginMetaData meta)
{
    showFailure("updateGraphic Error.", [&] {
        const auto matches = graphicFramesToUpdate(name, meta.data);
        for (const RegisterRecord &frame : registry().collectFrames(RecordKind::graphic)) {
            if (isWildcard(frame) || matches(frame.name))
                deliverToElementsContaining(frame.object, meta);
        }
    });
}

void QTpluginsManger4CAM::updateGuide(const QString &name, PluginMetaData meta)
{
    showFailure("updateMatrix Error.", [&] {
        const NameText frameName(guideNameOf(name));
        deliverToFrames(
            registry().collectFrames(RecordKind::guide),
            [&](const RegisterRecord &frame) { return frameName.equals(frame.name); }, meta);
    });
}

void QTpluginsManger4CAM::updateMatrix(const QString &name, PluginMetaData meta)
{
    showFailure("updateMatrix Error.", [&] {
        const NameText frameName(name);
        for (const RegisterRecord &frame : registry().collectFrames(RecordKind::matrix)) {
            if (frameName.equals(frame.name))
                deliverToElementsContaining(frame.object, meta);
        }
    });
}

QTpluginsManger4CAM::QTpluginsManger4CAM() = default;

QTpluginsManger4CAM::~QTpluginsManger4CAM() = default;

void QTpluginsManger4CAM::loadListedLibraries(const QTPluginsMangerPrivate &description)
{
    // A copy, since a failed load shows a message box, and whatever runs meanwhile may read in more names.
    const QHash<QString, QVariant> names = description.m_names;
    for (const QVariant &name : names)
        loadLibraryPlugin(m_private, name.toString() + QLatin1String(".dll"));
    LOG(INFO) << LogTexts::toGbk(LogTexts::allLoaded());
}

PluginMangerInternal::Registry QTpluginsManger4CAM::registry()
{
    return Registry(m_registerList);
}

template <typename Element>
Element *QTpluginsManger4CAM::registerElement(const ElementFactory<Element> &factory, QWidget *parent)
{
    return static_cast<Element *>(registerElement(factory.library, factory.symbol, parent, nullptr));
}

template <typename Element>
Element *QTpluginsManger4CAM::registerElement(const TextElementFactory<Element> &factory, QWidget *parent,
                                              const std::string &text)
{
    const QString factoryText = QString::fromStdString(text);
    return static_cast<Element *>(registerElement(factory.library, factory.symbol, parent, &factoryText));
}

void *QTpluginsManger4CAM::registerElement(const std::string &library, const char *symbol, QWidget *parent,
                                           const QString *text)
{
    QLibrary *const loaded = plugin(QString::fromStdString(library));
    const QFunctionPointer factory = loaded ? loaded->resolve(symbol) : nullptr;
    if (!factory)
        return nullptr;

    const RegisterRecord &record = registry().findRecord(library, parent);
    if (!record.isEmpty())
        return record.object;

    void *const element = text ? functionAs<TextElementFactoryFunction>(factory)(parent, *text)
                               : functionAs<ElementFactoryFunction>(factory)(parent);
    registry().appendRecord({RecordKind::plugin, library, element, parent});
    return element;
}

QWidget *QTpluginsManger4CAM::registerFrame(const FrameFactory &factory, const FindFrame &find,
                                            const MakeFrame &make)
{
    QLibrary *const library = plugin(QString::fromLatin1(factory.library));
    const QFunctionPointer function = library ? library->resolve(factory.symbol) : nullptr;
    if (!function)
        return nullptr;
    const RegisterRecord known = find();
    return static_cast<QWidget *>(known.isEmpty() ? make(function) : known.object);
}

// The factories that these three call may call back, and change whatever the caller's references refer to.
// So what is needed afterwards is copied before.

QWidget *QTpluginsManger4CAM::registerGraphicFrame(QWidget *parent, std::string name, const TellStep &tell)
{
    const auto make = [&](QFunctionPointer factory) -> void * {
        const QStringList parts = QString::fromStdString(name).split(separator());
        if (parts.size() != 2)
            return nullptr;
        void *const frame = functionAs<StepFrameFactoryFunction>(factory)(parent, parts.at(0), parts.at(1));
        registry().appendRecord({RecordKind::graphic, name, frame, getRoot()});
        tell(frame, parts.at(0), parts.at(1));
        return frame;
    };
    return registerFrame(
        FrameFactories::graphicEditor, [&] { return registry().findFrame(RecordKind::graphic, name); }, make);
}

QWidget *QTpluginsManger4CAM::registerStepFrame(QWidget *parent, const QString &job, const QString &step,
                                                RegisterRecord record, const FindFrame &find,
                                                const PluginMetaData &message)
{
    // Told by the library that made it, or not at all: the factory may load the set anew.
    const QPointer<QLibrary> editor = plugin(graphicEditor());
    return registerFrame(FrameFactories::graphicEditor, find, [&](QFunctionPointer factory) {
        record.object = functionAs<StepFrameFactoryFunction>(factory)(parent, job, step);
        registry().appendRecord(record);
        deliver(editor, record.object, message);
        return record.object;
    });
}

QWidget *QTpluginsManger4CAM::registerRootFrame(const FrameFactory &factory, const std::string &kind,
                                                QWidget *parent, std::string job, qint32 messageType)
{
    const auto make = [&](QFunctionPointer function) {
        void *const frame = functionAs<FrameFactoryFunction>(function)(parent);
        registry().appendRecord({kind, job, frame, getRoot()});
        deliverTo(QLatin1String(factory.library), frame, makeJobMessage(job, messageType));
        return frame;
    };
    return registerFrame(
        factory, [&] { return registry().findFrame(kind, job); }, make);
}

void QTpluginsManger4CAM::closeUnregisteredFrame(void *frame)
{
    const std::vector<RegisterRecord> before = m_registerList;
    for (const RegisterRecord &record : before)
        registry().eraseRecord(record.name, frame);
    deliverTo(graphicEditor(), frame, makeEditorMessage(MessageType::frameClosed));
}

void QTpluginsManger4CAM::deleteFrames(const std::vector<RegisterRecord> &frames, const Belongs &belongs,
                                       const FrameFactory &editor)
{
    const PluginMetaData message =
        makeMessage({}, QString::fromLatin1(editor.library), MessageType::frameClosed);
    for (const RegisterRecord &frame : frames) {
        if (!belongs(frame))
            continue;
        registry().removeRecordsOf(frame.object);
        transmitDataToFramework(frame.object, message);
    }
}

bool QTpluginsManger4CAM::deliverTo(const QString &library, void *target, const PluginMetaData &message) const
{
    return deliver(plugin(library), target, message);
}

void QTpluginsManger4CAM::deliverToFrames(const std::vector<RegisterRecord> &frames, const Belongs &belongs,
                                          const PluginMetaData &message)
{
    for (const RegisterRecord &frame : frames) {
        if (belongs(frame))
            deliverTo(message.dst, frame.object, message);
    }
}

void QTpluginsManger4CAM::deliverIntoFrame(const RegisterRecord &frame, const PluginMetaData &message)
{
    if (!frame.isEmpty())
        deliverToElementsNamed(frame.object, message);
}

void QTpluginsManger4CAM::deliverToElementsNamed(void *parent, const PluginMetaData &message)
{
    for (void *const element : registry().collectElementsNamed(parent, NameText(message.dst)))
        deliverTo(message.dst, element, message);
}

void QTpluginsManger4CAM::deliverToElementsContaining(void *parent, const PluginMetaData &message)
{
    for (void *const element : registry().collectElementsContaining(parent, NameText(message.dst)))
        deliverTo(message.dst, element, message);
}
