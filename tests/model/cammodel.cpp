#include "cammodel.h"

#include "gbktexts.h"

#include <QtCore/QException>

#include <sstream>

namespace {

const QString graphicEditor = QStringLiteral("ORVIK-GraphicEditor.dll");
const QString matrixEditor = QStringLiteral("ORVIK-Matrix.dll");
const QString camGuide = QStringLiteral("Graphic_CamGuide.dll");
const QString graphicFactory = QStringLiteral("GetORVIKGraphicInstance");
const QString matrixFactory = QStringLiteral("GetORVIKMatrixInstance");
const QString guideFactory = QStringLiteral("GetPluginCamGuideInstance");
const QString separator = QStringLiteral(" | ");
const std::string wildcard = "!$*!OV?*? | !*$!DFM?*?";

QString text(const std::string &bytes)
{
    return QString::fromStdString(bytes);
}

QString firstPart(const RegisterRecord &frame, const QString &at)
{
    return text(frame.name).split(at, Qt::KeepEmptyParts, Qt::CaseSensitive).first();
}

QString withoutSuffix(QString name)
{
    return name.replace(QStringLiteral(".dll"), QString());
}

PluginMetaData message(const QString &src, const QString &dst, qint32 type,
                       const QMap<QString, QVariant> &data = {})
{
    return {src, dst, type, data, 0};
}

QMap<QString, QVariant> jobAndStep(const QString &job, const QString &step)
{
    return {{QStringLiteral("JobName"), job}, {QStringLiteral("Step"), step}};
}

QString read(PluginMetaData &message, const char *key)
{
    return message.data[QString::fromLatin1(key)].toString();
}

}

void CamModel::restart(const QHash<QString, Library> &loaded)
{
    libraries = loaded;
    registry.records.clear();
    events.clear();
    m_described.clear();
    m_isCAMLoaded = m_isDFMLoaded = false;
}

bool CamModel::loadAllPlugins(const Configuration &configuration)
{
    m_described += readConfiguration(configuration);
    m_described.removeDuplicates();
    load(m_described);
    m_isCAMLoaded = true;
    return true;
}

bool CamModel::loadAllDFMPlugins(const Configuration &configuration)
{
    QStringList described = readConfiguration(configuration);
    described.removeDuplicates();
    load(described);
    m_isDFMLoaded = true;
    return true;
}

void CamModel::insertRoot(const std::string &name, void *root)
{
    registry.append({"EngineerRoot", name, root, nullptr});
}

void *CamModel::getRoot()
{
    return registry.findRoot().object;
}

void *CamModel::registerElement(const std::string &library, const QString &symbol, QWidget *parent,
                                const QString &factoryText)
{
    if (!exports(text(library), symbol))
        return nullptr;
    const RegisterRecord known = registry.find(library, parent);
    if (!known.isEmpty())
        return known.object;
    void *const element = callFactory({text(library), symbol, parent, factoryText, nullptr});
    registry.append({"Plugin", library, element, parent});
    return element;
}

void *CamModel::registerGraphicFramework(QWidget *parent, const std::string &name, bool isCamAssistant)
{
    if (!exports(graphicEditor, graphicFactory))
        return nullptr;
    const RegisterRecord known = registry.findFrame("Graphic", name);
    if (!known.isEmpty())
        return known.object;
    const QStringList parts = text(name).split(separator, Qt::KeepEmptyParts, Qt::CaseSensitive);
    if (parts.size() != 2)
        return nullptr;
    void *const frame = callFactory({graphicEditor, graphicFactory, parent, {}, nullptr, parts[0], parts[1]});
    registry.append({"Graphic", name, frame, getRoot()});
    QMap<QString, QVariant> data = jobAndStep(parts[0], parts[1]);
    data.insert(QStringLiteral("IsCamAssistant"),
                isCamAssistant ? QStringLiteral("true") : QStringLiteral("false"));
    deliver(graphicEditor, frame, message(graphicEditor, graphicEditor, 20001638, data));
    return frame;
}

