#include "testmain.h"

#include <QtCore/QDir>
#include <QtCore/QRegularExpression>

namespace {

QString read(const QString &path)
{
    QFile file(QStringLiteral(SOURCE_DIR "/") + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The names of the operations that a manager's header declares as public, those of QObject aside.
QStringList publicOperations(const QString &header, const QString &manager)
{
    QString text = read(header);
    text.remove(QRegularExpression("/\\*.*?\\*/", QRegularExpression::DotMatchesEverythingOption));
    text.remove(QRegularExpression("//[^\n]*"));
    text = text.mid(text.indexOf("public:"));
    text = text.left(text.indexOf("private:"));
    QStringList names;
    QRegularExpressionMatchIterator found = QRegularExpression("(\\w+)\\(").globalMatch(text);
    while (found.hasNext())
        names.append(manager + "::" + found.next().captured(1));
    names.removeDuplicates();
    return names;
}

QStringList allOperations()
{
    return publicOperations("src/pluginManger/pluginManger.h", "QTpluginsManger")
           + publicOperations("src/pluginManger/pluginManger4CAM.h", "QTpluginsManger4CAM");
}

/// Rows of tables have the operation as code in their second column.
QStringList operationsInTable()
{
    QStringList names;
    QRegularExpressionMatchIterator rows =
        QRegularExpression("^\\|([^|]*)\\|([^|]*)\\|$", QRegularExpression::MultilineOption)
            .globalMatch(read("examples/host/README.md"));
    while (rows.hasNext()) {
        QRegularExpressionMatchIterator codes =
            QRegularExpression("`(QTpluginsManger(?:4CAM)?::\\w+)`").globalMatch(rows.next().captured(2));
        while (codes.hasNext())
            names.append(codes.next().captured(1));
    }
    return names;
}

QString hostSources()
{
    QString text;
    const QDir host(QStringLiteral(SOURCE_DIR "/examples/host"));
    const QStringList files = host.entryList({"*.cpp"});
    for (const QString &file : files)
        text += read("examples/host/" + file);
    return text;
}

}

/// The host's README says which action calls which operation. None is forgotten, and none is made up.
class tst_Operations : public QObject
{
    Q_OBJECT

private slots:
    void headersAreUnderstood();
    void tableHasEveryOperation();
    void tableHasNoOther();
    void hostCallsEveryOperation();
};

void tst_Operations::headersAreUnderstood()
{
    const QStringList desktop = publicOperations("src/pluginManger/pluginManger.h", "QTpluginsManger");
    QCOMPARE(desktop,
             (QStringList{"QTpluginsManger::instance", "QTpluginsManger::getParentWidget",
                          "QTpluginsManger::loadAllPlugins", "QTpluginsManger::initAllPlugins",
                          "QTpluginsManger::initSignalAndSlot", "QTpluginsManger::recMegfromPlugin"}));
    QCOMPARE(allOperations().size(), 6 + 74);
}

void tst_Operations::tableHasEveryOperation()
{
    const QStringList listed = operationsInTable();
    QStringList missing;
    for (const QString &operation : allOperations()) {
        if (!listed.contains(operation))
            missing.append(operation);
    }
    QCOMPARE(missing.join(", "), QString());
}

void tst_Operations::tableHasNoOther()
{
    const QStringList known = allOperations();
    QStringList unknown;
    for (const QString &operation : operationsInTable()) {
        if (!known.contains(operation))
            unknown.append(operation);
    }
    QCOMPARE(unknown.join(", "), QString());
}

void tst_Operations::hostCallsEveryOperation()
{
    const QString sources = hostSources();
    QStringList missing;
    for (const QString &operation : allOperations()) {
        const QString name = operation.section("::", 1);
        const QRegularExpression call("(->|::|\\.)" + name + "\\b");
        if (!sources.contains(call))
            missing.append(operation);
    }
    QCOMPARE(missing.join(", "), QString());
}

int main(int argc, char **argv)
{
    return runTest<tst_Operations>(argc, argv);
}

#include "tst_operations.moc"
