#include "FuzzSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>
#include <cstdlib>

#include "app/AppPaths.h"

namespace {

QTemporaryDir* workFolder = nullptr;

}  // namespace

void PrepareFuzzProcess() {
    if (workFolder != nullptr) {
        return;
    }
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    static int argc = 1;
    static char name[] = "velmora_fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static QTemporaryDir folder;
    workFolder = &folder;
    if (!folder.isValid()) {
        std::abort();
    }
    QDir(folder.path()).mkpath(QStringLiteral("data"));
    SetAppDataFolder(folder.filePath(QStringLiteral("data")));
}

QString FuzzWorkFolder() {
    return workFolder->path();
}

QString WriteFuzzFile(const QString& name, const std::uint8_t* data, std::size_t size) {
    const QString path = workFolder->filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        std::abort();
    }
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    return path;
}

int FuzzQuestions::msgBox(const QString& prompt, int, const QString&) {
    ++boxes;
    lastPrompt = prompt;
    return Msg::Ok;
}

void FuzzQuestions::showOpen(CommonDialog& dialog) {
    dialog.fileName = chosenPath_;
    dialog.fileTitle = QFileInfo(chosenPath_).fileName();
}

void FuzzQuestions::showSave(CommonDialog& dialog) {
    showOpen(dialog);
}

std::int64_t fuzzResultSink = 0;

void KeepFuzzResult(std::int64_t value) {
    fuzzResultSink += value;
}