void *CamModel::registerDFMGraphicFramework(QWidget *parent, const std::string &name)
{
    if (!exports(graphicEditor, graphicFactory))
        return nullptr;
    const RegisterRecord known = registry.findFrame("Graphic", name);
    if (!known.isEmpty())
        return known.object;
    const QStringList parts = text(name).split(separator, Qt::KeepEmptyParts, Qt::CaseSensitive);
    if (parts.size() != 2)
        return nullptr;
    void *const frame = callFactory({graphicEditor, graphicFactory, parent, {}, nullptr, parts[0], parts[1]});
    registry.append({"Graphic", name, frame, getRoot()});
    if (deliver(graphicEditor, frame, message(graphicEditor, graphicEditor, 20004616)))
        inform('I', "ok");
    return frame;
}

void *CamModel::registerGraphicFramework4Quorel(QWidget *parent, const std::string &job,
                                                const std::string &step)
{
    if (!exports(graphicEditor, graphicFactory))
        return nullptr;
    const std::string name = job + " | " + step;
    const RegisterRecord known = registry.findFrame("Graphic", name);
    if (!known.isEmpty())
        return known.object;
    void *const frame =
        callFactory({graphicEditor, graphicFactory, parent, {}, nullptr, text(job), text(step)});
    registry.append({"Graphic", name, frame, nullptr});
    deliver(graphicEditor, frame,
            message(graphicEditor, graphicEditor, 20001638, jobAndStep(text(job), text(step))));
    return frame;
}

void *CamModel::registerDFMGraphicFramework4Quorel(QWidget *parent, const std::string &job,
                                                   const std::string &step)
{
    if (!exports(graphicEditor, graphicFactory))
        return nullptr;
    const std::string key = job + " | " + step;
    const RegisterRecord known = registry.findGraphicByKey(key);
    if (!known.isEmpty())
        return known.object;
    void *const frame =
        callFactory({graphicEditor, graphicFactory, parent, {}, nullptr, text(job), text(step)});
    RegisterRecord record("Graphic", wildcard, frame, nullptr);
    record.key = key;
    registry.append(record);
    deliver(graphicEditor, frame, message(graphicEditor, graphicEditor, 20004616));
    return frame;
}

void *CamModel::registerMatrixFramework(QWidget *parent, const std::string &job)
{
    if (!exports(matrixEditor, matrixFactory))
        return nullptr;
    const RegisterRecord known = registry.findFrame("Matrix", job);
    if (!known.isEmpty())
        return known.object;
    void *const frame = callFactory({matrixEditor, matrixFactory, parent, {}, nullptr});
    registry.append({"Matrix", job, frame, getRoot()});
    deliver(matrixEditor, frame, message({}, text(job), 20001638, {{QStringLiteral("JobName"), text(job)}}));
    return frame;
}

void *CamModel::registerGuideFramework(QWidget *parent, const std::string &job)
{
    if (!exports(camGuide, guideFactory))
        return nullptr;
    const RegisterRecord known = registry.findFrame("Guide", job);
    if (!known.isEmpty())
        return known.object;
    void *const frame = callFactory({camGuide, guideFactory, parent, {}, nullptr});
    registry.append({"Guide", job, frame, getRoot()});
    deliver(camGuide, frame, message({}, text(job), 20003913, {{QStringLiteral("JobName"), text(job)}}));
    return frame;
}

void *CamModel::registerCamGuide(const std::string &name, QWidget *parent, const std::string &job)
{
    if (!exports(camGuide, guideFactory))
        return nullptr;
    const RegisterRecord known = registry.find(name, parent);
    if (!known.isEmpty())
        return known.object;
    void *const element = callFactory({camGuide, guideFactory, parent, {}, nullptr});
    registry.append({"Plugin", name, element, parent});
    deliver(camGuide, element, message({}, text(job), 20003913, {{QStringLiteral("JobName"), text(job)}}));
    return element;
}

void CamModel::unregisterGraphicFramework4Quorel(const std::string &job, const std::string &step)
{
    const std::string name = job + " | " + step;
    const RegisterRecord frame = registry.findFrame("Graphic", name);
    if (frame.isEmpty())
        return;
    registry.eraseGraphicByName(name);
    for (const RegisterRecord &record : std::vector<RegisterRecord>(registry.records))
        registry.eraseFirst(record.name, frame.object);
    deliver(graphicEditor, frame.object, message(graphicEditor, graphicEditor, 20002402));
}

