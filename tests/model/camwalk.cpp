#include "camwalk.h"

#include "choices.h"
#include "elementtable.h"
#include "openmanager.h"

#include <QtCore/QException>
#include <QtCore/QLibrary>

#include <limits>
#include <stdexcept>

namespace {

using Manager = QTpluginsManger4CAM;
using Step = CamWalk::Step;
using Reaction = CamWalk::Reaction;

QException failure;

const QStringList partialLibraries{"ORVIK-GraphicEditor.dll", "ORVIK-Matrix.dll", "Graphic_CamGuide.dll",
                                   "Graphic_View.dll", "Graphic_JobList.dll"};

const std::string jobs[] = {
    "A", "A", "A",       "A", "A", "B",       "B",         "B",       "AB",   "XA",           "A",
    "B", "7", "A|Guide", "",  "Ä", "B|Guide", "!$*!OV?*?", "A | pcb", "\xff", "\xef\xbf\xbd", "\xef\xbb\xbfZ",
    "Z"};
const std::string steps[] = {"pcb", "top", "pcb", "", "ß", "!*$!DFM?*?"};
const std::string elements[] = {"Graphic_View.dll",     "Graphic_View.dll",
                                "Graphic_View.dll",     "Graphic_JobList.dll",
                                "Matrix.dll",           "Graphic_Tips.dll",
                                "My Graphic_View.dll",  "ORVIK-Matrix.dll",
                                "Absent.dll",           "",
                                "\xffGraphic_View.dll", "\xef\xbb\xbfGraphic_View.dll"};
const QString destinations[] = {"Graphic_View.dll",
                                "Graphic_View.dll",
                                "Graphic_View.dll",
                                "Graphic_View.dll",
                                "Graphic_JobList.dll",
                                "Matrix.dll",
                                "Graphic_View.dll",
                                "ORVIK-Matrix.dll",
                                "ORVIK-GraphicEditor.dll",
                                "Graphic_CamGuide.dll",
                                "Absent.dll",
                                "View.dll",
                                ""};
const QString sources[] = {"Alpha.dll", "Beta.dll.dll", "", "gamma.DLL", "Ä.dll"};
const qint32 types[] = {7, 7, 7, 10000000, -1, std::numeric_limits<qint32>::min()};
const int moments[] = {0, 1, 1, 1, 2, 3};
const QString kinds[] = {"Graphic",      "EngineerRoot", "Matrix", "Guide",   "Graphic",
                         "EngineerRoot", "Matrix",       "Guide",  "graphic", ""};

/// A public operation: how often it comes, how it is called, and what the model says to it.
struct Operation
{
    const char *name;
    int weight;
    std::function<void *(Manager &, const Step &)> call;
    std::function<void *(CamModel &, const Step &)> model;
};

QString text(const std::string &bytes)
{
    return QString::fromStdString(bytes);
}

/// A call without a result.
template <typename Call>
auto quiet(Call call)
{
    return [call](auto &object, const Step &step) -> void * {
        call(object, step);
        return nullptr;
    };
}

const QList<ElementRow> &elementRows()
{
    static const QList<ElementRow> rows = elementTable();
    return rows;
}

void *asResult(bool value)
{
    return reinterpret_cast<void *>(quintptr(value));
}

const std::vector<Operation> &operationTable()
{
    using M = Manager;
    using C = CamModel;
    using S = const Step &;
    static const std::vector<Operation> all{
        {"insertRoot", 2, quiet([](M &m, S s) { m.insertRoot(s.job, s.made); }),
         quiet([](C &c, S s) { c.insertRoot(s.job, s.made); })},
        {"getRoot", 1, [](M &m, S) { return m.getRoot(); }, [](C &c, S) { return c.getRoot(); }},
        {"Ov_isRegisterFrame", 1, [](M &m, S s) { return asResult(m.Ov_isRegisterFrame(s.frame)); },
         [](C &, S) { return asResult(true); }},
        {"Ov_RegisterClear", 1, quiet([](M &m, S) { m.Ov_RegisterClear(); }), quiet([](C &, S) {})},
        {"plugin", 1, [](M &m, S s) { return asResult(m.plugin(s.message.dst)); },
         [](C &c, S s) { return asResult(c.libraries.contains(s.message.dst)); }},

        {"element", 12, [](M &, S s) { return elementRows()[s.row].call(s.parent, s.job); },
         [](C &c, S s) {
             const ElementRow &row = elementRows()[s.row];
             return c.registerElement(row.library, row.symbol, s.parent,
                                      row.takesText ? text(s.job) : QString());
         }},
        {"Ov_Register_CamGuide", 20,
         [](M &m, S s) { return m.Ov_Register_CamGuide(s.element, s.parent, s.job); },
         [](C &c, S s) { return c.registerCamGuide(s.element, s.parent, s.job); }},

        {"Ov_RegisterGraphicFramework", 8,
         [](M &m, S s) { return m.Ov_RegisterGraphicFramework(s.parent, s.name, s.flag); },
         [](C &c, S s) { return c.registerGraphicFramework(s.parent, s.name, s.flag); }},
        {"Ov_RegisterDFMGraphicFramework", 3,
         [](M &m, S s) { return m.Ov_RegisterDFMGraphicFramework(s.parent, s.name, s.flag); },
         [](C &c, S s) { return c.registerDFMGraphicFramework(s.parent, s.name); }},
        {"Ov_RegisterGraphicFramework4Quorel", 4,
         [](M &m, S s) { return m.Ov_RegisterGraphicFramework4Quorel(s.parent, s.job, s.step); },
         [](C &c, S s) { return c.registerGraphicFramework4Quorel(s.parent, s.job, s.step); }},
        {"Ov_RegisterDFMGraphicFramework4Quorel", 3,
         [](M &m, S s) { return m.Ov_RegisterDFMGraphicFramework4Quorel(s.parent, s.job, s.step); },
         [](C &c, S s) { return c.registerDFMGraphicFramework4Quorel(s.parent, s.job, s.step); }},
        {"Ov_RegisterMatrixFramework", 6,
         [](M &m, S s) { return m.Ov_RegisterMatrixFramework(s.parent, s.job); },
         [](C &c, S s) { return c.registerMatrixFramework(s.parent, s.job); }},
        {"Ov_RegisterGuideFramework", 4,
         [](M &m, S s) { return m.Ov_RegisterGuideFramework(s.parent, s.flag ? s.job : s.job + "|Guide"); },
         [](C &c, S s) { return c.registerGuideFramework(s.parent, s.flag ? s.job : s.job + "|Guide"); }},
        {"Ov_UnRegisterGraphicFramework4Quorel", 2,
         quiet([](M &m, S s) { m.Ov_UnRegisterGraphicFramework4Quorel(s.job, s.step); }),
         quiet([](C &c, S s) { c.unregisterGraphicFramework4Quorel(s.job, s.step); })},
        {"Ov_UnRegisterDFMGraphicFramework4Quorel", 2,
         quiet([](M &m, S s) { m.Ov_UnRegisterDFMGraphicFramework4Quorel(s.job, s.step); }),
         quiet([](C &c, S s) { c.unregisterDFMGraphicFramework4Quorel(s.job, s.step); })},

        {"recMegToPlugin", 8, quiet([](M &m, S s) { m.recMegToPlugin(s.frame, s.message); }),
         quiet([](C &c, S s) { c.recMegToPlugin(s.frame, s.message); })},
        {"pluginTransmitData", 8, quiet([](M &m, S s) { m.pluginTransmitData(s.message); }),
         quiet([](C &c, S s) { c.pluginTransmitData(s.message); })},
        {"transmitDataToFramework", 3,
         quiet([](M &m, S s) { m.transmitDataToFramework(s.frame, s.message); }),
         quiet([](C &c, S s) { c.transmitDataToFramework(s.frame, s.message); })},
        {"sendKeyBoardStatusToGraphic", 3,
         quiet([](M &m, S s) { m.sendKeyBoardStatusToGraphic(s.frame, s.message); }),
         quiet([](C &c, S s) { c.sendKeyBoardStatusToGraphic(s.frame, s.message); })},
        {"Eda_CAM_TransmitData", 3, quiet([](M &m, S s) { m.Eda_CAM_TransmitData(text(s.job), s.message); }),
         quiet([](C &c, S s) { c.edaCAMTransmitData(text(s.job), s.message); })},
        {"Eda_setTransmitData", 3,
         quiet([](M &m, S s) { m.Eda_setTransmitData(s.kind, text(s.job), s.message); }),
         quiet([](C &c, S s) { c.edaSetTransmitData(s.kind, text(s.job), s.message); })},

        {"Ov_SetCurrentText", 3, quiet([](M &m, S s) { m.Ov_SetCurrentText(text(s.job), s.message); }),
         quiet([](C &c, S s) { c.setCurrentText(text(s.job), s.message); })},
        {"setInterfaceTexts", 3,
         quiet([](M &m, S s) { m.setInterfaceTexts(s.kind, text(s.job), s.message); }),
         quiet([](C &c, S s) { c.setInterfaceTexts(s.kind, text(s.job), s.message); })},
        {"setEngineerText", 1, quiet([](M &m, S s) { m.setEngineerText(text(s.job), s.message); }),
         quiet([](C &, S) {})},
        {"setGraphicText", 1, quiet([](M &m, S s) { m.setGraphicText(text(s.job), s.message); }),
         quiet([](C &, S) {})},
        {"setMatrixText", 1, quiet([](M &m, S s) { m.setMatrixText(text(s.job), s.message); }),
         quiet([](C &, S) {})},

        {"ChangeCompareJobInfo", 3, quiet([](M &m, S s) { m.ChangeCompareJobInfo(s.message); }),
         quiet([](C &c, S s) { c.changeCompareJobInfo(s.message); })},
        {"OV_ChangeJobNameAndUpdateJob", 5,
         quiet([](M &m, S s) { m.OV_ChangeJobNameAndUpdateJob(text(s.job), text(s.otherJob)); }),
         quiet([](C &c, S s) { c.changeJobNameAndUpdateJob(text(s.job), text(s.otherJob)); })},
        {"Ov_ChangeStepName", 3,
         quiet([](M &m, S s) { m.Ov_ChangeStepName(text(s.job), text(s.step), text(s.otherStep)); }),
         quiet([](C &c, S s) { c.changeStepName(text(s.job), text(s.step), text(s.otherStep)); })},
        {"Ov_DeleteTreeNode", 4,
         quiet([](M &m, S s) { m.Ov_DeleteTreeNode(s.kind, text(s.kind == "Graphic" ? s.name : s.job)); }),
         quiet([](C &c, S s) { c.deleteTreeNode(s.kind, text(s.kind == "Graphic" ? s.name : s.job)); })},
        {"Ov_UpdateJob", 4, quiet([](M &m, S s) { m.Ov_UpdateJob(text(s.job), s.message); }),
         quiet([](C &c, S s) { c.updateJob(text(s.job), s.message); })},

        {"updateEngieer", 3, quiet([](M &m, S s) { m.updateEngieer(text(s.job), s.message); }),
         quiet([](C &c, S s) { c.updateEngieer(s.message); })},
        {"updateGraphic", 6, quiet([](M &m, S s) { m.updateGraphic(text(s.job), s.message); }),
         quiet([](C &c, S s) { c.updateGraphic(text(s.job), s.message); })},
        {"updateMatrix", 5, quiet([](M &m, S s) { m.updateMatrix(text(s.job), s.message); }),
         quiet([](C &c, S s) { c.updateMatrix(text(s.job), s.message); })},
        {"updateGuide", 3, quiet([](M &m, S s) { m.updateGuide(text(s.job), s.message); }),
         quiet([](C &c, S s) { c.updateGuide(text(s.job), s.message); })},
    };
    return all;
}

/// The indices of the operations, each as often as it weighs.
std::vector<int> weighed()
{
    std::vector<int> indices;
    for (size_t index = 0; index < operationTable().size(); ++index)
        indices.insert(indices.end(), size_t(operationTable()[index].weight), int(index));
    return indices;
}

QMap<QString, QVariant> decodeData(Choices &choices)
{
    QMap<QString, QVariant> data;
    if (!choices.oneIn(12))
        data.insert("DstType", choices.of(kinds));
    if (!choices.oneIn(8))
        data.insert("JobName", text(choices.of(jobs)));
    if (!choices.oneIn(8))
        data.insert("Step", text(choices.of(steps)));
    // Most messages have none of these, some have one that is there and invalid.
    for (const char *const key : {"ChangeStepName", "OldJobName", "NewJobName"}) {
        switch (choices.below(8)) {
        case 5:
            data.insert(key, text(choices.of(steps)));
            break;
        case 6:
            data.insert(key, QVariant());
            break;
        case 7:
            data.insert(key, 7);
            break;
        default:
            break;
        }
    }
    return data;
}

QLibrary *open(const QString &path)
{
    auto *const library = new QLibrary(path);
    if (!library->load())
        qFatal("%s", qPrintable(library->errorString()));
    return library;
}

template <typename Value>
bool sameValue(const Value &left, const Value &right)
{
    return left == right;
}

bool sameValue(const QVariant &left, const QVariant &right)
{
    return left.userType() == right.userType() && left == right;
}

bool sameValue(const Recorder::Delivery &left, const Recorder::Delivery &right)
{
    return left.library == right.library && left.target == right.target
           && left.message.src == right.message.src && left.message.dst == right.message.dst
           && left.message.type == right.message.type && left.message.userData == right.message.userData
           && left.message.data.keys() == right.message.data.keys()
           && std::equal(left.message.data.cbegin(), left.message.data.cend(), right.message.data.cbegin(),
                         [](const QVariant &one, const QVariant &other) { return sameValue(one, other); });
}

bool sameValue(const Recorder::FactoryCall &left, const Recorder::FactoryCall &right)
{
    return left.library == right.library && left.symbol == right.symbol && left.parent == right.parent
           && left.text == right.text && left.element == right.element && left.job == right.job
           && left.step == right.step;
}

bool sameValue(const RegisterRecord &left, const RegisterRecord &right)
{
    return left.type == right.type && left.name == right.name && left.key == right.key
           && left.object == right.object && left.parent == right.parent;
}

template <typename List>
bool sameList(const List &left, const List &right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const auto &one, const auto &other) { return sameValue(one, other); });
}

