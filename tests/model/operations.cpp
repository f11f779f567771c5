#include "operations.h"

#include "elementtable.h"
#include "keptloaders.h"
#include "pluginManger4CAM.h"
#include "testfiles.h"

namespace {

using Manager = QTpluginsManger4CAM;

constexpr char camFile[] = "pluginconfig4CAM.json";
constexpr char dfmFile[] = "pluginconfig4DFM.json";

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

void *asResult(bool value)
{
    return reinterpret_cast<void *>(quintptr(value));
}

/// Puts the configuration file there that the step is about, or takes it away.
CamModel::Configuration placed(const char *fileName, const Step &step)
{
    using State = CamModel::Configuration::State;
    const QString path =
        qEnvironmentVariable(configurationVariable) + QLatin1String(configurationDirectory) + '/' + fileName;
    if (step.fileState == State::Missing)
        TestFiles::remove(path);
    else
        TestFiles::write(path, step.fileState == State::NoJson ? "{" : TestFiles::configOf(step.listed));
    return {path, step.fileState, step.listed};
}

}

const QList<ElementRow> &elementRows()
{
    static const QList<ElementRow> rows = elementTable();
    return rows;
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
             return c.registerElement(row.library.toStdString(), row.symbol, s.parent,
                                      row.takesText ? text(s.job) : QString());
         }},
        {"Ov_Register_Common", 6, [](M &m, S s) { return m.Ov_Register_Common(s.library, s.parent); },
         [](C &c, S s) {
             return c.registerElement(s.library, elementRows().last().symbol, s.parent, QString());
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
        {"Eda_CAM_TransmitData", 3, quiet([](M &m, S s) { m.Eda_CAM_TransmitData(s.jobText, s.message); }),
         quiet([](C &c, S s) { c.edaCAMTransmitData(s.jobText, s.message); })},
        {"Eda_setTransmitData", 3,
         quiet([](M &m, S s) { m.Eda_setTransmitData(s.kind, s.jobText, s.message); }),
         quiet([](C &c, S s) { c.edaSetTransmitData(s.kind, s.jobText, s.message); })},

        {"Ov_SetCurrentText", 3, quiet([](M &m, S s) { m.Ov_SetCurrentText(s.jobText, s.message); }),
         quiet([](C &c, S s) { c.setCurrentText(s.jobText, s.message); })},
        {"setInterfaceTexts", 3, quiet([](M &m, S s) { m.setInterfaceTexts(s.kind, s.jobText, s.message); }),
         quiet([](C &c, S s) { c.setInterfaceTexts(s.kind, s.jobText, s.message); })},
        {"setEngineerText", 1, quiet([](M &m, S s) { m.setEngineerText(s.jobText, s.message); }),
         quiet([](C &, S) {})},
        {"setGraphicText", 1, quiet([](M &m, S s) { m.setGraphicText(s.jobText, s.message); }),
         quiet([](C &, S) {})},
        {"setMatrixText", 1, quiet([](M &m, S s) { m.setMatrixText(s.jobText, s.message); }),
         quiet([](C &, S) {})},

        {"ChangeCompareJobInfo", 3, quiet([](M &m, S s) { m.ChangeCompareJobInfo(s.message); }),
         quiet([](C &c, S s) { c.changeCompareJobInfo(s.message); })},
        {"OV_ChangeJobNameAndUpdateJob", 5,
         quiet([](M &m, S s) { m.OV_ChangeJobNameAndUpdateJob(s.jobText, s.otherJobText); }),
         quiet([](C &c, S s) { c.changeJobNameAndUpdateJob(s.jobText, s.otherJobText); })},
        {"Ov_ChangeStepName", 3,
         quiet([](M &m, S s) { m.Ov_ChangeStepName(s.jobText, s.stepText, s.otherStepText); }),
         quiet([](C &c, S s) { c.changeStepName(s.jobText, s.stepText, s.otherStepText); })},
        {"Ov_DeleteTreeNode", 4,
         quiet([](M &m, S s) { m.Ov_DeleteTreeNode(s.kind, s.kind == "Graphic" ? s.nameText : s.jobText); }),
         quiet([](C &c, S s) { c.deleteTreeNode(s.kind, s.kind == "Graphic" ? s.nameText : s.jobText); })},
        {"Ov_UpdateJob", 4, quiet([](M &m, S s) { m.Ov_UpdateJob(s.jobText, s.message); }),
         quiet([](C &c, S s) { c.updateJob(s.jobText, s.message); })},

        {"updateEngieer", 8, quiet([](M &m, S s) { m.updateEngieer(s.jobText, s.message); }),
         quiet([](C &c, S s) { c.updateEngieer(s.message); })},
        {"updateGraphic", 6, quiet([](M &m, S s) { m.updateGraphic(s.jobText, s.message); }),
         quiet([](C &c, S s) { c.updateGraphic(s.jobText, s.message); })},
        {"updateMatrix", 5, quiet([](M &m, S s) { m.updateMatrix(s.jobText, s.message); }),
         quiet([](C &c, S s) { c.updateMatrix(s.jobText, s.message); })},
        {"updateGuide", 3, quiet([](M &m, S s) { m.updateGuide(s.jobText, s.message); }),
         quiet([](C &c, S s) { c.updateGuide(s.jobText, s.message); })},

        {"isCAMLoaded", 1, [](M &m, S) { return asResult(m.isCAMLoaded()); },
         [](C &c, S) { return asResult(c.isCAMLoaded()); }},
        {"isDFMLoaded", 1, [](M &m, S) { return asResult(m.isDFMLoaded()); },
         [](C &c, S) { return asResult(c.isDFMLoaded()); }},
        {"loadAllPlugins", 1,
         [](M &m, S s) {
             placed(camFile, s);
             const KeptLoaders kept;
             return asResult(m.loadAllPlugins());
         },
         [](C &c, S s) { return asResult(c.loadAllPlugins(placed(camFile, s))); }, false},
        {"loadAllDFMPlugins", 1,
         [](M &m, S s) {
             placed(dfmFile, s);
             const KeptLoaders kept;
             return asResult(m.loadAllDFMPlugins());
         },
         [](C &c, S s) { return asResult(c.loadAllDFMPlugins(placed(dfmFile, s))); }, false},
    };
    return all;
}
