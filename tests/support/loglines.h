#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

/// The lines that glog has written to its file, as bytes.
namespace LogLines {

struct Line
{
    /// 'I', 'W', 'E' or 'F'.
    char severity;
    /// The source file without its extension.
    QByteArray unit;
    QByteArray text;

    bool operator==(const Line &other) const;
};

/// Starts glog on a file of this process. Called once, by the tests' main.
void start(const char *program);

/// Returns the lines written since the last call.
QList<Line> take();

/// The file itself, for those who read logs. It exists once a line is written.
QString file();

/// How QCOMPARE shows a line.
char *toString(const Line &line);

}
