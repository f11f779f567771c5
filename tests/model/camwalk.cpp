#include "camwalk.h"

#include "choices.h"
#include "elementtable.h"
#include "openmanager.h"

#include <QtCore/QDir>
#include <QtCore/QException>
#include <QtCore/QFile>
#include <QtCore/QLibrary>

#include <algorithm>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace {

using Manager = QTpluginsManger4CAM;
using namespace std::string_literals;

QException failure;

const QStringList partialLibraries{"ORVIK-GraphicEditor.dll", "ORVIK-Matrix.dll", "Graphic_CamGuide.dll",
                                   "Graphic_View.dll", "Graphic_JobList.dll"};
const QStringList frameFactories{"GetORVIKGraphicInstance", "GetORVIKMatrixInstance",
                                 "GetPluginCamGuideInstance"};
const QString commonLibrary = "Any_Library.dll";

// Half of a surrogate pair, which no bytes convert to, and which converts to a question mark.
const QString half = QChar(0xd83d);
const QString otherHalf = QChar(0xde00);
const QString byteOrderMark = QChar(QChar::ByteOrderMark);

/// Names under which the common library is listed besides its own, so that damaged names find one.
const QStringList aliases{QChar(QChar::ReplacementCharacter) + commonLibrary,
                          commonLibrary + QChar(0) + 'x',
                          half + otherHalf + ".dll",
                          half + ".dll",
                          "?.dll",
                          ""};

const std::string jobs[] = {"A",
                            "A",
                            "A",
                            "A",
                            "A",
                            "B",
                            "B",
                            "B",
                            "AB",
                            "XA",
                            "A",
                            "B",
                            "7",
                            "A|Guide",
                            "",
                            "Ä",
                            "B|Guide",
                            "!$*!OV?*?",
                            "A | pcb",
                            "\xff",
                            "\xef\xbf\xbd",
                            "\xef\xbb\xbfZ",
                            "Z",
                            "?",
                            "?",
                            "A\0"s,
                            "\xf0\x9f\x98\x80",
                            "\xed\xa0\xbd"};
const std::string steps[] = {"pcb", "top", "pcb", "", "ß", "!*$!DFM?*?", "?", "\0"s, "\xfe"};
const std::string elements[] = {"Graphic_View.dll",
                                "Graphic_View.dll",
                                "Graphic_View.dll",
                                "Graphic_JobList.dll",
                                "Matrix.dll",
                                "Graphic_Tips.dll",
                                "My Graphic_View.dll",
                                "ORVIK-Matrix.dll",
                                "Absent.dll",
                                "",
                                "\xffGraphic_View.dll",
                                "\xef\xbb\xbfGraphic_View.dll",
                                "?.dll",
                                "Graphic_View.dll\0"s};
const std::string commonNames[] = {"Any_Library.dll",
                                   "Any_Library.dll",
                                   "\xef\xbb\xbf"
                                   "Any_Library.dll",
                                   "\xff"
                                   "Any_Library.dll",
                                   "\xfe"
                                   "Any_Library.dll",
                                   "\xef\xbf\xbd"
                                   "Any_Library.dll",
                                   "Any_Library.dll\0x"s,
                                   "Any_Library.dll\0"s,
                                   "\xf0\x9f\x98\x80.dll",
                                   "?.dll",
                                   "",
                                   "Absent.dll",
                                   "Graphic_View.dll",
                                   "Graphic_MenuBar_DFM.dll"};
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
                                "Any_Library.dll",
                                "?.dll",
                                "Absent.dll",
                                "View.dll",
                                ""};
const QString sources[] = {"Alpha.dll", "Beta.dll.dll", "", "gamma.DLL", "Ä.dll"};
const QString ownTexts[] = {QString(),
                            "",
                            half,
                            otherHalf,
                            half + otherHalf,
                            otherHalf + half,
                            QChar(0),
                            byteOrderMark,
                            QChar(QChar::ReplacementCharacter),
                            "A" + half,
                            "?"};
const QString listedNames[] = {"Graphic_View", "Graphic_CamGuide", "ORVIK-GraphicEditor",
                               "ORVIK-Matrix", "Matrix",           "Graphic_JobList",
                               "Absent"};
const qint32 types[] = {7, 7, 7, 10000000, -1, std::numeric_limits<qint32>::min()};
const int moments[] = {0, 1, 1, 1, 2, 3};
const QString kinds[] = {"Graphic", "EngineerRoot", "Matrix",  "Guide", "Graphic", "EngineerRoot",
                         "Matrix",  "Guide",        "graphic", "",      QString()};

QString text(const std::string &bytes)
{
    return QString::fromStdString(bytes);
}

