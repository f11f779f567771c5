#include "workbench.h"

#include "benchsupport.h"

#include <QtCore/QDir>
#include <QtCore/QLibrary>
#include <QtWidgets/QWidget>

using Bench::Workbench;

Workbench::Workbench()
    : root(new QWidget)
{
    QDir(directory()).mkpath(QStringLiteral("pluginconfig"));
    const QStringList names{QStringLiteral("ORVIK-GraphicEditor"), QStringLiteral("ORVIK-Matrix"),
                            QStringLiteral("Graphic_CamGuide"), QStringLiteral("Graphic_View")};
    writeFile(directory() + QStringLiteral("/pluginconfig/pluginconfig4CAM.json"), config(names));
    qputenv("PLUGINMANGER_PATH", directory().toUtf8());
    manager->loadAllPlugins();
    for (const QString &name : names) {
        const QString library = name + QStringLiteral(".dll");
        libraries.insert(library, manager->plugin(library));
        if (!libraries.value(library))
            qFatal("%s is not loaded", qPrintable(library));
    }
}

void Workbench::fill(int count)
{
    const auto add = [this](const char *type, const std::string &name, void *object, void *parent) {
        records.emplace_back(type, name, object, parent);
    };
    const auto addView = [&](QWidget *parent) {
        add("Plugin", "Graphic_View.dll", manager->Ov_RegisterGraphic_View(parent), parent);
    };
    const auto addFrame = [&](const char *kind, const std::string &name, QWidget *made) {
        add(kind, name, made, root);
        addView(made);
        frame = made;
    };
    manager->insertRoot("Engineering", root);
    add("EngineerRoot", "Engineering", root, nullptr);
    for (int number = 0; int(records.size()) < count - 7; ++number) {
        // The only records that can be had without an element: further roots.
        const std::string name = "Element-of-the-workbench-" + std::to_string(number) + ".dll";
        manager->insertRoot(name, this);
        add("EngineerRoot", name, this, nullptr);
    }
    addFrame("Guide", "job-20|Guide", manager->Ov_RegisterGuideFramework(root, "job-20|Guide"));
    addFrame("Matrix", "job-20", manager->Ov_RegisterMatrixFramework(root, "job-20"));
    addView(root);
    addFrame("Graphic", "job-20 | pcb", manager->Ov_RegisterGraphicFramework(root, "job-20 | pcb", false));
}

void Workbench::addFramesToUpdate()
{
    for (int number = 0; number < updatedFrames; ++number) {
        const std::string name = "updated | step-" + std::to_string(number);
        QWidget *const updated = manager->Ov_RegisterGraphicFramework(root, name, false);
        records.emplace_back("Graphic", name, updated, root);
        for (int other = 1; other < elementsPerUpdatedFrame; ++other) {
            const std::string otherName = "Another-element-" + std::to_string(other);
            QWidget *const element = manager->Ov_Register_CamGuide(otherName, updated, "updated");
            records.emplace_back("Plugin", otherName, element, updated);
        }
        QWidget *const view = manager->Ov_RegisterGraphic_View(updated);
        records.emplace_back("Plugin", "Graphic_View.dll", view, updated);
    }
}
