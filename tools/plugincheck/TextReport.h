#pragma once

#include "Report.h"

namespace PluginCheck {

/// A text on its one line: nothing in it steers the terminal or moves its cursor.
QString inOneLine(const QString &text);

/// The report for people: findings grouped by plug-in, and a summary.
QString textReport(const Report &report, bool inColor);

}
