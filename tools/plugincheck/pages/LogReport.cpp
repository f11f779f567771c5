#include "LogReport.h"

#include "LogDecoder.h"
#include "Readable.h"
#include "messageTypes_p.h"

#include <QtCore/QJsonArray>

#include <algorithm>
#include <functional>
#include <tuple>

using namespace PluginCheck;

namespace {

constexpr int mostBytesOfMessage = 64 * 1024;
constexpr int mostReasons = 20;
constexpr int mostSeen = 1000000;
constexpr int mostNameCharacters = 1000;

struct FailureKind
{
    KnownTexts::Index known;
    const char *code;
    const char *meaning;
    const char *next;
};

constexpr FailureKind failureKinds[] = {
    {KnownTexts::LoadFailed, "load-failed", "the loader refused the library", ""},
    {KnownTexts::DependenciesFailed, "dependencies-failed",
     "a dependency is missing, of another version, itself unsound, or circular; the library was skipped",
     "Check the configuration file with plugincheck, which names the dependency."},
    {KnownTexts::NotALibrary, "no-library-name", "the name is not that of a library; it was skipped",
     "Give the host the library's file name, with \".dll\"."},
    {KnownTexts::ConfigMissing, "config-missing",
     "the configuration file does not exist; nothing of it was loaded",
     "Put the file there, or start the host in the right folder: see PLUGINMANGER_PATH and "
     "PLUGINMANGER_PLUGINCONFIG."},
    {KnownTexts::ConfigNotOpened, "config-not-opened",
     "the configuration file exists and cannot be opened; nothing of it was loaded",
     "Look whether it is a file, and at its permissions."},
    {KnownTexts::ConfigNotParsed, "config-not-parsed",
     "the configuration file is not JSON; nothing of it was loaded",
     "Check the file with plugincheck, which shows the line and column."},
};

const FailureKind &kindOf(int known)
{
    return *std::find_if(std::begin(failureKinds), std::end(failureKinds),
                         [known](const FailureKind &kind) { return kind.known == known; });
}

struct Thrown
{
    std::string_view text;
    const char *operations;
};

constexpr Thrown thrownTexts[] = {
    {"pluginTransmitData Error.", "pluginTransmitData"},
    {"transmitDataToFramework Error.", "transmitDataToFramework or Ov_DeleteTreeNode"},
    {"updateMatrix Error.",
     "updateMatrix, updateGuide, Eda_setTransmitData, Eda_CAM_TransmitData, setInterfaceTexts or "
     "Ov_SetCurrentText"},
    {"updateGraphic Error.", "updateGraphic or ChangeCompareJobInfo"},
    {"updateEngieer Error.", "updateEngieer"},
};

constexpr std::string_view sendTo = " send to ";
constexpr std::string_view invalidType = "recMegToPlugin metadate type is ";
constexpr std::string_view unknownFrame = "recMegToPlugin metadate frame is ";

bool startsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

std::string_view firstLine(std::string_view text)
{
    return text.substr(0, text.find('\n'));
}

QByteArray copyOf(std::string_view bytes)
{
    return {bytes.data(), int(bytes.size())};
}

QString shownText(std::string_view bytes)
{
    return elided(readable(decodeLogLine(bytes)), mostNameCharacters);
}

bool isNumber(std::string_view text)
{
    if (!text.empty() && text.front() == '-')
        text.remove_prefix(1);
    return !text.empty() && text.size() <= 10
           && std::all_of(text.begin(), text.end(), [](char each) { return each >= '0' && each <= '9'; });
}

QString typeName(const QString &type)
{
    for (const auto &each : PluginMangerInternal::MessageType::names) {
        if (type == QString::number(each.type))
            return QString::fromLatin1(each.name);
    }
    return {};
}

/// The parts of "A send to B 7". Names may hold anything, so the first " send to " and the last blank decide.
struct Trace
{
    std::string_view sender;
    std::string_view receiver;
    std::string_view type;
};

std::optional<Trace> parseTrace(std::string_view text)
{
    const size_t middle = text.find(sendTo);
    const size_t blank = text.rfind(' ');
    if (middle == std::string_view::npos || blank < middle + sendTo.size()
        || !isNumber(text.substr(blank + 1)))
        return {};
    const size_t receiver = middle + sendTo.size();
    return Trace{text.substr(0, middle), text.substr(receiver, blank - receiver), text.substr(blank + 1)};
}

}

