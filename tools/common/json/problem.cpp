#include <common/json/problem.h>

#include <common/json/json.h>

#include <algorithm>

void addError(const QString &place, const QString &text, QList<Problem> *errors)
{
    errors->append({{}, place, text});
}

void addWarning(const QString &place, const QString &text, QList<Problem> *problems)
{
    problems->append({{}, place, text, true});
}

bool hasError(const QList<Problem> &problems)
{
    return std::any_of(problems.begin(), problems.end(),
                       [](const Problem &problem) { return !problem.isWarning; });
}

QStringList problemLines(const QString &fileName, const QList<Problem> &problems)
{
    QStringList lines;
    for (const Problem &problem : problems) {
        const QString file
            = problem.position.isEmpty() ? fileName : QString(fileName + u':' + problem.position);
        const QString place = problem.place.isEmpty() ? QString() : QString(problem.place + u": ");
        const QString kind = problem.isWarning ? QStringLiteral("warning: ") : QString();
        lines.append(file + u": " + place + kind + problem.text);
    }
    return lines;
}

QString problemsJson(const QString &fileName, const QList<Problem> &problems)
{
    QString lines;
    for (const Problem &problem : problems)
        lines
            += jsonLine(problem.isWarning ? "warning" : "problem", {{"file", fileName},
                                                                    {"position", problem.position},
                                                                    {"path", problem.place},
                                                                    {"message", problem.text}});
    return lines;
}
