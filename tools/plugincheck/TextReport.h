#pragma once

#include "Report.h"

namespace PluginCheck {

/// The report for people: findings grouped by plug-in, and a summary.
QString textReport(const Report &report, bool inColor);

}