QString PluginCheck::messageTypeText(const QString &type)
{
    const QString name = typeName(type);
    return name.isEmpty() ? type : name + QStringLiteral(" (") + type + QLatin1Char(')');
}

void LogReport::Occurrences::add(const LogTime &time)
{
    if (count == 0 || time.isBefore(first))
        first = time;
    if (count == 0 || last.isBefore(time))
        last = time;
    ++count;
}

void LogReport::Occurrences::describe(QJsonObject &object) const
{
    object.insert(QStringLiteral("count"), count);
    object.insert(QStringLiteral("first"), first.text());
    object.insert(QStringLiteral("last"), last.text());
}

LogReport::LogReport(const LogSpan &span, const Limits &limits)
    : m_span(span)
    , m_limits(limits)
{
}

void LogReport::beginFile(const QString &name)
{
    endFile();
    const auto same =
        std::find_if(m_files.begin(), m_files.end(), [&](const File &file) { return file.name == name; });
    m_file = int(same - m_files.begin());
    if (same == m_files.end())
        m_files.append({name});
}

QStringList LogReport::notLogs() const
{
    QStringList names;
    for (const File &file : m_files) {
        if (file.isNoLog())
            names.append(file.name);
    }
    return names;
}

void LogReport::addLine(std::string_view line)
{
    File &file = m_files[m_file];
    ++file.lines;
    file.bytes += qint64(line.size()) + 1;

    const auto prefix = parseLogPrefix(line);
    const bool isHeader = !prefix && isLogHeader(line);
    file.hasHeader = file.hasHeader || isHeader;
    if (prefix || isHeader)
        finishMessage();
    if (prefix) {
        ++file.entries;
        m_isOpen = true;
        m_prefix = *prefix;
        m_unit = copyOf(prefix->unit);
        m_open = copyOf(line);
        return;
    }
    if (m_isOpen && m_open.size() < mostBytesOfMessage)
        m_open.append('\n').append(copyOf(line.substr(0, mostBytesOfMessage)));
}

void LogReport::endFile()
{
    finishMessage();
}

void LogReport::finishMessage()
{
    if (!m_isOpen)
        return;
    m_isOpen = false;
    if (!m_span.contains(m_prefix.time)) {
        ++m_outsideSpan;
        return;
    }
    if (m_prefix.severity != 'I' && isKnownFromOtherFile()) {
        ++m_alsoInOtherFile;
        return;
    }
    m_read.add(m_prefix.time);
    count(std::string_view(m_open.constData(), size_t(m_open.size())).substr(m_prefix.length));
}

bool LogReport::isKnownFromOtherFile()
{
    const size_t hash = std::hash<std::string_view>()({m_open.constData(), size_t(m_open.size())});
    const auto seen = m_seen.constFind(hash);
    if (seen != m_seen.constEnd())
        return *seen != m_file;
    if (m_seen.size() < mostSeen)
        m_seen.insert(hash, m_file);
    return false;
}

/// Only the library's own source files write what is meant here; others may use the same words.
void LogReport::count(std::string_view text)
{
    if (m_unit == "pluginManger4CAM")
        countByCamManager(text);
    else if (m_unit == "pluginMangerBase")
        countByManagerBase(text);
    else if (m_unit == "pluginManger")
        countByManager(text);
    else
        ++m_notTheLibrarys;
}

void LogReport::countByManagerBase(std::string_view text)
{
    const auto &known = KnownTexts::all();
    if (known[KnownTexts::AllUnloaded].lengthAtStartOf(text) > 0) {
        addNote(QStringLiteral("all libraries were asked to unload"));
        return;
    }
    for (const FailureKind &kind : failureKinds) {
        const int length = known[kind.known].lengthAtStartOf(text);
        if (length == 0)
            continue;
        const QString rest = readable(decodeLogLine(text.substr(size_t(length))));
        const QString &reasonText = known[KnownTexts::LoadFailedReason].text;
        const bool hasReason = kind.known == KnownTexts::LoadFailed && rest.contains(reasonText);
        addFailure(kind.known, hasReason ? rest.section(reasonText, 0, 0) : rest,
                   hasReason ? rest.section(reasonText, 1) : QString());
        return;
    }
    ++m_notTold;
}