/// The indices of the operations, each as often as it weighs.
std::vector<int> weighed(bool onlyForPlugins)
{
    std::vector<int> indices;
    for (size_t index = 0; index < operationTable().size(); ++index) {
        const Operation &operation = operationTable()[index];
        if (operation.isForPlugins || !onlyForPlugins)
            indices.insert(indices.end(), size_t(operation.weight), int(index));
    }
    return indices;
}

/// As a rule the text, now and then another that is much like it to a careless reader, or one of its own.
QString varied(Choices &choices, QString text)
{
    switch (choices.below(32)) {
    case 27:
        return choices.of(ownTexts);
    case 28:
        return text + half;
    case 29:
        return byteOrderMark + text;
    case 30:
    case 31:
        return text.replace('?', half);
    default:
        return text;
    }
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
            data.insert(key, varied(choices, text(choices.of(steps))));
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

/// Gives a step the texts of its own.
void vary(Step &step, Choices &choices)
{
    step.jobText = varied(choices, text(step.job));
    step.otherJobText = varied(choices, text(step.otherJob));
    step.stepText = varied(choices, text(step.step));
    step.otherStepText = varied(choices, step.otherStepText);
    step.nameText = varied(choices, text(step.name));
    step.message.src = varied(choices, step.message.src);
    step.message.dst = varied(choices, step.message.dst);
    for (const char *const key : {"JobName", "Step"}) {
        if (step.message.data.contains(key))
            step.message.data[key] = varied(choices, step.message.data[key].toString());
    }
}

CamModel::Configuration::State decodeFileState(Choices &choices)
{
    switch (choices.below(8)) {
    case 6:
        return CamModel::Configuration::State::Missing;
    case 7:
        return CamModel::Configuration::State::NoJson;
    default:
        return CamModel::Configuration::State::Listing;
    }
}

Reaction decodeReaction(Choices &choices)
{
    const int choice = choices.below(32);
    if (choice < 21)
        return Reaction::None;
    if (choice < 25)
        return Reaction::ThrowPointer;
    if (choice < 28)
        return Reaction::Nested;
    constexpr Reaction others[] = {Reaction::ThrowValue, Reaction::ThrowException, Reaction::ThrowNumber,
                                   Reaction::Nested};
    return others[choice - 28];
}

QLibrary *open(const QString &path)
{
    auto *const library = new QLibrary(path);
    if (!library->load())
        qFatal("%s", qPrintable(library->errorString()));
    return library;
}

QString healthyPath(const QString &name)
{
    return FIXTURE_DIR "/healthy/" + name;
}

QByteArray reasonOfAbsence()
{
    QLibrary absent("Absent.dll");
    return absent.load() ? QByteArray() : absent.errorString().toUtf8();
}

}

CamWalk::CamWalk(std::function<QList<LogLines::Line>()> takeLog)
    : m_takeLog(std::move(takeLog))
{
    for (int count = 0; count < 7; ++count)
        m_widgets.push_back(std::make_unique<QWidget>());
    for (const ElementRow &row : elementRows()) {
        m_healthy.insert(row.library, open(healthyPath(row.library)));
        m_described.insert(row.library, {row.library, {row.symbol}, true});
    }
    for (int index = 0; index < partialLibraries.size(); ++index) {
        const QString name = partialLibraries[index];
        if (!m_healthy.contains(name)) {
            m_healthy.insert(name, open(healthyPath(name)));
            m_described.insert(name, {name, {frameFactories[index]}, true});
        }
        m_factoryless.insert(name, open(FIXTURE_DIR "/factoryless/" + name));
        m_mute.insert(name, open(FIXTURE_DIR "/mute/" + name));
    }
    for (const QString &name : listedNames) {
        const QString file = name + ".dll";
        if (m_described.contains(file))
            m_model.loadable.insert(file, m_described[file]);
    }
    m_model.reasonOfAbsence = reasonOfAbsence();

    qputenv(configurationVariable, QFile::encodeName(m_directory.path()));
    QDir().mkpath(m_directory.path() + configurationDirectory);
    watch();
}

CamWalk::~CamWalk()
{
    Recorder::setOnDelivery({});
    Recorder::setOnFactory({});
    Recorder::setSharedElement(nullptr);
    Recorder::setFactoriesReturnNull(false);
    qunsetenv(configurationVariable);
    registryOf(*Manager::instance()).clear();
    letLibrariesGo();
    for (const auto &libraries : {m_healthy, m_factoryless, m_mute})
        qDeleteAll(libraries);
}

