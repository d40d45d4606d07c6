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
