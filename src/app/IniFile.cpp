#include "app/IniFile.h"

#include <utility>

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QLockFile>
#include <utility>

#include "app/AppPaths.h"
#include "platform/FileHelpers.h"

namespace {

// A read value holds at most this many characters, the rest is cut off.
constexpr qsizetype kMaxValueLength = 254;

// One line of the file: its text without the line end, and the line end as it
// stands in the file ("\r\n", "\n" or nothing for a last line without one).
struct Line {
    QByteArray text;
    QByteArray end;
};

QList<Line> splitLines(const QByteArray& content) {
    QList<Line> lines;
    qsizetype start = 0;
    while (start < content.size()) {
        const qsizetype newline = content.indexOf('\n', start);
        if (newline < 0) {
            lines.append(Line{content.mid(start), QByteArray()});
            break;
        }
        Line line;
        if (newline > start && content.at(newline - 1) == '\r') {
            line.text = content.mid(start, newline - 1 - start);
            line.end = "\r\n";
        } else {
            line.text = content.mid(start, newline - start);
            line.end = "\n";
        }
        lines.append(line);
        start = newline + 1;
    }
    return lines;
}

QString decode(const QByteArray& bytes) {
    return QString::fromUtf8(bytes);
}

// The line's text with a byte-order mark taken off (only the first line has one).
QString lineText(const QList<Line>& lines, qsizetype index) {
    QString text = decode(lines.at(index).text);
    if (index == 0 && text.startsWith(QChar(0xFEFF))) {
        text.remove(0, 1);
    }
    return text;
}

// The name of a section header line "[name]", or a null text for any other line.
QString sectionName(const QString& text) {
    const QString trimmed = text.trimmed();
    if (!trimmed.startsWith(u'[')) {
        return QString();
    }
    const qsizetype close = trimmed.indexOf(u']');
    QString name = (close < 0 ? trimmed.mid(1) : trimmed.mid(1, close - 1)).trimmed();
    if (name.isNull()) {
        name = QStringLiteral("");  // "[]" is a header too, of a nameless section
    }
    return name;
}

bool isComment(const QString& text) {
    return text.trimmed().startsWith(u';');
}

// Splits "key=value" into its trimmed key and value; false when there is no "=".
bool splitEntry(const QString& text, QString& key, QString& value) {
    if (isComment(text)) {
        return false;
    }
    const qsizetype equals = text.indexOf(u'=');
    if (equals < 0) {
        return false;
    }
    key = text.left(equals).trimmed();
    value = text.mid(equals + 1).trimmed();
    return true;
}

// A value written in matching quotes is read without them.
QString unquote(const QString& value) {
    if (value.size() >= 2) {
        const QChar first = value.front();
        if ((first == u'"' || first == u'\'') && value.back() == first) {
            return value.mid(1, value.size() - 2);
        }
    }
    return value;
}

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Where a section's lines are: the header line, and the index one past its
// last line (the next header or the end of the file). header is -1 when the
// section is missing.
struct SectionSpan {
    qsizetype header = -1;
    qsizetype end = -1;
};

SectionSpan findSection(const QList<Line>& lines, const QString& section) {
    SectionSpan span;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        // Only a line that starts with "[" (after blanks or a byte-order mark)
        // can be a header; the others are passed over without decoding.
        const QByteArray raw = lines.at(i).text.trimmed();
        if (!raw.startsWith('[') && !(i == 0 && raw.startsWith("\xEF\xBB\xBF"))) {
            continue;
        }
        const QString name = sectionName(lineText(lines, i));
        if (name.isNull()) {
            continue;
        }
        if (span.header >= 0) {
            span.end = i;
            return span;
        }
        if (sameName(name, section)) {
            span.header = i;
        }
    }
    if (span.header >= 0) {
        span.end = lines.size();
    }
    return span;
}

qsizetype findKey(const QList<Line>& lines, const SectionSpan& span, const QString& key) {
    for (qsizetype i = span.header + 1; i < span.end; ++i) {
        if (!lines.at(i).text.contains('=')) {
            continue;
        }
        QString name, value;
        if (splitEntry(lineText(lines, i), name, value) && sameName(name, key)) {
            return i;
        }
    }
    return -1;
}

// The line end for new lines: CRLF when the file already uses it, else LF.
QByteArray lineEndOf(const QByteArray& content) {
    return content.contains("\r\n") ? QByteArrayLiteral("\r\n") : QByteArrayLiteral("\n");
}

QByteArray joinLines(const QList<Line>& lines) {
    QByteArray out;
    for (const Line& line : lines) {
        out += line.text;
        out += line.end;
    }
    return out;
}

// Takes any read-only mark off the file before a write; the old permissions are
// not put back.
void makeWritable(const QString& file) {
    QFileInfo info(file);
    if (!info.exists() || info.isDir()) {
        return;
    }
    const QFile::Permissions permissions = QFile::permissions(file);
    if (!(permissions & QFile::WriteOwner)) {
        QFile::setPermissions(file, permissions | QFile::WriteOwner | QFile::WriteUser);
    }
}

}  // namespace