void LogReport::countByManager(std::string_view text)
{
    if (KnownTexts::all()[KnownTexts::AllLoaded].lengthAtStartOf(text) > 0)
        addNote(QStringLiteral("the desktop set has been gone through"));
    else
        ++m_notTold;
}

void LogReport::countByCamManager(std::string_view text)
{
    if (m_prefix.severity == 'I') {
        if (KnownTexts::all()[KnownTexts::AllLoaded].lengthAtStartOf(text) > 0)
            addNote(QStringLiteral("a CAM or DFM set has been gone through"));
        else if (firstLine(text) != "ok")
            addTrace(text);
        return;
    }
    for (const Thrown &thrown : thrownTexts) {
        if (firstLine(text) == thrown.text) {
            addError(
                QString::fromLatin1(thrown.text.data()),
                {QStringLiteral("a plug-in threw a pointer to QException while it received a message of ")
                     + QString::fromLatin1(thrown.operations)
                     + QStringLiteral("; receivers that were still to come got nothing"),
                 QStringLiteral("Find the receiver by what happened just before; mend the plug-in.")});
            return;
        }
    }
    if (startsWith(text, unknownFrame))
        addRefused(text);
    else if (startsWith(text, invalidType))
        addError(shownText(text), {QStringLiteral("a message of the invalid type was not delivered"),
                                   QStringLiteral("Give the message a type; a new record has -1.")});
    else if (firstLine(text) == "insertRoot error.")
        addError(shownText(text), {QStringLiteral("memory ran out while the root was recorded"),
                                   QStringLiteral("Look at the host's use of memory.")});
    else
        ++m_notTold;
}

void LogReport::addFailure(int known, const QString &library, const QString &reason)
{
    const QString shown = elided(library, mostNameCharacters);
    const QString key = QString::number(known) + shown;
    auto index = m_failureIndex.constFind(key);
    if (index == m_failureIndex.constEnd()) {
        if (m_failures.size() >= m_limits.groups) {
            ++m_notTold;
            return;
        }
        index = m_failureIndex.insert(key, m_failures.size());
        Failure failure;
        failure.known = known;
        failure.library = shown;
        m_failures.append(failure);
    }
    Failure &failure = m_failures[*index];
    failure.occurrences.add(m_prefix.time);
    addReason(failure, reason);
    addNote(QString::fromLatin1(kindOf(known).code) + QStringLiteral(": ") + shown, true);
}

void LogReport::addReason(Failure &failure, const QString &reason)
{
    const QString shown = elided(reason, mostNameCharacters);
    const auto same = std::find_if(failure.reasons.begin(), failure.reasons.end(),
                                   [&](const Reason &each) { return each.text == shown; });
    if (same != failure.reasons.end()) {
        ++same->count;
        return;
    }
    if (failure.reasons.size() >= mostReasons)
        return;
    const FailureKind &kind = kindOf(failure.known);
    const LogAdvice advice =
        kind.known == KnownTexts::LoadFailed
            ? adviceForReason(failure.library, reason)
            : LogAdvice{QString::fromLatin1(kind.meaning), QString::fromLatin1(kind.next)};
    failure.reasons.append({shown, advice, 1});
}

void LogReport::addTrace(std::string_view text)
{
    auto trace = parseTrace(text);
    if (!trace) {
        // What follows may be of someone who writes to the same file without a prefix.
        text = firstLine(text);
        trace = parseTrace(text);
    }
    if (!trace) {
        ++m_notTold;
        return;
    }
    ++m_deliveries;
    const QByteArray key = copyOf(text);
    auto found = m_messages.find(key);
    if (found == m_messages.end() && m_messages.size() < m_limits.groups)
        found = m_messages.insert(key, {});
    if (found != m_messages.end())
        found->add(m_prefix.time);
    else
        ++m_notTold;

    if (m_notDrawn > 0) {
        ++m_notDrawn;
        return;
    }
    Drawn drawn;
    drawn.kind = Drawn::Delivered;
    drawn.message = {shownText(trace->sender), shownText(trace->receiver), copyOf(trace->type)};
    draw(drawn);
}