QString shownLog(const QList<LogLines::Line> &lines)
{
    QStringList texts;
    for (const LogLines::Line &line : lines)
        texts += QString::fromUtf8(line.severity + (' ' + line.unit) + ": " + line.text);
    return texts.join("; ");
}

}

CamWalk::CamWalk(std::function<QList<LogLines::Line>()> takeLog)
    : m_takeLog(std::move(takeLog))
{
    for (int count = 0; count < 7; ++count)
        m_widgets.push_back(std::make_unique<QWidget>());
    for (const ElementRow &row : elementRows())
        m_healthy.insert(row.library, open(FIXTURE_DIR "/healthy/" + row.library));
    for (const QString &name : partialLibraries) {
        if (!m_healthy.contains(name))
            m_healthy.insert(name, open(FIXTURE_DIR "/healthy/" + name));
        m_factoryless.insert(name, open(FIXTURE_DIR "/factoryless/" + name));
        m_mute.insert(name, open(FIXTURE_DIR "/mute/" + name));
    }

    m_realWorld.call = [](const Step &step) {
        return operationTable()[size_t(step.operation)].call(*Manager::instance(), step);
    };
    m_modelWorld.call = [this](const Step &step) {
        return operationTable()[size_t(step.operation)].model(m_model, step);
    };
    m_model.onFactory = [this] { return inFactory(m_modelWorld); };
    m_model.onDelivery = [this] { inDelivery(m_modelWorld); };
    Recorder::setOnDelivery([this](const Recorder::Delivery &) { inDelivery(m_realWorld); });
    Recorder::setOnFactory([this](const QString &, QWidget *) {
        void *const made = inFactory(m_realWorld);
        Recorder::setSharedElement(made);
        Recorder::setFactoriesReturnNull(!made);
    });
}

