#include "media/MediaInfoFile.h"

#include <cstddef>
#include <cwchar>
#include <mutex>
#include <string>

#include "media/MediaInfoC.h"
#include "media/Utf8Locale.h"

QString MediaText(const wchar_t* text) {
    if (text == nullptr) {
        return {};
    }
    return QString::fromWCharArray(text, static_cast<qsizetype>(std::wcslen(text)));
}

MediaInfoFile::MediaInfoFile(const QString& path) {
    // The library turns the wide file name into bytes through the C locale,
    // which must be UTF-8 for names with letters beyond ASCII.
    EnsureUtf8CLocale();
    handle_ = MediaInfo_New();
    if (handle_ == nullptr) {
        return;
    }
    MediaInfo_Option(handle_, L"Internet", L"no");
    // The classic field names: "Video;%Codec%" gives "MPEG-1V" / "MPEG-2V".
    MediaInfo_Option(handle_, L"Legacy", L"1");
    const std::wstring file = path.toStdWString();
    opened_ = MediaInfo_Open(handle_, file.c_str()) != 0;
}

MediaInfoFile::~MediaInfoFile() {
    if (handle_ != nullptr) {
        MediaInfo_Close(handle_);
        MediaInfo_Delete(handle_);
    }
}

namespace {
// Marks that no value of the library holds: one before each stream's record
// (with the kind behind it) and one before each field.
constexpr QChar kRecordMark(0x1E);
constexpr QChar kFieldMark(0x1F);
}  // namespace

MediaInfoFile::Records MediaInfoFile::informRecords(
    const QList<std::pair<QString, QStringList>>& asked) {
    // One template for everything: a line per kind, each stream of the kind
    // answering with its own record.
    QStringList lines;
    for (const auto& [kind, fields] : asked) {
        QString line = kind + u';' + kRecordMark + kind;
        for (const QString& field : fields) {
            line += kFieldMark;
            line += u'%';
            line += field;
            line += u'%';
        }
        lines.append(line);
    }
    const QString answer = inform(lines.join(u'\n'));
    Records records;
    for (const QStringView record : QStringView(answer).split(kRecordMark, Qt::SkipEmptyParts)) {
        const QList<QStringView> parts = record.split(kFieldMark);
        QStringList values;
        for (qsizetype i = 1; i < parts.size(); ++i) {
            values.append(parts.at(i).toString());
        }
        records[parts.first().toString()].append(values);
    }
    return records;
}

QString JoinedField(const QList<QStringList>& records, int field) {
    QString text;
    for (const QStringList& record : records) {
        text += record.value(field);
    }
    return text;
}

QString MediaInfoFile::inform(const QString& templateText) {
    if (handle_ == nullptr) {
        return {};
    }
    const std::wstring text = templateText.toStdWString();
    // The library keeps the "Inform" template for the whole process, not per
    // handle: files read on several threads at once take turns from setting
    // the template to copying the answer.
    static std::mutex informTurn;
    const std::lock_guard<std::mutex> turn(informTurn);
    MediaInfo_Option(handle_, L"Inform", text.c_str());
    return MediaText(MediaInfo_Inform(handle_, 0));
}