/// "recMegToPlugin metadate frame is 0x1234 src: A dst:Btype:7". The pointer is another one in each run.
void LogReport::addRefused(std::string_view text)
{
    const size_t source = text.find(" src: ");
    const size_t destination = text.find(" dst:", source == std::string_view::npos ? 0 : source);
    const size_t type = text.rfind("type:");
    if (source == std::string_view::npos || destination == std::string_view::npos || type < destination + 5) {
        ++m_notTold;
        return;
    }
    Drawn drawn;
    drawn.kind = Drawn::Refused;
    drawn.message = {shownText(text.substr(source + 6, destination - source - 6)),
                     shownText(text.substr(destination + 5, type - destination - 5)),
                     shownText(text.substr(type + 5))};
    addError(
        QStringLiteral("message from \"%1\" to \"%2\", type %3, of a frame that is not registered")
            .arg(drawn.message.sender, drawn.message.receiver, messageTypeText(drawn.message.type)),
        {QStringLiteral("the frame that the message came from was never registered, or is unregistered; the "
                        "message was not delivered"),
         QStringLiteral("Register the frame before its elements send, and pass the frame itself as the first "
                        "argument of recMegToPlugin.")});
    draw(drawn);
}

void LogReport::addError(const QString &text, const LogAdvice &advice)
{
    auto index = m_errorIndex.constFind(text);
    if (index == m_errorIndex.constEnd()) {
        if (m_errors.size() >= m_limits.groups) {
            ++m_notTold;
            return;
        }
        index = m_errorIndex.insert(text, m_errors.size());
        m_errors.append({text, advice, {}});
    }
    m_errors[*index].occurrences.add(m_prefix.time);
    if (!text.startsWith(QLatin1String("message from")))
        addNote(text, true);
}

void LogReport::addNote(const QString &text, bool isFailure)
{
    Drawn drawn;
    drawn.isFailure = isFailure;
    drawn.text = text;
    draw(drawn);
}

/// What repeats what is before it becomes one arrow.
void LogReport::draw(const Drawn &drawn)
{
    if (!m_drawn.isEmpty()) {
        Drawn &before = m_drawn.last();
        const bool repeats = before.kind == drawn.kind && before.text == drawn.text
                             && before.message.sender == drawn.message.sender
                             && before.message.receiver == drawn.message.receiver
                             && before.message.type == drawn.message.type;
        if (repeats && m_notDrawn == 0) {
            ++before.count;
            before.last = m_prefix.time;
            return;
        }
    }
    if (m_notDrawn > 0 || m_drawn.size() >= m_limits.messagesDrawn) {
        ++m_notDrawn;
        return;
    }
    m_drawn.append(drawn);
    m_drawn.last().time = m_prefix.time;
    m_drawn.last().last = m_prefix.time;
}

QJsonObject LogReport::toJson() const
{
    qint64 failed = 0;
    for (const Failure &failure : m_failures)
        failed += failure.occurrences.count;
    qint64 errors = 0;
    for (const Error &error : m_errors)
        errors += error.occurrences.count;

    return {
        {QStringLiteral("format"), 1},
        {QStringLiteral("tool"),
         QJsonObject{{QStringLiteral("name"), QStringLiteral("plugincheck")},
                     {QStringLiteral("version"), QStringLiteral(PLUGINCHECK_VERSION)}}},
        {QStringLiteral("files"), filesJson()},
        {QStringLiteral("first"), m_read.first.text()},
        {QStringLiteral("last"), m_read.last.text()},
        {QStringLiteral("failures"), failuresJson()},
        {QStringLiteral("errors"), errorsJson()},
        {QStringLiteral("messages"), messagesJson()},
        {QStringLiteral("traffic"), trafficJson()},
        {QStringLiteral("notDrawn"), m_notDrawn},
        {QStringLiteral("summary"), QJsonObject{{QStringLiteral("entries"), m_read.count},
                                                {QStringLiteral("outsideSpan"), m_outsideSpan},
                                                {QStringLiteral("alsoInOtherFile"), m_alsoInOtherFile},
                                                {QStringLiteral("notTheLibrarys"), m_notTheLibrarys},
                                                {QStringLiteral("notTold"), m_notTold},
                                                {QStringLiteral("failures"), failed},
                                                {QStringLiteral("errors"), errors},
                                                {QStringLiteral("messages"), m_deliveries}}},
    };
}