CamWalk::~CamWalk()
{
    Recorder::setOnDelivery({});
    Recorder::setOnFactory({});
    Recorder::setSharedElement(nullptr);
    Recorder::setFactoriesReturnNull(false);
    registryOf(*Manager::instance()).clear();
    tablesOf(*Manager::instance()).m_libraries.clear();
    for (const auto &libraries : {m_healthy, m_factoryless, m_mute})
        qDeleteAll(libraries);
}

QString CamWalk::walk(const QByteArray &sequence)
{
    prepare(sequence.left(blockSize));
    QStringList history;
    std::vector<Step> taken;
    for (int start = blockSize; start < sequence.size(); start += blockSize) {
        taken.push_back(decode(sequence.mid(start, blockSize)));
        enter(m_realWorld, taken.back());
        enter(m_modelWorld, taken.back());
        ++m_operations;
        const QString differs = difference();
        if (differs.isEmpty())
            continue;
        for (const Step &step : taken)
            history += shown(step);
        return history.join('\n') + '\n' + differs;
    }
    return {};
}

void CamWalk::prepare(const QByteArray &block)
{
    Choices choices(block);
    auto &libraries = tablesOf(*Manager::instance()).m_libraries;
    libraries = m_healthy;
    m_model.libraries.clear();
    for (auto it = m_healthy.cbegin(); it != m_healthy.cend(); ++it)
        m_model.libraries.insert(it.key(), {true, true});
    for (const QString &name : partialLibraries) {
        switch (choices.below(16)) {
        case 13:
            libraries.remove(name);
            m_model.libraries.remove(name);
            break;
        case 14:
            libraries[name] = m_factoryless[name];
            m_model.libraries[name] = {false, true};
            break;
        case 15:
            libraries[name] = m_mute[name];
            m_model.libraries[name] = {true, false};
            break;
        default:
            break;
        }
    }
    registryOf(*Manager::instance()).clear();
    m_model.registry.records.clear();
    m_takeLog();
}