void CamModel::unregisterDFMGraphicFramework4Quorel(const std::string &job, const std::string &step)
{
    const std::string key = job + " | " + step;
    const RegisterRecord frame = registry.findGraphicByKey(key);
    if (frame.isEmpty())
        return;
    registry.eraseGraphicByKey(key);
    for (const RegisterRecord &record : std::vector<RegisterRecord>(registry.records))
        registry.eraseFirst(record.name, frame.object);
    deliver(graphicEditor, frame.object, message(graphicEditor, graphicEditor, 20002402));
}

void CamModel::recMegToPlugin(void *frame, PluginMetaData message)
{
    if (message.type == -1) {
        inform('E', "recMegToPlugin metadate type is -1");
        return;
    }
    if (registry.findByObject(frame).isEmpty()) {
        std::ostringstream pointer;
        pointer << frame;
        inform('E', "recMegToPlugin metadate frame is " + QByteArray::fromStdString(pointer.str())
                        + " src: " + message.src.toUtf8() + " dst:" + message.dst.toUtf8()
                        + "type:" + QByteArray::number(message.type));
        return;
    }
    const RegisterRecord element = registry.find(message.dst.toStdString(), frame);
    if (element.isEmpty() || !deliver(message.dst, element.object, message))
        return;
    if (message.type != 10000000)
        inform('I', withoutSuffix(message.src).toUtf8() + " send to " + withoutSuffix(message.dst).toUtf8()
                        + ' ' + QByteArray::number(message.type));
}

void CamModel::pluginTransmitData(PluginMetaData message)
{
    showing("pluginTransmitData Error.", [&] {
        void *const root = getRoot();
        const QString kind = read(message, "DstType");
        if (kind == "Graphic") {
            const QString job = read(message, "JobName");
            const QString step = read(message, "Step");
            const RegisterRecord frame = registry.find((job + separator + step).toStdString(), root);
            if (!frame.isEmpty())
                deliverToNamed(frame.object, message);
        } else if (kind == "EngineerRoot") {
            deliverToNamed(root, message);
        } else if (kind == "Matrix") {
            const RegisterRecord frame = registry.find(read(message, "JobName").toStdString(), root);
            if (!frame.isEmpty())
                deliverToNamed(frame.object, message);
        } else if (kind == "Guide") {
            const RegisterRecord frame =
                registry.findFrame("Guide", (read(message, "JobName") + "|Guide").toStdString());
            if (!frame.isEmpty())
                deliver(message.dst, frame.object, message);
        }
    });
}

void CamModel::transmitDataToFramework(void *frame, const PluginMetaData &message)
{
    showing("transmitDataToFramework Error.", [&] {
        if (message.dst == matrixEditor || message.dst == graphicEditor || message.dst == camGuide)
            deliver(message.dst, frame, message);
    });
}

void CamModel::sendKeyBoardStatusToGraphic(void *frame, const PluginMetaData &message)
{
    if (!registry.findByObject(frame).isEmpty())
        deliver(graphicEditor, frame, message);
}

void CamModel::edaCAMTransmitData(const QString &jobName, PluginMetaData message)
{
    const QString kind = read(message, "DstType");
    edaSetTransmitData(kind, jobName, message);
}

void CamModel::edaSetTransmitData(const QString &dstType, const QString &jobName,
                                  const PluginMetaData &message)
{
    showing("updateMatrix Error.", [&] {
        std::vector<RegisterRecord> frames;
        if (dstType == "Graphic")
            frames = registry.frames("Graphic");
        if (frames.empty())
            deliverToRoot(message);
        for (const RegisterRecord &frame : frames) {
            if (firstPart(frame, separator) == jobName)
                deliver(message.dst, frame.object, message);
        }
    });
}

void CamModel::setCurrentText(const QString &text, PluginMetaData message)
{
    const QString kind = read(message, "DstType");
    setInterfaceTexts(kind, text, message);
}

