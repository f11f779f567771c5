#pragma once

#include <QtCore/QString>

class QTpluginsManger4CAM;
struct Frame;
class Workspace;

/// Renames and deletes jobs and steps, and tells everybody who shows them.
class JobTree
{
public:
    JobTree(QTpluginsManger4CAM *manager, Workspace &workspace);

    /// Whether a job may be opened under this name, or get it.
    bool isFreeJobName(const QString &name) const;
    bool isFreeStepName(const QString &job, const QString &name) const;

    // Names are taken by value: those in a frame change or go with it.
    void renameJob(QString oldName, QString newName);
    void renameStep(QString job, QString oldName, QString newName);
    void deleteJob(QString job);
    void deleteStep(QString job, QString step);

    /// Shows in all graphic frames which job they are compared with.
    void compareWith(const QString &job);

private:
    void closeDfmFrame(const Frame &frame);

    QTpluginsManger4CAM *m_manager;
    Workspace &m_workspace;
};
