#include "join/RemakeStreams.h"

#include <QRegularExpression>
#include <QSet>

QStringList LeftOutStreams(const QString& toolOutput) {
    static const QRegularExpression inputStream(
        QStringLiteral("^\\s*Stream #0:(\\d+)(?:\\[[^\\]]*\\])?(?:\\([^)]*\\))?: (.*)$"));
    static const QRegularExpression mapping(QStringLiteral("^\\s*Stream #0:(\\d+) -> #\\d+:\\d+"));
    const QStringList lines = toolOutput.split(QRegularExpression(QStringLiteral("[\r\n]")));

    QStringList described;  // the input's streams, in order, as "Stream #0:N...: ..."
    QList<int> numbers;
    QSet<int> mapped;
    bool inMapping = false;
    bool inOutput = false;
    for (const QString& line : lines) {
        if (line.startsWith(QStringLiteral("Stream mapping:"))) {
            inMapping = true;
            continue;
        }
        if (line.startsWith(QStringLiteral("Output #"))) {
            inOutput = true;
            inMapping = false;
            continue;
        }
        if (line.startsWith(QStringLiteral("Input #"))) {
            inOutput = false;
            continue;
        }
        if (inMapping) {
            const QRegularExpressionMatch match = mapping.match(line);
            if (match.hasMatch()) {
                mapped.insert(match.captured(1).toInt());
            }
            continue;
        }
        if (inOutput) {
            continue;
        }
        const QRegularExpressionMatch match = inputStream.match(line);
        if (match.hasMatch() && !numbers.contains(match.captured(1).toInt())) {
            numbers << match.captured(1).toInt();
            described << line.trimmed();
        }
    }
    if (mapped.isEmpty()) {
        return {};
    }
    QStringList left;
    for (qsizetype i = 0; i < numbers.size(); ++i) {
        if (!mapped.contains(numbers.at(i))) {
            left << described.at(i);
        }
    }
    return left;
}