void CamModel::setInterfaceTexts(const QString &dstType, const QString &text, const PluginMetaData &message)
{
    showing("updateMatrix Error.", [&] {
        std::vector<RegisterRecord> frames;
        if (dstType == "Graphic" || dstType == "Matrix" || dstType == "Guide")
            frames = registry.frames(dstType.toStdString());
        if (frames.empty())
            deliverToRoot(message);
        for (const RegisterRecord &frame : frames) {
            if (firstPart(frame, separator) == text || frame.name == wildcard)
                deliver(message.dst, frame.object, message);
        }
    });
}

void CamModel::changeCompareJobInfo(const PluginMetaData &message)
{
    showing("updateGraphic Error.", [&] {
        for (const RegisterRecord &frame : registry.frames("Graphic"))
            deliverToContaining(frame.object, message);
    });
}

void CamModel::changeJobNameAndUpdateJob(const QString &oldJobName, const QString &newJobName)
{
    const QString oldKey = QStringLiteral("OldJobName");
    const QString newKey = QStringLiteral("NewJobName");
    registry.rename("Matrix", oldJobName.toStdString(), newJobName.toStdString());
    registry.rename("Guide", oldJobName.toStdString(), newJobName.toStdString());
    const RegisterRecord matrix = registry.find(newJobName.toStdString(), getRoot());
    if (!matrix.isEmpty())
        deliver(matrixEditor, matrix.object,
                message({}, matrixEditor, 20002401,
                        {{QStringLiteral("DstType"), QStringLiteral("Matrix")}, {newKey, newJobName}}));
    updateMatrix(newJobName, message({}, QStringLiteral("Matrix.dll"), 20002401, {{newKey, newJobName}}));
    const QMap<QString, QVariant> bothNames{{oldKey, oldJobName}, {newKey, newJobName}};
    updateGraphic(newJobName, message({}, QStringLiteral("Graphic_JobList.dll"), 20002400, bothNames));
    updateGuide(newJobName, message({}, camGuide, 20002400, bothNames));
}

void CamModel::changeStepName(const QString &jobName, const QString &oldStepName, const QString &newStepName)
{
    registry.rename("Graphic", (jobName + separator + oldStepName).toStdString(),
                    (jobName + separator + newStepName).toStdString());
}

void CamModel::deleteTreeNode(const QString &nodeType, const QString &name)
{
    const std::vector<RegisterRecord> matrixFrames = registry.frames("Matrix");
    const std::vector<RegisterRecord> graphicFrames = registry.frames("Graphic");
    const std::vector<RegisterRecord> guideFrames = registry.frames("Guide");
    if (nodeType == "Matrix") {
        for (const RegisterRecord &frame : matrixFrames) {
            if (text(frame.name) == name)
                deleteFrame(frame.object, matrixEditor);
        }
        for (const RegisterRecord &frame : graphicFrames) {
            if (firstPart(frame, separator) == name)
                deleteFrame(frame.object, graphicEditor);
        }
        for (const RegisterRecord &frame : guideFrames) {
            if (firstPart(frame, QStringLiteral("|")) == name)
                deleteFrame(frame.object, camGuide);
        }
    } else if (nodeType == "Graphic") {
        for (const RegisterRecord &frame : graphicFrames) {
            if (text(frame.name) == name)
                deleteFrame(frame.object, graphicEditor);
        }
    }
}

void CamModel::updateJob(const QString &name, PluginMetaData message)
{
    const QString kind = read(message, "DstType");
    if (kind == "Graphic")
        updateGraphic(name, message);
    else if (kind == "EngineerRoot")
        updateEngieer(message);
    else if (kind == "Matrix")
        updateMatrix(name, message);
}

void CamModel::updateEngieer(const PluginMetaData &message)
{
    showing("updateEngieer Error.", [&] { deliverToRoot(message); });
}

void CamModel::updateGraphic(const QString &name, PluginMetaData message)
{
    showing("updateGraphic Error.", [&] {
        const QString prefix = name + separator;
        const QVariant step = message.data[QStringLiteral("ChangeStepName")];
        const bool isStepMode = step.isValid();
        const bool isRenameMode = !isStepMode && message.data[QStringLiteral("OldJobName")].isValid()
                                  && message.data[QStringLiteral("NewJobName")].isValid();
        for (const RegisterRecord &frame : registry.frames("Graphic")) {
            const QString frameName = text(frame.name);
            bool matches = frameName.contains(prefix);
            if (isStepMode)
                matches = frameName == prefix + step.toString();
            if (isRenameMode)
                matches = matches && frameName != prefix;
            if (matches || frame.name == wildcard)
                deliverToContaining(frame.object, message);
        }
    });
}