CamWalk::Step CamWalk::decode(const QByteArray &block) const
{
    static const std::vector<int> indices = weighed();
    const auto object = [this](int index) {
        return index == 0 ? nullptr : m_widgets[size_t(index) - 1].get();
    };
    const int objects = int(m_widgets.size()) + 1;

    Choices choices(block);
    Step step;
    step.operation = choices.of(indices);
    step.row = choices.below(elementRows().size());
    step.parent = object(choices.below(objects));
    step.frame = object(choices.below(objects));
    step.made = object(choices.below(objects));
    step.job = choices.of(jobs);
    step.otherJob = choices.of(jobs);
    step.step = choices.of(steps);
    step.otherStep = choices.of(steps);
    step.element = choices.of(elements);
    step.kind = choices.of(kinds);
    step.flag = choices.oneIn(2);
    switch (choices.below(10)) {
    case 8:
        step.name = step.job;
        break;
    case 9:
        step.name = step.job + " | " + step.step + " | more";
        break;
    default:
        step.name = step.job + " | " + step.step;
        break;
    }
    step.message = {choices.of(sources), choices.of(destinations), choices.of(types), {}, 0xfedcba9876543210};
    step.message.data = decodeData(choices);
    if (choices.oneIn(2))
        aim(step, choices.below(64));
    switch (choices.below(32)) {
    case 24:
        step.reaction = Reaction::ThrowPointer;
        break;
    case 25:
        step.reaction = Reaction::ThrowValue;
        break;
    case 26:
        step.reaction = Reaction::ThrowException;
        break;
    case 27:
        step.reaction = Reaction::ThrowNumber;
        break;
    case 28:
    case 29:
    case 30:
    case 31:
        step.reaction = Reaction::Nested;
        break;
    default:
        break;
    }
    step.reactsAt = choices.of(moments);
    if (step.reaction == Reaction::Nested) {
        // The same block read otherwise: another operation on the same things, which reacts to nothing.
        step.nested = std::make_shared<Step>(step);
        step.nested->operation = choices.of(indices);
        step.nested->made = object(choices.below(objects));
        step.nested->reaction = Reaction::None;
        step.nested->nested.reset();
    }
    return step;
}

