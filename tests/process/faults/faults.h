#pragma once

#include "camtest.h"
#include "debuglines.h"
#include "pluginManger.h"

#include <functional>
#include <memory>
#include <vector>

class Faults;

/// How the process of a row ends.
struct Ending
{
    enum Kind { Normal, Signal, Exit, Hang };

    Kind kind = Normal;
    int number = 0;
};

/// One thing that can go wrong.
struct Row
{
    QByteArray name;
    QByteArray happens;
    std::function<void(Faults &)> run;
    /// Where it is not normal, the documentation of limits tells of the row by its name.
    Ending ending = {};
    /// Why this platform has no such row.
    QByteArray leftOut = {};
    /// So much that a sanitizer takes minutes when it notes the whole stack each time.
    bool allocatesMuch = false;
    /// Why valgrind cannot run it.
    QByteArray notUnderValgrind = {};
};

using Rows = std::vector<Row>;

/// What the rows have at hand: a directory, both managers that read their lists from it, and what they load.
class Faults : public CamTest
{
    Q_OBJECT

public:
    using CamTest::boxes;
    using CamTest::by;
    using CamTest::deliveries;
    using CamTest::directory;
    using CamTest::element;
    using CamTest::error;
    using CamTest::factoryCalls;
    using CamTest::graphicEditor;
    using CamTest::graphicFrame;
    using CamTest::info;
    using CamTest::insertRoot;
    using CamTest::isRegistered;
    using CamTest::load;
    using CamTest::log;
    using CamTest::manager;
    using CamTest::message;
    using CamTest::note;
    using CamTest::onDeliveryTo;
    using CamTest::onNextDelivery;
    using CamTest::tips;
    using CamTest::to;
    using CamTest::twins;
    using CamTest::view;
    using CamTest::withMissing;
    using Lines = QList<LogLines::Line>;

    static QTpluginsManger *desktop() { return QTpluginsManger::instance(); }
    static QString fixture(const char *file);
    /// A directory of the dynamic loader's, which it asks before that of the healthy libraries.
    static QString replaceable(const QString &file);
    static QString withoutSuffix(const QString &path);
    static QByteArray healthyLibrary();
    static QByteArray healthyPlugin();

    QString path(const QString &file) const;
    /// Makes a file in this row's directory and returns its path.
    QString make(const QString &file, const QByteArray &content) const;

    void writeCamList(const QByteArray &content) const;
    void writeDesktopList(const QByteArray &content) const;

    /// Load a list of nothing but this path, which ends in ".dll" and may fail to load.
    void loadPlain(const QString &path) const;
    void loadQtPlugin(const QString &path) const;

    /// Loads it, and expects one line with the reason, one box, and no entry. On Windows, whose words differ,
    /// the reason is that of QLibrary.
    void expectRefused(const QString &path, const QString &reason);
    void expectRefusedPlugin(const QString &path, const QString &reason);
    void expectLoaded(const QString &path);
    void expectLoadedPlugin(const QString &path);
    /// Since it was last asked: one line with the reason, this one after it, one box, and nothing else.
    void expectOneFailure(const QString &path, const QString &reason, const LogLines::Line &last);

    /// What the loader says of a file.
    static QString reasonOf(const QString &path, const char *words);
    /// What QLibrary says of one. It has asked for other names, too, and tells of the last.
    static QString reasonOfQLibrary(const QString &path, const char *words);
    static QString reasonOfQt(const QString &path);

    static LogLines::Line camLoaded();
    static LogLines::Line desktopLoaded();
    static LogLines::Line allUnloaded();
    static LogLines::Line loadFailed(const QString &path, const QString &reason);

    /// All lines, boxes and deliveries so far have been looked at.
    void expectNothingMore();
    /// Says to the parent process that all went well up to where this one ends.
    static void reachTheEnd();

    DebugLines &debug() { return *m_debug; }

protected:
    /// Another plug-in than those of the row is loaded, registered and gets a message.
    void expectOthersWork();
    void expectOtherQtPluginsWork();

protected slots:
    void init();
    void cleanup();

private:
    QTemporaryDir m_files;
    std::unique_ptr<DebugLines> m_debug;
};

Rows systemRows();
Rows loadRows();
Rows callRows();
Rows messageRows();
Rows configurationRows();

/// What a row that ends its process says when it has come that far.
constexpr char reachedTheEnd[] = "the end is near";