QJsonArray LogReport::filesJson() const
{
    QJsonArray files;
    for (const File &file : m_files)
        files.append(QJsonObject{{QStringLiteral("file"), file.name},
                                 {QStringLiteral("lines"), file.lines},
                                 {QStringLiteral("bytes"), file.bytes},
                                 {QStringLiteral("isLog"), !file.isNoLog()}});
    return files;
}

QJsonArray LogReport::failuresJson() const
{
    QJsonArray failures;
    for (const Failure &failure : m_failures) {
        QJsonArray reasons;
        for (const Reason &reason : failure.reasons)
            reasons.append(QJsonObject{{QStringLiteral("text"), reason.text},
                                       {QStringLiteral("count"), reason.count},
                                       {QStringLiteral("meaning"), reason.advice.meaning},
                                       {QStringLiteral("next"), reason.advice.next}});
        QJsonObject object{{QStringLiteral("code"), QString::fromLatin1(kindOf(failure.known).code)},
                           {QStringLiteral("file"), failure.library},
                           {QStringLiteral("reasons"), reasons}};
        failure.occurrences.describe(object);
        failures.append(object);
    }
    return failures;
}

QJsonArray LogReport::errorsJson() const
{
    QJsonArray errors;
    for (const Error &error : m_errors) {
        QJsonObject object{{QStringLiteral("text"), error.text},
                           {QStringLiteral("meaning"), error.advice.meaning},
                           {QStringLiteral("next"), error.advice.next}};
        error.occurrences.describe(object);
        errors.append(object);
    }
    return errors;
}

/// The most frequent first; a hash has no order of its own.
QJsonArray LogReport::messagesJson() const
{
    using Counted = QHash<QByteArray, Occurrences>::const_iterator;
    QVector<Counted> counted;
    counted.reserve(m_messages.size());
    for (auto each = m_messages.constBegin(); each != m_messages.constEnd(); ++each)
        counted.append(each);
    std::sort(counted.begin(), counted.end(), [](const Counted &left, const Counted &right) {
        return std::make_tuple(-left->count, left.key()) < std::make_tuple(-right->count, right.key());
    });

    QJsonArray messages;
    for (const Counted &each : counted) {
        const auto trace = parseTrace({each.key().constData(), size_t(each.key().size())});
        const QString type = QString::fromLatin1(copyOf(trace->type));
        QJsonObject object{{QStringLiteral("sender"), shownText(trace->sender)},
                           {QStringLiteral("receiver"), shownText(trace->receiver)},
                           {QStringLiteral("type"), type.toLongLong()},
                           {QStringLiteral("typeName"), typeName(type)}};
        each->describe(object);
        messages.append(object);
    }
    return messages;
}

QJsonArray LogReport::trafficJson() const
{
    static const QString kinds[] = {QStringLiteral("delivered"), QStringLiteral("refused"),
                                    QStringLiteral("note")};
    QJsonArray traffic;
    for (const Drawn &drawn : m_drawn) {
        QJsonObject object{{QStringLiteral("kind"), kinds[drawn.kind]},
                           {QStringLiteral("time"), drawn.time.text()},
                           {QStringLiteral("last"), drawn.last.text()},
                           {QStringLiteral("count"), drawn.count}};
        if (drawn.kind == Drawn::Note) {
            object.insert(QStringLiteral("text"), drawn.text);
            object.insert(QStringLiteral("severity"),
                          drawn.isFailure ? QStringLiteral("error") : QStringLiteral("note"));
        } else {
            object.insert(QStringLiteral("sender"), drawn.message.sender);
            object.insert(QStringLiteral("receiver"), drawn.message.receiver);
            object.insert(QStringLiteral("type"), messageTypeText(drawn.message.type));
        }
        traffic.append(object);
    }
    return traffic;
}
