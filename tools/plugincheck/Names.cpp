#include "Names.h"

#include "desktopTools_p.h"
#include "elementFactories_p.h"
#include "frameFactories_p.h"

#include <QtCore/QtAlgorithms>

#include <algorithm>
#include <array>
#include <cstdlib>

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

constexpr int mostDifferences = 2;

/// How many letters must be put in, taken out, exchanged or swapped with their neighbour to make one text of
/// the other; `limit` + 1 if that is more than `limit`, which is at most `mostDifferences`. Only the cells of
/// the table that are no farther than `limit` from its diagonal can be as little.
int distance(const QString &left, const QString &right, int limit)
{
    const int columns = int(right.size());
    if (std::abs(int(left.size()) - columns) > limit)
        return limit + 1;
    using Row = std::array<int, longestName + 1>;
    Row rows[3];
    for (int column = 0; column <= std::min(columns, limit); ++column)
        rows[0][std::size_t(column)] = column;
    for (int row = 1; row <= left.size(); ++row) {
        Row &current = rows[row % 3];
        const Row &previous = rows[(row + 2) % 3];
        const Row &beforePrevious = rows[(row + 1) % 3];
        const int first = std::max(0, row - limit);
        const int last = std::min(columns, row + limit);
        int least = limit + 1;
        for (int column = first; column <= last; ++column) {
            const auto at = std::size_t(column);
            int cost = column < row + limit ? previous[at] + 1 : limit + 1;
            if (column > first)
                cost = std::min(cost, current[at - 1] + 1);
            if (column > 0) {
                const bool same = left.at(row - 1) == right.at(column - 1);
                cost = std::min(cost, previous[at - 1] + (same ? 0 : 1));
            }
            if (row > 1 && column > 1 && left.at(row - 1) == right.at(column - 2)
                && left.at(row - 2) == right.at(column - 1))
                cost = std::min(cost, beforePrevious[at - 2] + 1);
            current[at] = cost;
            least = std::min(least, cost);
        }
        if (least > limit)
            return limit + 1;
    }
    return std::min(rows[left.size() % 3][std::size_t(columns)], limit + 1);
}

/// One bit for each letter and digit, some of which share theirs. A difference of two texts changes at most
/// two bits.
quint64 kindsOf(const QString &letters)
{
    quint64 kinds = 0;
    for (const QChar letter : letters)
        kinds |= quint64(1) << (letter.unicode() % 64);
    return kinds;
}

/// Names that differ by capitals and separators alone are nearest to each other.
QString lettersOf(const QString &name)
{
    QString letters = name.toLower();
    const auto isSeparator = [](QChar letter) { return letter == '_' || letter == '-' || letter == ' '; };
    const auto end = std::remove_if(letters.begin(), letters.end(), isSeparator);
    letters.truncate(int(std::distance(letters.begin(), end)));
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
    : m_candidates(longestName + 1)
{
    for (const QString &candidate : candidates) {
        if (candidate.size() > longestName)
            continue;
        const QString letters = lettersOf(candidate);
        // Lower-case letters may be more than capitals.
        if (letters.size() <= longestName)
            m_candidates[letters.size()].append({letters, kindsOf(letters), candidate});
    }
}

QStringList NearNames::of(const QString &name, int most) const
{
    constexpr int lettersForEachDifference = 6;
    if (name.size() > longestName)
        return {};
    const QString letters = lettersOf(name);
    const int size = int(letters.size());
    const quint64 kinds = kindsOf(letters);
    const int limit = std::min(mostDifferences, size / lettersForEachDifference);
    QVector<QPair<int, QString>> near;
    for (int length = std::max(0, size - limit); length <= std::min(longestName, size + limit); ++length) {
        for (const Candidate &candidate : m_candidates.at(length)) {
            if (int(qPopulationCount(kinds ^ candidate.kinds)) > 2 * limit)
                continue;
            const int differences = distance(letters, candidate.letters, limit);
            if (differences <= limit && candidate.name != name)
                near.append({differences, candidate.name});
        }
    }
    const auto wanted = near.begin() + std::min(int(near.size()), most);
    std::partial_sort(near.begin(), wanted, near.end());
    QStringList names;
    for (auto found = near.begin(); found != wanted; ++found)
        names.append(found->second);
    return names;
}

QString didYouMean(const QStringList &names)
{
    if (names.isEmpty())
        return {};
    return QStringLiteral("Did you mean \"%1\"?").arg(names.join(QStringLiteral("\" or \"")));
}

}