// Has a step concern an element that is there, and the frame it lives in: by chance few messages would find
// one.
void CamWalk::aim(Step &step, int choice) const
{
    std::vector<std::pair<RegisterRecord, RegisterRecord>> there;
    for (const RegisterRecord &frame : m_model.registry.records) {
        for (const RegisterRecord &child : m_model.registry.childrenOf(frame.object)) {
            if (frame.type != "Plugin" && child.type == "Plugin")
                there.emplace_back(frame, child);
        }
    }
    if (there.empty())
        return;
    const auto &[frame, element] = there[size_t(choice) % there.size()];
    const QStringList parts = text(frame.name).split(frame.type == "Guide" ? "|" : " | ");
    step.frame = frame.object;
    step.kind = text(frame.type);
    step.name = frame.name;
    step.job = parts.first().toStdString();
    step.step = parts.last().toStdString();
    step.message.dst = text(element.name);
    step.message.data["DstType"] = step.kind;
    step.message.data["JobName"] = parts.first();
    step.message.data["Step"] = parts.last();
}

void CamWalk::enter(World &world, const Step &step)
{
    world.outcome = {};
    world.running.clear();
    try {
        make(world, step);
    } catch (const QException *) {
        world.outcome.thrown = "a pointer to QException";
    } catch (const QException &) {
        world.outcome.thrown = "QException";
    } catch (const std::exception &) {
        world.outcome.thrown = "std::exception";
    } catch (int) {
        world.outcome.thrown = "a number";
    }
}

