#include "StartProfile.h"

void StartProfile::begin(const QString &phase)
{
    end();
    m_phase = phase;
    m_began = m_phases.isEmpty() ? 0 : m_timer.nsecsElapsed();
}

void StartProfile::end()
{
    if (!m_phase.isEmpty())
        m_phases.append({m_phase, static_cast<double>(m_timer.nsecsElapsed() - m_began) / 1e6});
    m_phase.clear();
}

double StartProfile::total() const
{
    double total = 0;
    for (const Phase &phase : m_phases)
        total += phase.milliseconds;
    return total;
}