// Has all that happens in the two worlds noted when it happens.
void CamWalk::watch()
{
    m_realWorld.call = [](const Step &step) {
        return operationTable()[size_t(step.operation)].call(*Manager::instance(), step);
    };
    m_realWorld.happen = [this](CamEvent event) {
        collect();
        m_events.push_back(std::move(event));
    };
    m_modelWorld.call = [this](const Step &step) {
        return operationTable()[size_t(step.operation)].model(m_model, step);
    };
    m_modelWorld.happen = [this](CamEvent event) { m_model.events.push_back(std::move(event)); };

    m_model.onFactory = [this] { return inFactory(m_modelWorld); };
    m_model.onDelivery = [this] { inDelivery(m_modelWorld); };
    Recorder::setOnFactory([this](const QString &library, QWidget *parent) {
        m_realWorld.happen(registryOf(*Manager::instance()));
        m_realWorld.happen(CamEvents::FactoryEntry{library, parent});
        void *const made = inFactory(m_realWorld);
        Recorder::setSharedElement(made);
        Recorder::setFactoriesReturnNull(!made);
    });
    Recorder::setOnDelivery([this](const Recorder::Delivery &delivery) {
        Recorder::takeDeliveries();
        m_realWorld.happen(registryOf(*Manager::instance()));
        m_realWorld.happen(delivery);
        ++m_deliveries;
        inDelivery(m_realWorld);
    });
    expectBox();
}

void CamWalk::expectBox()
{
    m_boxes.whileNextIsOpen([this] {
        for (const MessageBoxes::Box &box : m_boxes.take()) {
            m_realWorld.happen(CamEvents::Box{box.title, box.text, box.hasParent});
            ++m_boxCounts[box.text];
        }
        expectBox();
    });
}

// Notes what tells nobody that it happens. A factory is left before anything else is done that could be
// logged, and it is noted when the next one is entered, so this order is the true one.
void CamWalk::collect()
{
    for (const Recorder::FactoryCall &call : Recorder::takeFactoryCalls())
        m_events.emplace_back(call);
    for (const LogLines::Line &line : m_takeLog())
        m_events.emplace_back(line);
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
            history += shownStep(step);
        return history.join('\n') + '\n' + differs;
    }
    return {};
}

void CamWalk::prepare(const QByteArray &block)
{
    Choices choices(block);
    letLibrariesGo();
    auto &libraries = tablesOf(*Manager::instance()).m_libraries;
    libraries = m_healthy;
    QHash<QString, CamModel::Library> described = m_described;
    // Those that may be loaded again are deleted then.
    for (auto it = m_model.loadable.cbegin(); it != m_model.loadable.cend(); ++it)
        libraries[it.key()] = lend(healthyPath(it.key()));
    for (const QString &name : partialLibraries) {
        switch (choices.below(16)) {
        case 13:
            libraries.remove(name);
            described.remove(name);
            break;
        case 14:
            libraries[name] = lend(FIXTURE_DIR "/factoryless/" + name);
            described[name].factories.clear();
            break;
        case 15:
            libraries[name] = lend(FIXTURE_DIR "/mute/" + name);
            described[name].exportsEntryPoint = false;
            break;
        default:
            break;
        }
    }
    for (const QString &alias : aliases) {
        if (choices.oneIn(4))
            continue;
        libraries[alias] = m_healthy[commonLibrary];
        described[alias] = m_described[commonLibrary];
    }
    registryOf(*Manager::instance()).clear();
    const LoadedFlags flags = loadedFlagsOf(*Manager::instance());
    flags.cam = flags.dfm = false;
    m_model.restart(described);
    collect();
    m_events.clear();
}

// Empties the manager's tables. It has deleted those that it has loaded again, unless there was another
// owner.
void CamWalk::letLibrariesGo()
{
    QTPluginsMangerPrivate &tables = tablesOf(*Manager::instance());
    const QList<QLibrary *> kept = m_healthy.values();
    for (QLibrary *const library : qAsConst(tables.m_libraries)) {
        if (!kept.contains(library))
            m_lent.append(library);
    }
    for (const QPointer<QLibrary> &library : qAsConst(m_lent)) {
        if (library)
            library->unload();
        delete library;
    }
    m_lent.clear();
    tables = {};
}

QLibrary *CamWalk::lend(const QString &path)
{
    m_lent.append(open(path));
    return m_lent.last();
}

