#include "cli/CliOutput.h"

#include <QStringList>
#include <cstdio>

namespace {
void write(std::FILE* stream, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}
// Back to the start of the line and the rest of it wiped.
const QString kWipeLine = QStringLiteral("\r\x1b[K");
}  // namespace

QStringList MessageLines(const QString& text) {
    QString lines = text;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    lines.replace(u'\r', u'\n');
    QStringList result = lines.split(u'\n', Qt::SkipEmptyParts);
    for (QString& line : result) {
        line = line.trimmed();
    }
    result.removeAll(QString());
    return result;
}

void CliOutput::result(const QString& text) {
    write(stdout, text + u'\n');
}

void CliOutput::warning(const QString& text) {
    prefixed(QStringLiteral("warning: "), text);
}

void CliOutput::error(const QString& text) {
    prefixed(QStringLiteral("error: "), text);
}

void CliOutput::note(const QString& text) {
    if (!quiet_) {
        toError(text + u'\n');
    }
}

void CliOutput::plain(const QString& text) {
    toError(text.endsWith(u'\n') ? text : text + u'\n');
}

void CliOutput::prefixed(const QString& prefix, const QString& text) {
    QString lines;
    for (const QString& line : MessageLines(text)) {
        lines += prefix + line + u'\n';
    }
    if (!lines.isEmpty()) {
        toError(lines);
    }
}

void CliOutput::toError(const QString& text) {
    if (progressOnScreen_) {
        write(stderr, kWipeLine);
        progressOnScreen_ = false;
    }
    write(stderr, text);
}

void CliOutput::redrawProgress(const QString& line) {
    if (quiet_) {
        return;
    }
    write(stderr, kWipeLine + line);
    progressOnScreen_ = true;
}

void CliOutput::endProgress() {
    if (progressOnScreen_) {
        write(stderr, QStringLiteral("\n"));
        progressOnScreen_ = false;
    }
}

void CliOutput::progressLine(const QString& line) {
    if (!quiet_) {
        toError(line + u'\n');
    }
}
