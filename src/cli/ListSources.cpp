#include "cli/ListSources.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <memory>
#include <vector>

#include "cli/CliContext.h"
#include "cli/CliOutput.h"
#include "cli/CommandLine.h"
#include "cli/ExitCodes.h"
#include "list/AddFilesModule.h"
#include "list/ListFunctions.h"
#include "list/ListTotals.h"
#include "list/MainModel.h"
#include "media/ListType.h"
#include "platform/FileHelpers.h"
#include "platform/InterruptWatcher.h"

namespace {

// Made on first use: the texts come from another file's constants, which
// need not be made yet while this file's constants are.
const QStringList& listTypes() {
    static const QStringList types = {ListTypeText(ListType::Mp3), ListTypeText(ListType::Mpeg)};
    return types;
}

// A source as it was found, before the list is made.
struct Source {
    enum class Kind { ListFile, MediaFile, Folder };
    Kind kind = Kind::MediaFile;
    QString path;
    // The rows of a list file, read as the window opens one.
    std::shared_ptr<MainModel> list;
    // The types the source stands for: one for a list file or a file with a
    // known extension, those of its files for a folder.
    QSet<QString> types;
};

QString quoted(const QString& path) {
    return u'\'' + path + u'\'';
}

// The rows of a list file in a model of their own; nothing when the file
// cannot be read or is no list file.
std::shared_ptr<MainModel> readListFile(const QString& path, MainModel& model, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot read ") + quoted(path) + QStringLiteral(": ") +
                file.errorString();
        return nullptr;
    }
    auto list = std::make_shared<MainModel>(model.questions, model.clipboard);
    if (!ReadListFileText(*list, file.readAll(), path)) {
        error = quoted(path) + QStringLiteral(" is no list file: its first line is not \"") +
                QLatin1String(kListFileHeader) + u'"';
        return nullptr;
    }
    // Its files are checked once the whole list is made.
    list->listCheck.stop();
    if (!listTypes().contains(list->state.listType())) {
        error = quoted(path) + QStringLiteral(" is a list of the unknown type '") +
                list->state.listType() + u'\'';
        return nullptr;
    }
    return list;
}

QSet<QString> typesInFolder(const QString& folder) {
    QSet<QString> types;
    for (const QString& type : listTypes()) {
        if (!FolderFileNames(folder, FolderPattern(type)).isEmpty()) {
            types.insert(type);
        }
    }
    return types;
}

// Looks at a source; false with the reason when it cannot be read.
bool findSource(const QString& path, MainModel& model, Source& source, QString& error) {
    const QFileInfo info(path);
    source.path = path;
    if (!info.exists()) {
        error = QStringLiteral("cannot read ") + quoted(path) +
                QStringLiteral(": no such file or folder");
        return false;
    }
    if (info.isDir()) {
        source.kind = Source::Kind::Folder;
        source.path = QDir::cleanPath(info.absoluteFilePath());
        if (!FolderCanBeListed(source.path)) {
            error = QStringLiteral("cannot read the folder ") + quoted(path);
            return false;
        }
        source.types = typesInFolder(source.path);
        return true;
    }
    if (!info.isFile() || !info.isReadable()) {
        error = QStringLiteral("cannot read ") + quoted(path);
        return false;
    }
    source.path = info.absoluteFilePath();
    if (IsListFileName(path)) {
        source.kind = Source::Kind::ListFile;
        source.list = readListFile(source.path, model, error);
        if (!source.list) {
            return false;
        }
        source.types.insert(source.list->state.listType());
        return true;
    }
    source.kind = Source::Kind::MediaFile;
    const QString type = ListTypeOfFileName(path);
    if (!type.isEmpty()) {
        source.types.insert(type);
    }
    return true;
}

