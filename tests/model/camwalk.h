#pragma once

#include "cammodel.h"
#include "messageboxes.h"

#include <QtCore/QByteArray>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QLibrary;

/// Takes the CAM manager and its model through the same sequences of public operations, with real plug-in
/// libraries, and compares after each operation all that can be seen of both: results, exceptions, the
/// registry, what factories and entry points were given, log lines, message boxes.
///
/// A sequence is decoded from bytes, in blocks of one size: the first says what is loaded and what not, each
/// other one is an operation. Half of the operations concern something that is registered by then.
class CamWalk
{
public:
    static constexpr int blockSize = 40;

    /// `takeLog` returns the log lines since its last call.
    explicit CamWalk(std::function<QList<LogLines::Line>()> takeLog);
    ~CamWalk();

    /// Returns where the two differ, with the operations up to there; empty when they agree.
    QString walk(const QByteArray &sequence);

    /// How many operations of all walks so far were made, and how many deliveries and caught exceptions there
    /// were.
    int operations() const { return m_operations; }
    int deliveries() const { return m_deliveries; }
    int boxes() const { return m_boxCount; }

    enum class Reaction { None, Nested, ThrowPointer, ThrowValue, ThrowException, ThrowNumber };

    /// One call of an operation, and what the plug-ins do while it runs.
    struct Step
    {
        int operation = 0;
        int row = 0;
        QWidget *parent = nullptr;
        void *frame = nullptr;
        std::string job;
        std::string otherJob;
        std::string step;
        std::string otherStep;
        std::string name;
        std::string element;
        QString kind;
        bool flag = false;
        PluginMetaData message = {};
        /// What a factory makes.
        void *made = nullptr;
        Reaction reaction = Reaction::None;
        /// The delivery, counted from 1, at which the plug-in reacts; 0 is the factory.
        int reactsAt = 0;
        std::shared_ptr<Step> nested;
    };

private:
    /// A step that is being made in one of the two worlds.
    struct Running
    {
        const Step *step;
        int deliveries;
    };

    /// What either world did that the two lists of calls do not tell.
    struct Outcome
    {
        std::vector<void *> results;
        std::string thrown;
    };

    struct World
    {
        std::vector<Running> running;
        Outcome outcome;
        std::function<void *(const Step &)> call;
    };

    void prepare(const QByteArray &block);
    Step decode(const QByteArray &block) const;
    void aim(Step &step, int choice) const;
    void enter(World &world, const Step &step);
    void make(World &world, const Step &step);
    void *inFactory(World &world);
    void inDelivery(World &world);
    void react(World &world, const Step &step);
    QString difference();
    QString shown(const Step &step) const;
    QString shown(const void *object) const;
    QString shown(const PluginMetaData &message) const;
    QString shown(const QList<Recorder::Delivery> &deliveries) const;
    QString shown(const QList<Recorder::FactoryCall> &calls) const;
    QString shown(const std::vector<RegisterRecord> &records) const;
    QString shown(const Outcome &outcome) const;

    std::function<QList<LogLines::Line>()> m_takeLog;
    MessageBoxes m_boxes;
    std::vector<std::unique_ptr<QWidget>> m_widgets;
    QHash<QString, QLibrary *> m_healthy;
    QHash<QString, QLibrary *> m_factoryless;
    QHash<QString, QLibrary *> m_mute;
    CamModel m_model;
    World m_realWorld;
    World m_modelWorld;
    int m_operations = 0;
    int m_deliveries = 0;
    int m_boxCount = 0;
};