void CamWalk::make(World &world, const Step &step)
{
    world.running.push_back({&step, 0});
    void *const result = world.call(step);
    world.outcome.results.push_back(result);
    world.running.pop_back();
}

void *CamWalk::inFactory(World &world)
{
    const Step &step = *world.running.back().step;
    if (step.reactsAt == 0)
        react(world, step);
    return step.made;
}

void CamWalk::inDelivery(World &world)
{
    Running &running = world.running.back();
    ++running.deliveries;
    if (running.step->reactsAt == running.deliveries)
        react(world, *running.step);
}

void CamWalk::react(World &world, const Step &step)
{
    switch (step.reaction) {
    case Reaction::None:
        break;
    case Reaction::Nested:
        make(world, *step.nested);
        break;
    case Reaction::ThrowPointer:
        throw &failure;
    case Reaction::ThrowValue:
        throw QException();
    case Reaction::ThrowException:
        throw std::runtime_error("of a plug-in");
    case Reaction::ThrowNumber:
        throw 7;
    }
}

QString CamWalk::difference()
{
    const auto factoryCalls = Recorder::takeFactoryCalls();
    const auto deliveries = Recorder::takeDeliveries();
    const auto log = m_takeLog();
    QStringList boxes;
    for (const MessageBoxes::Box &box : m_boxes.take())
        boxes += box.title == "Info" && !box.hasParent ? box.text : "a box called " + box.title;
    m_deliveries += deliveries.size();
    m_boxCount += boxes.size();

    const auto expectedCalls = std::exchange(m_model.factoryCalls, {});
    const auto expectedDeliveries = std::exchange(m_model.deliveries, {});
    const auto expectedLog = std::exchange(m_model.log, {});
    const auto expectedBoxes = std::exchange(m_model.boxes, {});
    const auto &records = registryOf(*Manager::instance());

    const Outcome &is = m_realWorld.outcome;
    const Outcome &should = m_modelWorld.outcome;
    // Libraries are compared by whether there is one.
    const auto texts = [](const char *what, const QString &found, const QString &expected) {
        return QStringLiteral("%1: %2\n  instead of: %3").arg(what, found, expected);
    };
    if (is.results != should.results || is.thrown != should.thrown)
        return texts("outcome", shown(is), shown(should));
    if (!sameList(factoryCalls, expectedCalls))
        return texts("factory calls", shown(factoryCalls), shown(expectedCalls));
    if (!sameList(deliveries, expectedDeliveries))
        return texts("deliveries", shown(deliveries), shown(expectedDeliveries));
    if (!sameList(log, expectedLog))
        return texts("log", shownLog(log), shownLog(expectedLog));
    if (boxes != expectedBoxes)
        return texts("boxes", boxes.join("; "), expectedBoxes.join("; "));
    if (!sameList(records, m_model.registry.records))
        return texts("registry", shown(records), shown(m_model.registry.records));
    return {};
}