void CamModel::updateMatrix(const QString &name, const PluginMetaData &message)
{
    showing("updateMatrix Error.", [&] {
        for (const RegisterRecord &frame : registry.frames("Matrix")) {
            if (text(frame.name) == name)
                deliverToContaining(frame.object, message);
        }
    });
}

void CamModel::updateGuide(const QString &name, const PluginMetaData &message)
{
    showing("updateMatrix Error.", [&] {
        for (const RegisterRecord &frame : registry.frames("Guide")) {
            if (text(frame.name) == name + "|Guide")
                deliver(message.dst, frame.object, message);
        }
    });
}

QStringList CamModel::readConfiguration(const Configuration &configuration)
{
    switch (configuration.state) {
    case Configuration::State::Listing:
        return configuration.names;
    case Configuration::State::Missing:
        informOfLoading(Gbk::configMissing + configuration.path.toUtf8());
        break;
    case Configuration::State::NoJson:
        informOfLoading(Gbk::configNotParsed + configuration.path.toUtf8());
        break;
    }
    return {};
}

void CamModel::load(const QStringList &names)
{
    for (const QString &name : names) {
        const QString file = name + ".dll";
        if (loadable.contains(file)) {
            libraries[file] = loadable[file];
            continue;
        }
        informOfLoading(Gbk::loadFailed + file.toUtf8() + Gbk::loadFailedReason + reasonOfAbsence);
        events.emplace_back(
            CamEvents::Box{QStringLiteral("提示"), QStringLiteral("加载插件失败！失败路径：") + file, false});
    }
    inform('I', Gbk::allLoaded);
}

bool CamModel::exports(const QString &library, const QString &factory) const
{
    return libraries.contains(library) && libraries[library].factories.contains(factory);
}

void *CamModel::callFactory(Recorder::FactoryCall call)
{
    call.library = libraries[call.library].name;
    events.emplace_back(registry.records);
    events.emplace_back(CamEvents::FactoryEntry{call.library, call.parent});
    call.element = onFactory();
    events.emplace_back(call);
    return call.element;
}

bool CamModel::deliver(const QString &library, void *target, const PluginMetaData &message)
{
    if (!libraries.contains(library) || !libraries[library].exportsEntryPoint)
        return false;
    events.emplace_back(registry.records);
    events.emplace_back(Recorder::Delivery{libraries[library].name, target, message});
    onDelivery();
    return true;
}

void CamModel::deliverToNamed(void *parent, const PluginMetaData &message)
{
    for (const RegisterRecord &child : registry.childrenOf(parent)) {
        if (text(child.name) == message.dst && child.type == "Plugin")
            deliver(message.dst, child.object, message);
    }
}

void CamModel::deliverToContaining(void *parent, const PluginMetaData &message)
{
    for (const RegisterRecord &child : registry.childrenOf(parent)) {
        if (text(child.name).contains(message.dst) && child.type == "Plugin")
            deliver(message.dst, child.object, message);
    }
}

void CamModel::deliverToRoot(const PluginMetaData &message)
{
    deliverToNamed(getRoot(), message);
}

void CamModel::deleteFrame(void *frame, const QString &editor)
{
    registry.removeRecordsOf(frame);
    transmitDataToFramework(frame, message({}, editor, 20002402));
}

void CamModel::inform(char severity, const QByteArray &text)
{
    events.emplace_back(LogLines::Line{severity, "pluginManger4CAM", text});
}

void CamModel::informOfLoading(const QByteArray &text)
{
    events.emplace_back(LogLines::Line{'E', "pluginMangerBase", text});
}

void CamModel::showing(const char *text, const std::function<void()> &action)
{
    try {
        action();
    } catch (const QException *) {
        events.emplace_back(CamEvents::Box{QStringLiteral("Info"), QString::fromLatin1(text), false});
        inform('E', text);
    }
}
