#pragma once

#include "cammodel.h"
#include "messageboxes.h"
#include "operations.h"

#include <QtCore/QByteArray>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class Choices;
class QLibrary;

/// Takes the CAM manager and its model through the same sequences of public operations, with real plug-in
/// libraries, and compares after each operation all that could be seen of both, in its order: what factories
/// and entry points were given, the registry as they found it, log lines, message boxes, results, exceptions.
///
/// A sequence is decoded from bytes, in blocks of one size: the first says what is loaded and what not, each
/// other one is an operation. Half of the operations concern something that is registered by then.
class CamWalk
{
public:
    static constexpr int blockSize = 64;

    /// `takeLog` returns the log lines since its last call.
    explicit CamWalk(std::function<QList<LogLines::Line>()> takeLog);
    ~CamWalk();

    /// Returns where the two differ, with the operations up to there; empty when they agree.
    QString walk(const QByteArray &sequence);

    /// How many operations of all walks so far were made, how many deliveries there were, and how often each
    /// text was shown in a box.
    int operations() const { return m_operations; }
    int deliveries() const { return m_deliveries; }
    const QHash<QString, int> &boxes() const { return m_boxCounts; }

private:
    /// A step that is being made in one of the two worlds.
    struct Running
    {
        const Step *step;
        int deliveries;
    };

    struct World
    {
        std::vector<Running> running;
        std::function<void *(const Step &)> call;
        std::function<void(CamEvent)> happen;
    };

    void watch();
    void expectBox();
    void collect();
    void prepare(const QByteArray &block);
    void letLibrariesGo();
    QLibrary *lend(const QString &path);
    Step decode(const QByteArray &block) const;
    void aim(Step &step, int choice) const;
    void enter(World &world, const Step &step);
    void make(World &world, const Step &step);
    void *inFactory(World &world);
    void inDelivery(World &world);
    void react(World &world, const Step &step);
    QString difference();
    QString shownStep(const Step &step) const;
    QStringList shownParts(const Step &step) const;
    QString nameOf(const void *object) const;

    std::function<QList<LogLines::Line>()> m_takeLog;
    QTemporaryDir m_directory;
    MessageBoxes m_boxes;
    std::vector<std::unique_ptr<QWidget>> m_widgets;
    /// Stay loaded, so that a sequence costs no loading.
    QHash<QString, QLibrary *> m_healthy;
    QHash<QString, QLibrary *> m_factoryless;
    QHash<QString, QLibrary *> m_mute;
    QHash<QString, CamModel::Library> m_described;
    /// Were in the manager's table, which may have deleted them.
    QList<QPointer<QLibrary>> m_lent;
    CamModel m_model;
    World m_realWorld;
    World m_modelWorld;
    std::vector<CamEvent> m_events;
    int m_operations = 0;
    int m_deliveries = 0;
    QHash<QString, int> m_boxCounts;
};
