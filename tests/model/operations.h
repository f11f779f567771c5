#pragma once

#include "PluginMetaData.h"
#include "cammodel.h"

#include <QtCore/QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QTpluginsManger4CAM;
class QWidget;
struct ElementRow;

/// What a plug-in does when it is called.
enum class Reaction { None, Nested, ThrowPointer, ThrowValue, ThrowException, ThrowNumber };

/// One call of an operation, and what the plug-ins do while it runs.
///
/// Names are bytes. Where an operation takes a text it is given the one beside them, which as a rule is what
/// the bytes convert to.
struct Step
{
    int operation = 0;
    int row = 0;
    QWidget *parent = nullptr;
    void *frame = nullptr;
    std::string job;
    QString jobText;
    std::string otherJob;
    QString otherJobText;
    std::string step;
    QString stepText;
    QString otherStepText;
    std::string name;
    QString nameText;
    std::string element;
    /// What Ov_Register_Common() is asked for.
    std::string library;
    QString kind;
    bool flag = false;
    PluginMetaData message = {};
    /// What a configuration file is like that is read, and what it lists.
    CamModel::Configuration::State fileState = CamModel::Configuration::State::Listing;
    QStringList listed;
    /// What a factory makes.
    void *made = nullptr;
    Reaction reaction = Reaction::None;
    /// The delivery, counted from 1, at which the plug-in reacts; 0 is the factory.
    int reactsAt = 0;
    std::shared_ptr<Step> nested;
};

/// A public operation: how often it comes, how it is called, and what the model says to it.
struct Operation
{
    const char *name;
    int weight;
    std::function<void *(QTpluginsManger4CAM &, const Step &)> call;
    std::function<void *(CamModel &, const Step &)> model;
    /// Plug-ins must not have the libraries loaded that they are in.
    bool isForPlugins = true;
};

const std::vector<Operation> &operationTable();
const QList<ElementRow> &elementRows();

/// Where the configuration files are that loading reads: the directory, and the one below it with the files.
inline constexpr char configurationVariable[] = "PLUGINMANGER_PATH";
inline constexpr char configurationDirectory[] = "/pluginconfig";