QString CamWalk::shown(const Step &step) const
{
    QStringList parts{operationTable()[size_t(step.operation)].name,
                      "row " + elementRows()[step.row].operation,
                      "parent " + shown(step.parent),
                      "frame " + shown(step.frame),
                      "jobs '" + text(step.job) + "', '" + text(step.otherJob) + '\'',
                      "steps '" + text(step.step) + "', '" + text(step.otherStep) + '\'',
                      "name '" + text(step.name) + '\'',
                      "element '" + text(step.element) + '\'',
                      "kind '" + step.kind + '\'',
                      QStringLiteral("flag %1").arg(step.flag),
                      shown(step.message),
                      "makes " + shown(step.made)};
    if (step.reaction != Reaction::None)
        parts += QStringLiteral("reaction %1 at %2").arg(int(step.reaction)).arg(step.reactsAt);
    if (step.nested)
        parts += "within it " + shown(*step.nested);
    return parts.join(", ");
}

QString CamWalk::shown(const void *object) const
{
    if (!object)
        return QStringLiteral("null");
    for (size_t index = 0; index < m_widgets.size(); ++index) {
        if (m_widgets[index].get() == object)
            return QStringLiteral("#%1").arg(index + 1);
    }
    return QStringLiteral("0x%1").arg(quintptr(object), 0, 16);
}

QString CamWalk::shown(const PluginMetaData &message) const
{
    QStringList data;
    for (auto it = message.data.cbegin(); it != message.data.cend(); ++it)
        data += it.key() + '=' + (it->isValid() ? it->toString() : QStringLiteral("invalid"));
    return QStringLiteral("%1>%2 %3 {%4} %5")
        .arg(message.src, message.dst, QString::number(message.type), data.join(", "),
             QString::number(message.userData, 16));
}

QString CamWalk::shown(const QList<Recorder::Delivery> &deliveries) const
{
    QStringList texts;
    for (const Recorder::Delivery &delivery : deliveries)
        texts += delivery.library + '(' + shown(delivery.target) + ", " + shown(delivery.message) + ')';
    return texts.join("; ");
}

QString CamWalk::shown(const QList<Recorder::FactoryCall> &calls) const
{
    QStringList texts;
    for (const Recorder::FactoryCall &call : calls)
        texts += call.library + ' ' + call.symbol + '(' + shown(call.parent) + ", '" + call.text + "', '"
                 + call.job + "', '" + call.step + "') = " + shown(call.element);
    return texts.join("; ");
}

QString CamWalk::shown(const std::vector<RegisterRecord> &records) const
{
    QStringList texts;
    for (const RegisterRecord &record : records)
        texts += '(' + text(record.type) + ", '" + text(record.name) + "', '" + text(record.key) + "', "
                 + shown(record.object) + ", " + shown(record.parent) + ')';
    return texts.join("; ");
}

QString CamWalk::shown(const Outcome &outcome) const
{
    QStringList texts;
    for (const void *const result : outcome.results)
        texts += shown(result);
    if (!outcome.thrown.empty())
        texts += text(outcome.thrown);
    return texts.join("; ");
}
