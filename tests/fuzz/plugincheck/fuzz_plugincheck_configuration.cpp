#include "ConfigurationChecks.h"
#include "TextReport.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace PluginCheck;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), int(size));
    for (const Set set : {Set::Cam, Set::Dfm, Set::Desktop}) {
        Report report;
        QVector<Configuration> configurations;
        std::optional<Configuration> configuration = parseConfiguration("set.json", set, text, report);
        if (configuration)
            configurations.append(*configuration);
        checkConfigurations(configurations, report);
        report.finish();
        // What is not parsed is said to be so, and every place lies in the text.
        if (!configuration && report.findings().isEmpty())
            std::abort();
        const int lines = int(text.count('\n')) + 1;
        for (const Finding &finding : report.findings()) {
            if (finding.place.line < 1 || finding.place.line > lines || finding.place.column < 1)
                std::abort();
        }
        if (textReport(report, true).isEmpty() || report.toJson().isEmpty())
            std::abort();
    }
    placesIn(text);
    return 0;
}