Step CamWalk::decode(const QByteArray &block) const
{
    static const std::vector<int> all = weighed(false);
    static const std::vector<int> forPlugins = weighed(true);
    const auto object = [this](int index) {
        return index == 0 ? nullptr : m_widgets[size_t(index) - 1].get();
    };
    const int objects = int(m_widgets.size()) + 1;

    Choices choices(block);
    Step step;
    step.operation = choices.of(all);
    step.row = choices.below(elementRows().size());
    step.parent = object(choices.below(objects));
    step.frame = object(choices.below(objects));
    step.made = object(choices.below(objects));
    step.job = choices.of(jobs);
    step.otherJob = choices.of(jobs);
    step.step = choices.of(steps);
    step.otherStepText = text(choices.of(steps));
    step.element = choices.of(elements);
    step.library = choices.of(commonNames);
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
    step.reaction = decodeReaction(choices);
    step.reactsAt = choices.of(moments);
    if (choices.oneIn(2))
        aim(step, choices.below(64));
    vary(step, choices);
    step.fileState = decodeFileState(choices);
    for (int count = choices.below(4); count > 0; --count)
        step.listed += choices.of(listedNames);
    if (step.reaction == Reaction::Nested) {
        // The same block read otherwise: another operation on the same things, which reacts to nothing.
        step.nested = std::make_shared<Step>(step);
        step.nested->operation = choices.of(forPlugins);
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
    world.running.clear();
    try {
        make(world, step);
    } catch (const QException *) {
        world.happen(CamEvents::Exception{"a pointer to QException"});
    } catch (const QException &) {
        world.happen(CamEvents::Exception{"QException"});
    } catch (const std::exception &) {
        world.happen(CamEvents::Exception{"std::exception"});
    } catch (int) {
        world.happen(CamEvents::Exception{"a number"});
    }
}

void CamWalk::make(World &world, const Step &step)
{
    world.running.push_back({&step, 0});
    void *const result = world.call(step);
    world.happen(CamEvents::Result{result});
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
    m_realWorld.happen(registryOf(*Manager::instance()));
    m_modelWorld.happen(m_model.registry.records);
    const auto events = std::exchange(m_events, {});
    const auto expected = std::exchange(m_model.events, {});
    const auto [is, should] =
        std::mismatch(events.begin(), events.end(), expected.begin(), expected.end(), isSame);
    if (is == events.end() && should == expected.end())
        return {};

    const auto shownEvent = [this](const CamEvent &event) {
        return shown(event, [this](const void *object) { return nameOf(object); });
    };
    const auto shownEvents = [&](auto first, auto last) {
        QStringList lines;
        std::transform(first, last, std::back_inserter(lines), shownEvent);
        return lines.isEmpty() ? QStringLiteral("\n  nothing") : "\n  " + lines.join("\n  ");
    };
    return "in the last of these, as it should be:" + shownEvents(events.begin(), is) + "\nthen:"
           + shownEvents(is, events.end()) + "\ninstead of:" + shownEvents(should, expected.end());
}

// Shows what is not as in the plainest of operations.
QString CamWalk::shownStep(const Step &step) const
{
    static const QStringList plain = shownParts(decode(QByteArray(blockSize, '\0')));
    QStringList parts = shownParts(step);
    for (int index = parts.size() - 1; index > 0; --index) {
        if (index < plain.size() && parts[index] == plain[index])
            parts.removeAt(index);
    }
    if (step.nested)
        parts += "within it " + shownStep(*step.nested);
    return parts.join(", ");
}

QStringList CamWalk::shownParts(const Step &step) const
{
    return {operationTable()[size_t(step.operation)].name,
            "row " + elementRows()[step.row].operation,
            "parent " + nameOf(step.parent),
            "frame " + nameOf(step.frame),
            "job " + quoted(step.job),
            "job as text " + quoted(step.jobText),
            "other job " + quoted(step.otherJob),
            "other job as text " + quoted(step.otherJobText),
            "step " + quoted(step.step),
            "step as text " + quoted(step.stepText),
            "other step " + quoted(step.otherStepText),
            "name " + quoted(step.name),
            "name as text " + quoted(step.nameText),
            "element " + quoted(step.element),
            "library " + quoted(step.library),
            "kind " + quoted(step.kind),
            QStringLiteral("flag %1").arg(step.flag),
            "message " + shown(step.message),
            QStringLiteral("file %1").arg(int(step.fileState)),
            "lists " + step.listed.join(", "),
            "makes " + nameOf(step.made),
            QStringLiteral("reaction %1").arg(int(step.reaction)),
            QStringLiteral("reacts at %1").arg(step.reactsAt)};
}

QString CamWalk::nameOf(const void *object) const
{
    if (!object)
        return QStringLiteral("null");
    for (size_t index = 0; index < m_widgets.size(); ++index) {
        if (m_widgets[index].get() == object)
            return QStringLiteral("#%1").arg(index + 1);
    }
    return QStringLiteral("0x%1").arg(quintptr(object), 0, 16);
}