// The list type of the sources, or the reason there is none.
QString decideType(const std::vector<Source>& sources, const QString& typeAsked, QString& error) {
    QSet<QString> types;
    for (const Source& source : sources) {
        // With a type asked for, a folder gives its files of that type only.
        if (!typeAsked.isEmpty() && source.kind == Source::Kind::Folder) {
            continue;
        }
        if (!typeAsked.isEmpty() && !source.types.isEmpty() && !source.types.contains(typeAsked)) {
            error = quoted(source.path) + QStringLiteral(" is no ") + typeAsked +
                    QStringLiteral(" source, but --type asks for an ") + typeAsked +
                    QStringLiteral(" list");
            return {};
        }
        types.unite(source.types);
    }
    if (!typeAsked.isEmpty()) {
        return typeAsked;
    }
    if (types.size() > 1) {
        error = QStringLiteral(
            "the sources hold both MP3 and MPEG files; a list is of one type "
            "(give one kind, or --type mp3|mpeg)");
        return {};
    }
    if (types.isEmpty()) {
        error = QStringLiteral("the sources do not tell the list type; give --type mp3|mpeg");
        return {};
    }
    return *types.cbegin();
}

void appendListRows(MainModel& model, const MainModel& list) {
    QList<QStringList> rows;
    for (int position = 1; position <= list.items.count(); ++position) {
        rows.append(list.items.cells(position));
    }
    model.items.appendRows(std::move(rows));
}

// The rows read from list files get their join check, as an opened list does.
void checkListRows(MainModel& model) {
    model.listCheck.start(model.state.listType());
    if (!model.listCheck.running()) {
        return;
    }
    QEventLoop loop;
    QObject::connect(&model.listCheck, &ListCheck::finished, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace

std::optional<int> MakeCommandList(CliContext& cli, MainModel& model) {
    const SourceList list = MakeListFromSources(model, cli.options.paths, cli.options.listType);
    if (cli.interrupts.signalNumber() != 0) {
        return InterruptWatcher::ExitStatusFor(cli.interrupts.signalNumber());
    }
    if (!list.error.isEmpty()) {
        cli.output.error(list.error);
        return ExitCode::kUsage;
    }
    for (const QString& warning : list.warnings) {
        cli.output.warning(warning);
    }
    return std::nullopt;
}

QString ListTypeOfFileName(const QString& path) {
    const QString name = QFileInfo(path).fileName();
    for (const QString& type : listTypes()) {
        if (QDir::match(FolderPattern(type).split(u';'), name)) {
            return type;
        }
    }
    return {};
}

bool IsListFileName(const QString& path) {
    return QFileInfo(path).suffix().compare(QLatin1String("vlr"), Qt::CaseInsensitive) == 0;
}

SourceList MakeListFromSources(MainModel& model, const QStringList& paths,
                               const QString& typeAsked) {
    SourceList result;
    std::vector<Source> sources;
    for (const QString& path : paths) {
        Source source;
        if (!findSource(path, model, source, result.error)) {
            return result;
        }
        sources.push_back(std::move(source));
    }
    result.listType = decideType(sources, typeAsked, result.error);
    if (result.listType.isEmpty()) {
        return result;
    }

    NewItemList(model, result.listType);
    bool listRows = false;
    QStringList files;
    const auto addFiles = [&] {
        if (!files.isEmpty()) {
            AddDroppedFiles(model, files);
            files.clear();
        }
    };
    for (const Source& source : sources) {
        switch (source.kind) {
            case Source::Kind::MediaFile:
                files.append(source.path);
                break;
            case Source::Kind::ListFile:
                addFiles();
                appendListRows(model, *source.list);
                listRows = true;
                break;
            case Source::Kind::Folder:
                addFiles();
                if (!source.types.contains(result.listType)) {
                    result.warnings.append(QStringLiteral("the folder ") + quoted(source.path) +
                                           QStringLiteral(" holds no ") + result.listType +
                                           QStringLiteral(" files"));
                }
                AddFolderFiles(model, source.path);
                break;
        }
    }
    addFiles();
    if (listRows) {
        checkListRows(model);
    }
    UpdateListTotals(model);
    return result;
}
