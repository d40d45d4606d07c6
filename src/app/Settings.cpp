#include "app/Settings.h"

#include "app/IniFile.h"

namespace Settings {

namespace {

// The sections and keys of Settings.ini.
const QString kSplashscreen = QStringLiteral("Splashscreen");
const QString kNewList = QStringLiteral("NewList");
const QString kTips = QStringLiteral("Tips");
const QString kCommondialog = QStringLiteral("Commondialog");
const QString kJoin = QStringLiteral("Join");

const QString kDoNotShowAtStartup = QStringLiteral("DoNotShowAtStartup");
const QString kDoNotAskMeAgain = QStringLiteral("DoNotAskMeAgain");
const QString kListType = QStringLiteral("ListType");
const QString kShowAtStartup = QStringLiteral("ShowAtStartup");
const QString kCount = QStringLiteral("Count");
const QString kTipPrefix = QStringLiteral("Tip");
const QString kWriteTagsAndChapters = QStringLiteral("WriteTagsAndChapters");

QString dialogKey(DialogFolder dialog) {
    switch (dialog) {
        case DialogFolder::AddFiles:
            return QStringLiteral("AddFiles");
        case DialogFolder::OpenList:
            return QStringLiteral("OpenList");
        case DialogFolder::SaveList:
            return QStringLiteral("SaveList");
        case DialogFolder::JoinFiles:
            return QStringLiteral("JoinFiles");
    }
    return QString();
}

// The stored text must be a whole number that a check box takes (0 clear, 1
// checked, 2 greyed).
CheckBoxValue readCheckBox(const QString& section, const QString& key) {
    bool ok = false;
    const short value = ReadSetting(section, key).trimmed().toShort(&ok);
    if (ok && value >= 0 && value <= 2) {
        return value;
    }
    return std::nullopt;
}

void writeCheckBox(const QString& section, const QString& key, int checkBox) {
    WriteSetting(section, key, QString::number(checkBox));
}

}  // namespace

CheckBoxValue SplashscreenDoNotShowAtStartup() {
    return readCheckBox(kSplashscreen, kDoNotShowAtStartup);
}

void SetSplashscreenDoNotShowAtStartup(int checkBox) {
    writeCheckBox(kSplashscreen, kDoNotShowAtStartup, checkBox);
}

CheckBoxValue NewListDoNotAskMeAgain() {
    return readCheckBox(kNewList, kDoNotAskMeAgain);
}

void SetNewListDoNotAskMeAgain(int checkBox) {
    writeCheckBox(kNewList, kDoNotAskMeAgain, checkBox);
}

bool NewListTypeIsMpeg() {
    return ReadSetting(kNewList, kListType) == QStringLiteral("MPEG");
}

void SetNewListType(bool mpeg) {
    WriteSetting(kNewList, kListType, mpeg ? QStringLiteral("MPEG") : QStringLiteral("MP3"));
}

CheckBoxValue JoinWriteTagsAndChapters() {
    return readCheckBox(kJoin, kWriteTagsAndChapters);
}

void SetJoinWriteTagsAndChapters(int checkBox) {
    writeCheckBox(kJoin, kWriteTagsAndChapters, checkBox);
}

namespace {
std::optional<bool>& joinTagsOverride() {
    static std::optional<bool> writes;
    return writes;
}
}  // namespace

bool JoinWritesTagsAndChapters() {
    if (joinTagsOverride()) {
        return *joinTagsOverride();
    }
    return JoinWriteTagsAndChapters().value_or(1) != 0;
}

void OverrideJoinWritesTagsAndChapters(std::optional<bool> writes) {
    joinTagsOverride() = writes;
}

CheckBoxValue TipsShowAtStartup() {
    return readCheckBox(kTips, kShowAtStartup);
}

void SetTipsShowAtStartup(int checkBox) {
    writeCheckBox(kTips, kShowAtStartup, checkBox);
}

QString TipsCountText() {
    return ReadSetting(kTips, kCount);
}

QString TipText(int n) {
    return ReadSetting(kTips, kTipPrefix + QString::number(n));
}

QString DialogFolderOf(DialogFolder dialog) {
    return ReadSetting(kCommondialog, dialogKey(dialog));
}

void SetDialogFolder(DialogFolder dialog, const QString& folder) {
    WriteSetting(kCommondialog, dialogKey(dialog), folder);
}

}  // namespace Settings
