#include <common/json/problem.h>

#include <common/json/json.h>

QStringList problemLines(const QString &fileName, const QList<Problem> &problems)
{
    QStringList lines;
    for (const Problem &problem : problems) {
        const QString file
            = problem.position.isEmpty() ? fileName : QString(fileName + u':' + problem.position);
        const QString place = problem.place.isEmpty() ? QString() : QString(problem.place + u": ");
        lines.append(file + u": " + place + problem.text);
    }
    return lines;
}

QString problemsJson(const QString &fileName, const QList<Problem> &problems)
{
    QString lines;
    for (const Problem &problem : problems)
        lines += jsonObject({{QStringLiteral("type"), jsonText(QStringLiteral("problem"))},
                             {QStringLiteral("file"), jsonText(fileName)},
                             {QStringLiteral("position"), jsonText(problem.position)},
                             {QStringLiteral("path"), jsonText(problem.place)},
                             {QStringLiteral("message"), jsonText(problem.text)}})
                 + u'\n';
    return lines;
}
