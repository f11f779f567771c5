#include "Names.h"

#include "desktopTools_p.h"
#include "elementFactories_p.h"
#include "frameFactories_p.h"

#include <algorithm>

namespace PluginCheck {

namespace {

constexpr int longestName = 200;

QString withoutSuffix(const char *library)
{
    QString name = QString::fromLatin1(library);
    name.chop(int(qstrlen(".dll")));
    return name;
}

void addRequest(QVector<Request> &requests, const char *library, const char *factory)
{
    const QString name = withoutSuffix(library);
    const auto known = std::find_if(requests.begin(), requests.end(),
                                    [&](const Request &request) { return request.name == name; });
    if (known == requests.end())
        requests.append({name, {factory}});
    else if (!known->factories.contains(factory))
        known->factories.append(factory);
}

QVector<Request> camRequests()
{
    using namespace PluginMangerInternal;
    QVector<Request> requests;
    for (const ElementFactoryNames &row : elementFactoryNames) {
        if (row.library)
            addRequest(requests, row.library, row.symbol);
    }
    for (const FrameFactory &row :
         {FrameFactories::graphicEditor, FrameFactories::matrix, FrameFactories::camGuide})
        addRequest(requests, row.library, row.symbol);
    return requests;
}

QVector<Request> desktopRequests()
{
    QVector<Request> requests;
    for (const char *library : PluginMangerInternal::desktopToolLibraries)
        requests.append({withoutSuffix(library), {}});
    return requests;
}

/// How many letters must be put in, taken out, exchanged or swapped with their neighbour to make one text of
/// the other; `limit` + 1 if that is more than `limit`.
int distance(const QString &left, const QString &right, int limit)
{
    const int columns = int(right.size());
    if (std::abs(int(left.size()) - columns) > limit)
        return limit + 1;
    std::vector<int> beforePrevious;
    std::vector<int> previous(std::size_t(columns) + 1);
    std::vector<int> current(std::size_t(columns) + 1);
    for (int column = 0; column <= columns; ++column)
        previous[std::size_t(column)] = column;
    for (int row = 1; row <= left.size(); ++row) {
        current[0] = row;
        int least = row;
        for (int column = 1; column <= columns; ++column) {
            const auto at = std::size_t(column);
            const bool same = left.at(row - 1) == right.at(column - 1);
            int cost = std::min({previous[at] + 1, current[at - 1] + 1, previous[at - 1] + (same ? 0 : 1)});
            if (row > 1 && column > 1 && left.at(row - 1) == right.at(column - 2)
                && left.at(row - 2) == right.at(column - 1))
                cost = std::min(cost, beforePrevious[at - 2] + 1);
            current[at] = cost;
            least = std::min(least, cost);
        }
        if (least > limit)
            return limit + 1;
        beforePrevious = previous;
        previous.swap(current);
    }
    return std::min(previous[std::size_t(columns)], limit + 1);
}

/// Names that differ by capitals and separators alone are nearest to each other.
QString lettersOf(const QString &name)
{
    QString letters = name.toLower();
    letters.remove('_').remove('-').remove(' ');
    return letters;
}

}

const QVector<Request> &requestsOf(Set set)
{
    static const QVector<Request> cam = camRequests();
    static const QVector<Request> desktop = desktopRequests();
    return set == Set::Desktop ? desktop : cam;
}

const Request *requestNamed(const QString &name, Set set)
{
    const QVector<Request> &requests = requestsOf(set);
    const auto request = std::find_if(requests.begin(), requests.end(),
                                      [&](const Request &candidate) { return candidate.name == name; });
    return request == requests.end() ? nullptr : &*request;
}

QByteArray factoryOfAnyLibrary()
{
    return PluginMangerInternal::ElementFactories::Common.symbol;
}

NearNames::NearNames(const QStringList &candidates)
{
    m_candidates.reserve(candidates.size());
    for (const QString &candidate : candidates) {
        if (candidate.size() <= longestName)
            m_candidates.append({lettersOf(candidate), candidate});
    }
}

QStringList NearNames::of(const QString &name, int most) const
{
    constexpr int lettersForEachDifference = 6;
    constexpr int mostDifferences = 2;
    if (name.size() > longestName)
        return {};
    const QString letters = lettersOf(name);
    const int limit = std::min(mostDifferences, int(letters.size()) / lettersForEachDifference);
    QVector<QPair<int, QString>> near;
    for (const Candidate &candidate : m_candidates) {
        const int differences = distance(letters, candidate.letters, limit);
        if (differences <= limit && candidate.name != name)
            near.append({differences, candidate.name});
    }
    std::sort(near.begin(), near.end());
    QStringList names;
    for (int i = 0; i < near.size() && i < most; ++i)
        names.append(near.at(i).second);
    return names;
}

QString didYouMean(const QStringList &names)
{
    if (names.isEmpty())
        return {};
    return QStringLiteral("Did you mean \"%1\"?").arg(names.join(QStringLiteral("\" or \"")));
}

}