QString ReadIniValue(QString& section, QString& key, QString& file) {
    QString result;
    if (!section.isEmpty() && !key.isEmpty() && !file.isEmpty()) {
        QFile in(file);
        if (in.open(QIODevice::ReadOnly)) {
            const QList<Line> lines = splitLines(in.readAll());
            const SectionSpan span = findSection(lines, section.trimmed());
            if (span.header >= 0) {
                const qsizetype at = findKey(lines, span, key.trimmed());
                if (at >= 0) {
                    QString name, value;
                    splitEntry(lineText(lines, at), name, value);
                    result = unquote(value).left(kMaxValueLength);
                }
            }
        }
    }
    section.clear();
    key.clear();
    return result;
}

namespace {

struct WriteFailures {
    IniWriteFailureReporter reporter;
    QString lastFile;
    QString lastReason;
};

WriteFailures& writeFailures() {
    static WriteFailures failures;
    return failures;
}

void noteWrite(const QString& file, bool written, const QString& reason) {
    WriteFailures& failures = writeFailures();
    if (written) {
        if (failures.lastFile == file) {
            failures.lastFile.clear();
            failures.lastReason.clear();
        }
        return;
    }
    if (failures.lastFile == file && failures.lastReason == reason) {
        return;
    }
    failures.lastFile = file;
    failures.lastReason = reason;
    if (failures.reporter) {
        failures.reporter(file, reason);
    }
}

}  // namespace

QString IniWriteFailureMessage(const QString& file, const QString& reason) {
    return QStringLiteral("Unable to save the settings!\r\n") + file + QStringLiteral("\r\n\r\n") +
           reason;
}

void SetIniWriteFailureReporter(IniWriteFailureReporter reporter) {
    WriteFailures& failures = writeFailures();
    failures.reporter = std::move(reporter);
    failures.lastFile.clear();
    failures.lastReason.clear();
}

short WriteIniValue(QString& section, QString& key, QString& value, QString& file) {
    short result = 0;
    const QString wantedSection = section.trimmed();
    const QString wantedKey = key.trimmed();
    if (!wantedSection.isEmpty() && !wantedKey.isEmpty() && !file.isEmpty()) {
        // A write reads the whole file and writes it back. Two runs of the
        // program share the file, so the write holds a lock file beside it
        // meanwhile: otherwise one run's write could put back the file as it
        // was before the other's, and that key would be lost. A lock that
        // cannot be made (a folder that allows no new file) or that is not
        // free within a few seconds does not stop the write.
        QLockFile lock(file + QStringLiteral(".lock"));
        lock.setStaleLockTime(10000);
        lock.tryLock(5000);
        makeWritable(file);
        QByteArray content;
        bool readable = true;
        QFile in(file);
        if (in.exists()) {
            readable = in.open(QIODevice::ReadOnly);
            if (readable) {
                content = in.readAll();
                in.close();
            }
        }
        if (readable) {
            QList<Line> lines = splitLines(content);
            const QByteArray end = lineEndOf(content);
            const QByteArray entry = (wantedKey + u'=' + value).toUtf8();
            const SectionSpan span = findSection(lines, wantedSection);
            if (span.header < 0) {
                // A new section goes at the end, after a line end of its own.
                if (!lines.isEmpty() && lines.last().end.isEmpty()) {
                    lines.last().end = end;
                }
                lines.append(Line{'[' + wantedSection.toUtf8() + ']', end});
                lines.append(Line{entry, end});
            } else {
                const qsizetype at = findKey(lines, span, wantedKey);
                if (at >= 0) {
                    // The key keeps its own spelling; only the value changes.
                    const QString text = lineText(lines, at);
                    const QByteArray name = text.left(text.indexOf(u'=')).trimmed().toUtf8();
                    QByteArray bom;
                    if (at == 0 && lines[0].text.startsWith("\xEF\xBB\xBF")) {
                        bom = "\xEF\xBB\xBF";
                    }
                    lines[at].text = bom + name + '=' + value.toUtf8();
                } else {
                    // A new key goes after the section's last non-blank line.
                    qsizetype insertAt = span.end;
                    while (insertAt - 1 > span.header &&
                           lineText(lines, insertAt - 1).trimmed().isEmpty()) {
                        --insertAt;
                    }
                    if (lines.at(insertAt - 1).end.isEmpty()) {
                        lines[insertAt - 1].end = end;
                    }
                    lines.insert(insertAt, Line{entry, end});
                }
            }
            // A file in a folder that only allows writing the file itself is
            // still written.
            QString reason;
            const bool written = WriteFileWhole(file, joinLines(lines), true, &reason);
            if (written) {
                result = -1;
            }
            noteWrite(file, written, reason);
        } else {
            noteWrite(file, false, in.errorString());
        }
    }
    section.clear();
    key.clear();
    value.clear();
    return result;
}

QString ReadSetting(const QString& section, const QString& key) {
    QString s = section, k = key, f = SettingsFile();
    return ReadIniValue(s, k, f);
}

namespace {
bool& settingsReadOnly() {
    static bool readOnly = false;
    return readOnly;
}
}  // namespace

void SetSettingsReadOnly(bool readOnly) {
    settingsReadOnly() = readOnly;
}

bool SettingsReadOnly() {
    return settingsReadOnly();
}

void WriteSetting(const QString& section, const QString& key, const QString& value) {
    if (settingsReadOnly()) {
        return;
    }
    QString s = section, k = key, v = value, f = SettingsFile();
    WriteIniValue(s, k, v, f);
}
